// The numbers in the text of a time.
#pragma once

#include <array>
#include <cstdint>

#include "kernel/characters.h"
#include "platform/base.h"

namespace clipfio {

struct TimeField {
    uint32_t value = 0;  // held at 2^31 - 1
    WStringView digits;  // as they stand in the text; none for the 0 that a character at the end stands for
};

constexpr bool IsBlank(WCHAR c) noexcept { return c == W(' ') || c == W('\t'); }

// Reads numbers of at most 31 digits from the left. Whatever is no digit separates. Behind the last digit each
// character that is no blank stands for one more number, 0: "1:" is 1 and 0. A text without digits has no numbers.
class TimeFieldReader {
  public:
    enum Split {
        kWhole,
        kPairs,  // longer runs of digits count by twos from the right
    };
    // Null is an empty text.
    TimeFieldReader(const WCHAR* text, Split split) noexcept;

    // False, and the field as it was, when there are no more.
    bool Next(TimeField& field) noexcept;
    // Not before the place behind what was read last.
    void ContinueAt(const WCHAR* place) noexcept { next_ = place; }
    // Behind what was read last.
    [[nodiscard]] const WCHAR* Position() const noexcept { return next_; }
    // Nothing but blanks is left.
    [[nodiscard]] bool IsAllRead() const noexcept;

  private:
    const WCHAR* next_;
    const WCHAR* digits_end_;  // behind the last digit
    Split split_;
};

// Up to N numbers, the last one read being the last of all; those that are not there are 0.
template <std::size_t N>
struct TimeFields {
    std::array<TimeField, N> fields{};
    std::size_t count = 0;
    const WCHAR* end;  // behind what was read

    explicit TimeFields(const WCHAR* text, std::size_t most = N) noexcept {
        TimeFieldReader reader(text, TimeFieldReader::kWhole);
        for (TimeField field; count < most && reader.Next(field); ++count) {
            for (std::size_t i = 1; i < N; ++i) fields[i - 1] = fields[i];
            fields[N - 1] = field;
        }
        end = reader.Position();
    }
    uint32_t operator[](std::size_t i) const noexcept { return fields[i].value; }
    // Counted from the first one read.
    [[nodiscard]] uint32_t FromLeft(std::size_t i) const noexcept {
        return i < count ? fields[N - count + i].value : 0;
    }
};

}  // namespace clipfio
