// Any text as a position, in any format, and back as text.
#include <algorithm>
#include <limits>

#include "fuzz/fuzzers.h"
#include "kernel/clock_time.h"
#include "kernel/internationals.h"
#include "kernel/music_time.h"
#include "kernel/time_parse.h"
#include "kernel/time_text.h"

namespace {

constexpr size_t kHead = 8;

// The first bytes choose the format, the others are the text; those above ASCII stand for separators of some locales.
struct Input {
    _ktposfmt format{};
    uint32_t flags = 0;
    WString text;
};

Input Understand(const uint8_t* data, size_t size) {
    using Doubles = std::numeric_limits<double>;
    using Wide = std::numeric_limits<int64_t>;
    constexpr double kRates[] = {
        24, 30000.0 / 1001, 25, 60, 1000, 0, -1, 1e-300, 1e300, Doubles::infinity(), Doubles::quiet_NaN()};
    constexpr int64_t kOffsets[] = {0, 36000000000, -1, Wide::min(), Wide::max()};
    constexpr WCHAR kSeparators[] = {0xA0, 0x202F, 0x2019, 0x66B, 0x660, 0xFF10, 0xD800, 0x2212};
    Input input;
    input.format = {data[0] % 24 - 2,
                    data[1] * 192000u / 16,
                    kRates[data[2] % std::size(kRates)],
                    kRates[data[3] % std::size(kRates)] * 5,
                    kOffsets[data[4] % std::size(kOffsets)],
                    static_cast<uint16_t>(data[5] % 9),
                    static_cast<uint16_t>(data[6] % 9),
                    data[7] * 40u};
    input.flags = data[7] % 4;
    for (size_t i = kHead; i < size; ++i) {
        input.text += data[i] < 0x80 ? data[i] : kSeparators[data[i] % std::size(kSeparators)];
    }
    return input;
}

void RequireWithin(const WString& text, const WCHAR* end) {
    const WCHAR* const start = text.c_str();
    FuzzRequire(end >= start && end <= start + WStringView(start).size(), "reading stops within the text");
}

void ReadAndShow(const Input& input) {
    constexpr int64_t kLeast = -50000000000;
    constexpr int64_t kMost = 50000000000;
    const WCHAR* text = input.text.c_str();
    const WCHAR* end = nullptr;
    const int64_t time = KtTextToNanoTimeToken2(text, &input.format, 7, 0, 0, input.flags, &end);
    RequireWithin(input.text, end);
    const int64_t held =
        KtTextToNanoTimeToken2(text, &input.format, 7, kLeast, kMost, input.flags | KTPOSTEXT_LIMITS, nullptr);
    FuzzRequire(held >= kLeast && held <= kMost, "limits hold");

    WCHAR shown[1024];
    const uint32_t size = 1 + static_cast<uint32_t>(input.text.size() % 20);
    for (const int64_t t : {time, held}) {
        KtNanoTimeToTextEx(shown, &input.format, t, input.flags);
        const int32_t length = KtNanoTimeToTextExN(shown, size, &input.format, t, input.flags);
        FuzzRequire(length >= 0 && static_cast<uint32_t>(length) < size, "a text is cut to its size");
        FuzzRequire(WStringView(shown).size() == static_cast<size_t>(length), "the length is the text's");
    }
}

void ReadParts(const Input& input) {
    const WCHAR* text = input.text.c_str();
    const WCHAR* end = nullptr;
    KtTextToTimeToken(text, &input.format, input.flags & 1, &end);
    RequireWithin(input.text, end);
    KtTextToHMSFToken(text, &input.format, input.flags & 1, &end);
    RequireWithin(input.text, end);
    KtTextToMusicTimeToken(text, &input.format, input.flags, &end);
    RequireWithin(input.text, end);
    KtTextToFeetAndFramesToken(text, &input.format, input.flags & 1);
    const int64_t ticks = KtTextToTicks(text, &input.format, input.flags & 1, input.flags);
    KtTextToBeatsTicks(text, &input.format, input.flags, nullptr, nullptr);
    WCHAR shown[128];
    KtTicksToText(shown, &input.format, ticks, input.flags & 1, input.flags & 2, input.flags);
}

void ReadTimecode(const Input& input) {
    for (uint32_t format = 0; format < 8; ++format) {
        _smpteval label{format, 0, 0, 0, 0};
        KTSMPTE_TextToSMPTE(input.text.c_str(), &label);
        FuzzRequire(label.hours < 24 && label.minutes < 60 && label.seconds < 60 && label.frames < 100,
                    "a label's range");
        if (!clipfio::IsSmpteFormat(format)) continue;
        _smpteval again{format, 0, 0, 0, 0}, next = label;
        KTSMPTE_IncrementByFrame(&next);
        KTSMPTE_FrameCountToSMPTE(&again, KTSMPTE_SMPTEToFrameCount(&label));
        _smpteval of_time{format, 0, 0, 0, 0};
        KTSMPTE_NanoToSMPTE(KTSMPTE_SMPTEToNanos(&label), &of_time);
        FuzzRequire(KTSMPTE_SMPTECompare(&of_time, &again) == 0, "count and time give one label");
        FuzzRequire(KTSMPTE_SMPTECompare(&again, &label) == 0 || format == KTSMPTEFORMAT_DROP, "labels come back");
    }
}

}  // namespace

int FuzzTimeText(const uint8_t* data, size_t size) {
    static const HRESULT filled = KtLang_GetInternationals(nullptr, 0);
    if (size < kHead || FAILED(filled)) return 0;
    const Input input = Understand(data, size);
    ReadAndShow(input);
    ReadParts(input);
    ReadTimecode(input);
    return 0;
}
