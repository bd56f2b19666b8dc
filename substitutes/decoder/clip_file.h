// One clip file open for reading.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/base.h"
#include "substitutes/decoder/clip_form.h"
#include "substitutes/decoder/file_access.h"

namespace clipfio::decoder {

// A file that is shorter than its header says opens all the same: the frames and samples that are there can be read.
// Pictures and sound are read through two handles, so that neither waits for the other. Any thread, once opened.
class ClipFile {
  public:
    [[nodiscard]] Status Open(const WString& path) noexcept;

    [[nodiscard]] const ClipHeader& Header() const noexcept { return header_; }
    [[nodiscard]] uint32_t Channels() const noexcept { return ChannelCount(header_.channelMask); }

    // Good when the frame is one of the clip and its picture at that level lies within the file.
    [[nodiscard]] Status CheckPicture(uint64_t frame, uint32_t level) const noexcept;
    // Rows of a picture that was checked, as they are stored.
    [[nodiscard]] Status ReadRows(uint64_t frame, uint32_t level, uint32_t row, uint32_t rows, void* out) noexcept;

    // Samples per channel that a read from `first` on can give, as far as the file goes.
    [[nodiscard]] uint64_t SamplesFrom(uint64_t first) const noexcept;
    // `samples` per channel, of those that are there, interleaved and big-endian; fewer when the file fails.
    uint64_t ReadSamples(uint64_t first, uint64_t samples, void* out) noexcept;

  private:
    [[nodiscard]] uint64_t PictureOffset(uint64_t frame, uint32_t level) const noexcept;

    ClipHeader header_;
    InputFile pictures_;
    InputFile sound_;
};

}  // namespace clipfio::decoder
