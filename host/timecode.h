// Timecode as the user reads and writes it, and the frames that it names.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/clip.h"
#include "substitutes/decoder/timecode.h"

namespace clipfio::host {

struct TimecodeLabel {
    decoder::Timecode numbers{};
    bool drop_frame = false;  // ';' stands before the frames
};

// "hh:mm:ss:ff" or "hh:mm:ss;ff" in any widths; nothing when it is of another form.
[[nodiscard]] std::optional<TimecodeLabel> SplitTimecode(std::string_view text);

// Whether the numbers are those of a clock at the rate, and not left out by drop-frame counting.
[[nodiscard]] bool IsOnClock(const decoder::Timecode& code, uint32_t fps);
[[nodiscard]] bool IsLeftOut(const decoder::Timecode& code, decoder::TimecodeRate rate);

// Frames from 00:00:00:00.
[[nodiscard]] uint64_t FrameOf(const decoder::Timecode& code, decoder::TimecodeRate rate);

// "hh:mm:ss:ff".
[[nodiscard]] std::string TimecodeText(const decoder::Timecode& code);

// A time as the module gives it, which is what a clock at `rate` frames a second shows, as that clock's numbers.
[[nodiscard]] decoder::Timecode TimecodeOfTime(int64_t time, double rate);

// The timecodes of a clip's frames.
class ClipTimecode {
  public:
    // Nothing when the clip has none.
    [[nodiscard]] static std::optional<ClipTimecode> Of(Clip& clip);

    [[nodiscard]] const decoder::Timecode& First() const { return first_; }
    [[nodiscard]] const decoder::Timecode& Last() const { return last_; }
    // The frame that carries the timecode, the first one where several do; nothing when none does.
    [[nodiscard]] std::optional<uint64_t> Find(const decoder::Timecode& code) const;

  private:
    [[nodiscard]] uint64_t FramesFromFirst(const decoder::Timecode& code, decoder::TimecodeRate rate) const;

    decoder::Timecode first_{};
    decoder::Timecode last_{};
    uint64_t frames_ = 0;
    decoder::TimecodeRate rate_;
};

}  // namespace clipfio::host
