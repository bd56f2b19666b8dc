#include "host/frame_options.h"

#include <cmath>
#include <optional>

#include "host/failure.h"
#include "host/numbers.h"

namespace clipfio::host {
namespace {

constexpr double kMostFramesPerSecond = 1000.0;
constexpr uint32_t kMostQuality = 100;
constexpr uint32_t kMostRatePart = 1'000'000;

// N * 1000 / 1001 for a whole N, when the rate is that to three decimals.
std::optional<uint32_t> FamilyOf1001(double rate) {
    const double whole = std::round(rate * 1.001);
    if (whole < 1 || std::fabs(rate - whole / 1.001) > 0.005 || std::fabs(rate - std::round(rate)) < 0.005) {
        return std::nullopt;
    }
    return static_cast<uint32_t>(whole) * 1000;
}

std::optional<Rate> RateOf(double rate) {
    if (!(rate > 0) || rate > kMostFramesPerSecond) return std::nullopt;
    if (const auto numerator = FamilyOf1001(rate)) return Rate{*numerator, 1001};
    if (rate == std::floor(rate)) return Rate{static_cast<uint32_t>(rate), 1};
    const auto thousandths = static_cast<uint32_t>(std::lround(rate * 1000));
    if (thousandths == 0) return std::nullopt;
    return Rate{thousandths, 1000};
}

}  // namespace

void AddClip(Arguments& arguments, std::string& clip) {
    arguments.Text("clip", clip, "The clip", "CLIP", Arguments::kRequired);
}

void AddFrameOptions(Arguments& arguments, FrameOptions& options) {
    arguments.Real("--scale", options.scale, 0, Arguments::kExcluded, 1,
                   "Size as a fraction of the full one; 1, 1/2, 1/4, 1/8 and 1/16 are had", "S");
    arguments.Number("--quality", options.quality, 0, kMostQuality,
                     "At half size, 4 and more is the better of two ways", "Q");
}

void AddFrameRange(Arguments& arguments, RangeText& range) {
    arguments.Text("--from", range.from, "First frame, from 0, or its timecode (else the clip's first)", "A");
    arguments.Text("--to", range.to, "Last frame or its timecode, itself included (else the clip's last)", "B");
}

PictureSize ParseSize(const std::string& text) {
    const std::size_t cross = text.find('x');
    if (cross != std::string::npos) {
        const auto width = ReadNumber<uint32_t>(text.substr(0, cross));
        const auto height = ReadNumber<uint32_t>(text.substr(cross + 1));
        if (width && height && *width > 0 && *height > 0) return {*width, *height};
    }
    throw UsageError("--size: '" + text + "' is not a size such as 1920x1080");
}

Rate ParseRate(const std::string& text) {
    const std::size_t slash = text.find('/');
    if (slash != std::string::npos) {
        const auto numerator = ReadNumber<uint32_t>(text.substr(0, slash));
        const auto denominator = ReadNumber<uint32_t>(text.substr(slash + 1));
        if (numerator && denominator && *numerator > 0 && *denominator > 0 && *numerator <= kMostRatePart &&
            *denominator <= kMostRatePart && *numerator <= kMostFramesPerSecond * *denominator) {
            return {*numerator, *denominator};
        }
    } else if (const auto number = ReadNumber<double>(text)) {
        if (const auto rate = RateOf(*number)) return *rate;
    }
    throw UsageError("--rate: '" + text + "' is not a rate such as 24, 23.976 or 30000/1001");
}

std::string RateText(double rate) {
    const auto known = RateOf(rate);
    if (!known) return NumberText(rate);
    if (known->denominator == 1) return std::to_string(known->numerator);
    if (known->denominator == 1001) return std::to_string(known->numerator) + "/1001";
    return NumberText(rate);
}

}  // namespace clipfio::host
