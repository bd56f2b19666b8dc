// Makes clips of the form that the decoder library beside it reads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/base.h"
#include "r3dsdk/sdk_records.h"
#include "substitutes/decoder/clip_form.h"

namespace clipfio::decoder {

struct ClipDescription {
    uint32_t width = 0;   // pixels, 1..16384
    uint32_t height = 0;  // the same
    uint32_t rate_numerator = 24;
    uint32_t rate_denominator = 1;
    uint32_t start_frame = 0;  // timecode of the first frame, in frames from 00:00:00:00; less than a day
    bool drop_frame = false;   // at 30000/1001 and 60000/1001 only
    PictureCoding coding = PictureCoding::Rec709;
    uint32_t sample_rate = 0;   // 0: no sound
    uint32_t sample_size = 24;  // 16, 24 or 32: how many of a sample's upper bits mean something
    uint32_t channel_mask = 0;  // a channel for each bit; bits 0 to 3
    DecodeSettingsRecord settings = {};
};

// Writes beside the target, under a name of its own, and takes the target's name only in Finish: a clip that was not
// finished leaves no file, and an older file of that name stays as it was. A link is followed; what is no regular file
// is refused.
//
// Pictures and sound may come in any order and in any portions. All operations give false on failure; Error() then
// says why in English, the file is gone, and everything but Open goes on failing. One thread.
class ClipWriter {
  public:
    ClipWriter();
    ~ClipWriter();  // gives the clip up when Finish was not called
    ClipWriter(const ClipWriter&) = delete;
    ClipWriter& operator=(const ClipWriter&) = delete;

    bool Open(WStringView path, const ClipDescription& description) noexcept;
    // `rgb`: width x height pixels, rows top first, samples red, green, blue, 16 bits each.
    bool AddFrame(const uint16_t* rgb) noexcept;
    // `interleaved`: `samples` for each channel, 32 bits signed, full scale.
    bool AddAudio(const int32_t* interleaved, size_t samples) noexcept;
    bool Finish() noexcept;

    [[nodiscard]] uint64_t FrameCount() const noexcept;
    [[nodiscard]] const std::string& Error() const noexcept { return error_; }  // UTF-8

  private:
    struct Job;
    template <class Step>
    bool Run(Step step) noexcept;
    bool Fail(std::string_view text);
    bool FailHere(std::string_view what);

    std::unique_ptr<Job> job_;
    std::string error_;
};

}  // namespace clipfio::decoder
