#include "substitutes/decoder/clip_form.h"

#include <array>
#include <cstring>

#include "substitutes/decoder/timecode.h"

namespace clipfio::decoder {
namespace {

constexpr std::array<uint32_t, 256> kCrcTable = [] {
    std::array<uint32_t, 256> table{};
    for (uint32_t i = 0; i < table.size(); ++i) {
        uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit) value = (value >> 1) ^ ((value & 1) != 0 ? 0xEDB88320u : 0u);
        table[i] = value;
    }
    return table;
}();

uint32_t Crc32(const void* data, size_t bytes) noexcept {
    const auto* p = static_cast<const uint8_t*>(data);
    uint32_t crc = 0xFFFFFFFFu;
    for (size_t i = 0; i < bytes; ++i) crc = (crc >> 8) ^ kCrcTable[(crc ^ p[i]) & 0xFF];
    return ~crc;
}

bool IsCoding(PictureCoding coding) noexcept {
    return coding == PictureCoding::Linear || coding == PictureCoding::Rec709 || coding == PictureCoding::Srgb;
}

bool PicturesAreSane(const ClipHeader& h) noexcept {
    if (h.width < 1 || h.width > kMaximumSide || h.height < 1 || h.height > kMaximumSide) return false;
    if (h.frameBytes != LevelOffset(h.width, h.height, kLevels)) return false;
    // The pictures end where the sound starts; both offsets stay far from the end of the number range.
    constexpr uint64_t kLimit = uint64_t{1} << 62;
    if (h.picturesOffset != sizeof(ClipHeader) || h.frameCount > (kLimit - h.picturesOffset) / h.frameBytes)
        return false;
    return h.soundOffset == h.picturesOffset + h.frameCount * h.frameBytes && IsCoding(h.coding);
}

bool TimeIsSane(const ClipHeader& h) noexcept {
    if (h.rateNumerator == 0 || h.rateDenominator == 0 || (h.flags & ~kDropFrameFlag) != 0) return false;
    const bool drop = (h.flags & kDropFrameFlag) != 0;
    if (drop && !MayDropFrames(h.rateNumerator, h.rateDenominator)) return false;
    return h.startFrame < FramesPerDay({NominalFps(h.rateNumerator, h.rateDenominator), drop});
}

bool SoundIsSane(const ClipHeader& h) noexcept {
    if (h.sampleCount == 0) return true;
    constexpr uint64_t kLimit = uint64_t{1} << 58;
    return h.sampleRate != 0 && (h.sampleSize == 16 || h.sampleSize == 24 || h.sampleSize == 32) &&
           h.blockSamples >= 1 && h.blockSamples <= kMaximumBlockSamples && h.sampleCount <= kLimit;
}

}  // namespace

uint32_t HeaderChecksum(const ClipHeader& header) noexcept {
    ClipHeader copy = header;
    copy.checksum = 0;
    return Crc32(&copy, sizeof copy);
}

Status CheckHeader(const ClipHeader& header) noexcept {
    if (std::memcmp(header.mark, ClipHeader{}.mark, sizeof header.mark) != 0) return Status::NotAClip;
    // A later form may keep its checksum elsewhere, so the version comes first.
    if (header.version != kClipVersion || header.headerBytes != sizeof(ClipHeader)) return Status::UnknownVersion;
    if (header.checksum != HeaderChecksum(header)) return Status::DamagedHeader;
    if (!PicturesAreSane(header) || !TimeIsSane(header) || !SoundIsSane(header)) return Status::DamagedHeader;
    if (header.settings.version != 2 || header.settings.size != sizeof(DecodeSettingsRecord)) {
        return Status::DamagedHeader;
    }
    return Status::Good;
}

}  // namespace clipfio::decoder
