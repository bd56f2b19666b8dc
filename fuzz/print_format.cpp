// Formats: any text prints, with arguments of every kind at hand, and the bounded print is the unbounded one, cut.
#include <algorithm>
#include <cstring>
#include <memory>

#include "fuzz/fuzzers.h"
#include "kernel/internationals.h"
#include "kernel/print.h"
#include "kernel/print_tokens.h"
#include "platform/base.h"

namespace {

constexpr std::size_t kMostFormat = 300;               // characters
constexpr std::size_t kRoom = kMostFormat * 1100 + 1;  // each character may open a conversion of 1024
constexpr WCHAR kGuard = 0xABCD;

void SetUp() {
    static const bool done = [] {
        clipfio::CreatePrintTokens();
        KtLang_GetInternationals(nullptr, 0);
        KtPrintF_AddToken(W("a"), W("value"));
        return true;
    }();
    static_cast<void>(done);
}

// One word an argument. All are addresses of a text, which every conversion can read in its own way; doubles come from
// registers of their own where there are such.
template <class Print>
auto WithArguments(Print print) {
    static constexpr WCHAR kText[] = W("text");
    const WCHAR* const t = kText;
    return print(t, t, t, t, t, t, t, t, t, t, t, t, t, t, t, t, 1.5, -2e9, 1e300, 0.0, 1e-5, 7.25, -0.0, 123456.789);
}

// How many arguments the format can take at most.
bool TakesTooMany(const WString& format) {
    return std::count(format.begin(), format.end(), W('%')) + std::count(format.begin(), format.end(), W('$')) > 16;
}

}  // namespace

int FuzzPrintFormat(const uint8_t* data, size_t size) {
    SetUp();
    if (size < 2) return 0;
    const uint32_t bound = 1 + data[0] + (data[1] & 3) * 256u;
    const std::size_t length = std::min((size - 2) / sizeof(WCHAR), kMostFormat);
    WString format(length, 0);
    std::memcpy(format.data(), data + 2, length * sizeof(WCHAR));
    format.resize(WStringView(format.c_str()).size());
    if (TakesTooMany(format)) return 0;

    const auto whole = std::make_unique<WCHAR[]>(kRoom);
    const int32_t written = WithArguments([&](auto... a) { return KtPrintF(whole.get(), format.c_str(), a...); });
    FuzzRequire(written >= 0 && WStringView(whole.get()).size() <= static_cast<std::size_t>(written), "a length");

    const auto cut = std::make_unique<WCHAR[]>(bound + 1);
    std::fill_n(cut.get(), bound + 1, kGuard);
    uint32_t cut_length = 0;
    const HRESULT result =
        WithArguments([&](auto... a) { return KtCchPrintF(cut.get(), bound, &cut_length, format.c_str(), a...); });
    FuzzRequire(cut_length < bound && cut[cut_length] == 0 && cut[bound] == kGuard, "it keeps to its room");
    FuzzRequire(
        result == 0 || static_cast<uint32_t>(result) == 0x8004E03Cu || static_cast<uint32_t>(result) == 0x8007007Au,
        "a result that is told of");
    FuzzRequire(cut_length <= static_cast<uint32_t>(written) || written >= 1024, "a cut text is no longer");
    return 0;
}
