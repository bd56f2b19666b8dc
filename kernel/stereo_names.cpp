#include "kernel/stereo_names.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>

#include "kernel/characters.h"
#include "kernel/lang.h"
#include "kernel/print.h"
#include "kernel/string_rows.h"
#include "kernel/text_copy.h"
#include "platform/text.h"

namespace {

constexpr std::size_t kLongestName = 260;
constexpr auto kNowhere = WStringView::npos;

struct Side {
    WCHAR* out;
    int32_t size;

    void Write(WStringView first, WStringView second) const noexcept {
        const int32_t length = clipfio::CopyText(out, size, first);
        if (out) clipfio::CopyText(out + length, size - length, second);
    }
};

struct Run {
    std::size_t start;
    std::size_t end;
    uint64_t value;
};

std::optional<Run> NextNumber(WStringView name, std::size_t from) noexcept {
    constexpr uint64_t kMost = std::numeric_limits<uint64_t>::max() / 20;
    std::size_t start = from;
    while (start < name.size() && clipfio::DigitValue(name[start]) < 0) ++start;
    if (start == name.size()) return std::nullopt;
    Run run{start, start, 0};
    for (; run.end < name.size() && clipfio::DigitValue(name[run.end]) >= 0; ++run.end) {
        run.value = std::min(run.value, kMost) * 10 + static_cast<uint64_t>(clipfio::DigitValue(name[run.end]));
    }
    // What is too large to be told apart is followed by nothing.
    if (run.value > kMost) run.value = std::numeric_limits<uint64_t>::max() - 1;
    return run;
}

bool SplitAtNumbers(WStringView name, const Side& left, const Side& right) noexcept {
    auto first = NextNumber(name, 0);
    while (first) {
        const auto second = NextNumber(name, first->end);
        if (!second) return false;
        if (second->value == first->value + 1) {
            const auto slash_behind = [name](const Run& run) {
                return run.end < name.size() && name[run.end] == W('/');
            };
            if (slash_behind(*first) && slash_behind(*second)) name = name.substr(0, second->end);
            left.Write(name.substr(0, first->end), name.substr(second->end));
            right.Write(name.substr(0, first->start), name.substr(second->start));
            return true;
        }
        first = second;
    }
    return false;
}

bool IsSame(WStringView a, WStringView b) noexcept {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](WCHAR x, WCHAR y) { return platform::UpperCase(x) == platform::UpperCase(y); });
}

bool Contains(WStringView text, WStringView part) noexcept {
    return std::search(text.begin(), text.end(), part.begin(), part.end(),
                       [](WCHAR x, WCHAR y) { return platform::UpperCase(x) == platform::UpperCase(y); }) != text.end();
}

// The slash that parts the two sides: the only one, but for that of the digital connection's name in front of it.
std::size_t FindSlash(WStringView name) noexcept {
    constexpr WStringView kDigital = W("S/PDIF");
    std::size_t slash = name.find(W('/'));
    if (slash != kNowhere && slash > 0 && IsSame(name.substr(slash - 1, kDigital.size()), kDigital)) {
        slash = name.find(W('/'), slash + 1);
    }
    return slash == name.rfind(W('/')) ? slash : kNowhere;
}

bool SplitAtSlash(WStringView name, const Side& left, const Side& right) noexcept {
    constexpr std::size_t kAlike = 3;
    const std::size_t slash = FindSlash(name);
    if (slash == kNowhere) return false;
    const WStringView before = name.substr(0, slash);
    WStringView tail = name.substr(slash + 1);
    if (name.size() > kAlike && tail.size() > kAlike && name.substr(0, kAlike) == tail.substr(0, kAlike)) {
        const auto differs = std::mismatch(tail.begin(), tail.end(), name.begin(), name.end()).first;
        tail.remove_prefix(static_cast<std::size_t>(differs - tail.begin()));
    }
    const std::size_t blank = tail.find(W(' '));
    left.Write(before, blank == kNowhere ? WStringView() : tail.substr(blank));
    right.Write(before.substr(0, before.rfind(W(' ')) + 1), tail);
    return true;
}

// Without a slash or a number the sides are told by words.
bool AppendSides(WStringView name, const Side& left, const Side& right) noexcept {
    const WStringView left_word = KtGetString(clipfio::KernelLanguage(), clipfio::kKtStrLeft);
    const WStringView right_word = KtGetString(clipfio::KernelLanguage(), clipfio::kKtStrRight);
    if (Contains(name, left_word) || Contains(name, right_word)) return false;
    WCHAR text[kLongestName + 4];
    WCHAR* const end = std::copy(name.begin(), name.end(), text);
    constexpr WStringView kBetween = W(" - ");
    std::copy(kBetween.begin(), kBetween.end(), end);
    const WStringView front(text, name.size() + kBetween.size());
    left.Write(front, left_word);
    right.Write(front, right_word);
    return true;
}

}  // namespace

int32_t KtChannelizeStereoName(const WCHAR* name, WCHAR* left, int32_t left_size, WCHAR* right,
                               int32_t right_size) noexcept {
    if (!name) return 0;
    // A copy, so that a destination may be the name itself.
    WCHAR copy[kLongestName + 1];
    const auto length = static_cast<std::size_t>(clipfio::CopyText(copy, kLongestName + 1, name));
    const WStringView text(copy, length);
    const Side left_side{left, left_size};
    const Side right_side{right, right_size};
    return SplitAtNumbers(text, left_side, right_side) || SplitAtSlash(text, left_side, right_side) ||
                   AppendSides(text, left_side, right_side)
               ? 1
               : 0;
}
