// Moves a decoded picture into the host's memory: rows top first come out bottom first.
#pragma once

#include <cstdint>

namespace clipfio {

// Both take a packed picture of `width` by `height` pixels at any address and write all of the destination.
struct FrameDelivery {
    using Move = void (*)(const void* decoded, void* host, uint64_t width, uint64_t height);
    Move bgra8;            // 4 bytes a pixel, unchanged
    Move rgb16_to_floats;  // three 16-bit samples R, G, B to four 32-bit floats B, G, R, 0.0; full scale is 1.0
};

// Ways of doing it, with the same results; each needs more of the processor than the one before. The first is the
// reference.
enum class DeliveryLevel { Plain, Ssse3, Avx2, Avx512 };

// Null when the processor cannot.
const FrameDelivery* FrameDeliveryAt(DeliveryLevel level) noexcept;
// The best that the processor can, found once.
const FrameDelivery& BestFrameDelivery() noexcept;

}  // namespace clipfio
