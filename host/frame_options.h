// Arguments that several commands take.
#pragma once

#include <string>

#include "host/arguments.h"
#include "host/frames.h"

namespace clipfio::host {

void AddClip(Arguments& arguments, std::string& clip);

// --scale, --quality.
void AddFrameOptions(Arguments& arguments, FrameOptions& options);

// --from and --to, as ParseFrameRange takes them.
struct RangeText {
    std::string from;
    std::string to;
};
void AddFrameRange(Arguments& arguments, RangeText& range);

struct PictureSize {
    uint32_t width = 0;
    uint32_t height = 0;
};
// "WxH". Throws UsageError.
[[nodiscard]] PictureSize ParseSize(const std::string& text);

// Frames a second: a number, or one over another, as in 30000/1001.
struct Rate {
    uint32_t numerator = 0;
    uint32_t denominator = 1;
};
// A decimal near a rate of the 1001 family (23.976, 29.97, 59.94) means that rate. Throws UsageError.
[[nodiscard]] Rate ParseRate(const std::string& text);
// The other way: what an encoder takes for the rate.
[[nodiscard]] std::string RateText(double rate);

}  // namespace clipfio::host
