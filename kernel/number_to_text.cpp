#include "kernel/number_to_text.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "kernel/digits.h"
#include "kernel/number_text.h"
#include "kernel/text_copy.h"

namespace {

using clipfio::CopyText;
using clipfio::DecimalDigits;
using clipfio::NumberFit;
using clipfio::NumberForm;

constexpr int32_t kLongest = 64;  // characters of an unbounded form

struct Written {
    int32_t length;
    bool whole;
};

// Where the groups do not fit, the digits go without them, as the printer has it.
Written Write(const WCHAR* text, WStringView view, WCHAR* out, int32_t size, bool grouped, NumberForm form,
              int32_t decimals) noexcept {
    if (grouped) {
        const auto number = clipfio::FormatNumberText(text, out, size, form, decimals, clipfio::InternationalsRecord());
        if (number.fit == NumberFit::kDone) return {number.length, true};
    }
    const int32_t length = CopyText(out, size, view);
    return {length, !grouped && static_cast<std::size_t>(length) == view.size()};
}

template <class Integer>
Written WriteInteger(Integer value, WCHAR* out, int32_t size, int32_t grouped) noexcept {
    const DecimalDigits digits(value);
    // Zero is written the same everywhere.
    return Write(digits.Text(), digits.View(), out, size, grouped != 0 && value != 0, NumberForm::kGrouped, 0);
}

template <class Integer>
int32_t IntegerOrNothing(Integer value, WCHAR* out, int32_t size, int32_t grouped) noexcept {
    if (size < 2) return 0;
    const Written written = WriteInteger(value, out, size, grouped);
    return written.whole ? written.length : 0;
}

// Single precision, so that what is halved is a little more or less than the true power.
constexpr float kSteps[] = {1e0f, 1e-1f, 1e-2f, 1e-3f, 1e-4f, 1e-5f, 1e-6f, 1e-7f, 1e-8f, 1e-9f};
constexpr uint32_t kPowers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};
constexpr auto kMostDecimals = static_cast<int32_t>(std::size(kSteps)) - 1;

struct Parts {
    uint64_t whole;
    uint64_t fraction;  // in units of the last decimal
};

Parts Split(double value, int32_t decimals) noexcept {
    constexpr double kTooLarge = 18446744073709551616.0;
    const double rounded = std::fabs(value) + double{kSteps[decimals]} * 0.5;
    if (std::isnan(rounded)) return {0, 0};
    if (rounded >= kTooLarge) return {std::numeric_limits<uint64_t>::max(), 0};
    const auto whole = static_cast<uint64_t>(rounded);
    const double fraction = (rounded - static_cast<double>(whole)) * kPowers[decimals];
    return {whole, static_cast<uint64_t>(fraction)};
}

int32_t WriteDouble(WCHAR* out, int32_t size, double value, int32_t decimals, int32_t grouped) noexcept {
    decimals = std::clamp(decimals, 0, kMostDecimals);
    const Parts parts = Split(value, decimals);
    WCHAR text[kLongest];
    WCHAR* end = text;
    const auto append = [&end](WStringView digits) { end = std::copy(digits.begin(), digits.end(), end); };
    if (value < 0 && (parts.whole != 0 || parts.fraction != 0)) append(W("-"));
    append(DecimalDigits(parts.whole).View());
    if (decimals > 0) {
        // The power in front keeps the zeros that the fraction begins with.
        WCHAR* const point = end;
        append(DecimalDigits(kPowers[decimals] + parts.fraction).View());
        *point = W('.');
    }
    *end = 0;
    const WStringView view(text, static_cast<std::size_t>(end - text));
    return Write(text, view, out, size, grouped != 0, NumberForm::kGroupedDecimal, decimals).length;
}

}  // namespace

int32_t KtDWordToText(uint32_t value, WCHAR* out, int32_t grouped) noexcept {
    return WriteInteger(value, out, kLongest, grouped).length;
}
int32_t KtDWordLongToText(uint64_t value, WCHAR* out, int32_t grouped) noexcept {
    return WriteInteger(value, out, kLongest, grouped).length;
}
int32_t KtLongToText(int32_t value, WCHAR* out, int32_t grouped) noexcept {
    return WriteInteger(value, out, kLongest, grouped).length;
}
int32_t KtLongLongToText(int64_t value, WCHAR* out, int32_t grouped) noexcept {
    return WriteInteger(value, out, kLongest, grouped).length;
}

int32_t KtDWordToTextN(uint32_t value, WCHAR* out, int32_t size, int32_t grouped) noexcept {
    return IntegerOrNothing(value, out, size, grouped);
}
int32_t KtLongToTextN(int32_t value, WCHAR* out, int32_t size, int32_t grouped) noexcept {
    return IntegerOrNothing(value, out, size, grouped);
}
int32_t KtLongLongToTextN(int64_t value, WCHAR* out, int32_t size, int32_t grouped) noexcept {
    return IntegerOrNothing(value, out, size, grouped);
}
int32_t KtDWordLongToTextN(uint64_t value, WCHAR* out, int32_t size, int32_t grouped) noexcept {
    return WriteInteger(value, out, size, grouped).length;
}

int32_t KtDoubleToText(WCHAR* out, double value, int32_t decimals, int32_t grouped) noexcept {
    return WriteDouble(out, kLongest, value, decimals, grouped);
}
int32_t KtDoubleToTextN(WCHAR* out, int32_t size, double value, int32_t decimals, int32_t grouped) noexcept {
    return WriteDouble(out, std::min(size, kLongest), value, decimals, grouped);
}
