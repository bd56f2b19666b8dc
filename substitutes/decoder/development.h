// A look made into tables, for one kind of stored picture and one kind of output.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "r3dsdk/sdk_records.h"
#include "substitutes/decoder/clip_form.h"
#include "substitutes/decoder/look.h"

namespace clipfio::decoder {

// Immutable once made; any thread.
//
// While no channel reaches into another, a sample goes through one table from code to code. Otherwise it goes through a
// table to light, the three lights through a matrix, and each result through a table whose steps widen with the light.
class Development {
  public:
    // `type` is Bgra8 or Rgb16. Throws std::bad_alloc.
    Development(const DecodeSettingsRecord& settings, PictureCoding coding, PixelType type);

    [[nodiscard]] bool IsFor(const DecodeSettingsRecord& settings, PictureCoding coding, PixelType type) const noexcept;

    // `out` takes `pixels` pixels of the type, aligned for its samples.
    void DevelopRow(const uint16_t* rgb, void* out, size_t pixels) const noexcept;

  private:
    // Tables of the three channels; channels that do the same share one.
    template <class T>
    struct Tables {
        std::vector<T> values;
        std::array<size_t, 3> start{};

        [[nodiscard]] const T* Of(size_t channel) const noexcept { return values.data() + start[channel]; }
        template <class Fill, class Alike>
        void Make(size_t entries, Fill fill, Alike alike);
    };

    struct Run;

    void MakeLight(const Look& look);
    void MakeSignal(const Look& look);
    void MakeMixed(const Look& look);
    void MakeDirect(const Look& look);
    void Mix8(const uint16_t* rgb, uint8_t* out, size_t pixels) const noexcept;
    void Mix16(const uint16_t* rgb, uint16_t* out, size_t pixels) const noexcept;
    void Direct8(const uint16_t* rgb, uint8_t* out, size_t pixels) const noexcept;
    void Direct16(const uint16_t* rgb, uint16_t* out, size_t pixels) const noexcept;

    DecodeSettingsRecord settings_;
    PictureCoding coding_;
    PixelType type_;
    bool mixes_ = false;
    bool copies_ = false;  // 16 bits come out as they went in
    std::array<float, 9> matrix_{};
    const float* stored_light_;  // by stored code, before any setting
    Tables<float> light_;        // by stored code; none when the exposure is in the matrix
    Tables<float> signal_;       // by step of light, scaled to the full 16 bits
    Tables<uint8_t> signal8_;    // the same for 8 bits, in the middle of each step
    Tables<uint16_t> direct_;    // by stored code, when nothing is mixed
    Tables<uint8_t> direct8_;
};

}  // namespace clipfio::decoder
