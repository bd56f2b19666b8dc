#include "kernel/time_fields.h"

#include <algorithm>
#include <limits>

namespace clipfio {
namespace {

constexpr std::size_t kLongestField = 31;

uint32_t ValueOf(WStringView digits) noexcept {
    constexpr uint32_t kMost = std::numeric_limits<int32_t>::max();
    uint64_t value = 0;
    for (const WCHAR c : digits) value = std::min<uint64_t>(value * 10 + static_cast<uint32_t>(DigitValue(c)), kMost);
    return static_cast<uint32_t>(value);
}

}  // namespace

TimeFieldReader::TimeFieldReader(const WCHAR* text, Split split) noexcept
    : next_(text ? text : W("")), digits_end_(next_), split_(split) {
    for (const WCHAR* p = next_; *p; ++p) {
        if (DigitValue(*p) >= 0) digits_end_ = p + 1;
    }
    // Without digits nothing stands for a number.
    if (digits_end_ == next_) digits_end_ = nullptr;
}

bool TimeFieldReader::Next(TimeField& field) noexcept {
    if (!digits_end_) return false;
    const WCHAR* start = next_;
    if (next_ >= digits_end_) {
        while (IsBlank(*start)) ++start;
        if (!*start) return false;
        field = {0, {start, 0}};
        next_ = start + 1;
        return true;
    }
    while (DigitValue(*start) < 0) ++start;
    const WCHAR* end = start;
    while (DigitValue(*end) >= 0) ++end;
    const auto run = static_cast<std::size_t>(end - start);
    const WStringView digits(start, split_ == kWhole ? std::min(run, kLongestField) : 2 - run % 2);
    field = {ValueOf(digits), digits};
    next_ = start + digits.size();
    return true;
}

bool TimeFieldReader::IsAllRead() const noexcept {
    const WCHAR* p = next_;
    while (IsBlank(*p)) ++p;
    return *p == 0;
}

}  // namespace clipfio
