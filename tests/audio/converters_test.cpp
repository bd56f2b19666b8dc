// The rule of conversion itself: rows worked out by hand, an oracle in integers and the C library's rounding, and which
// pairs there are; and that every vector level gives the samples of the rule, bit for bit.
#include <algorithm>
#include <cstring>

#include "audio/copy_engine.h"
#include "audio/sample_data.h"
#include "audio/sample_rule.h"
#include "audio/wfx.h"

namespace clipfio::audio {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

// Integers are given by value; floats too, where they fit.
constexpr struct {
    const char* name;
    KTSAMPLETYPE source;
    double value;
    float gain;
    KTSAMPLETYPE destination;
    double expected;
} kRows[] = {
    {"full scale is limited", KTSAMPLETYPE_FLOAT32, 1.0, 1.0f, KTSAMPLETYPE_PCM16, 32767},
    {"lowest is whole", KTSAMPLETYPE_FLOAT32, -1.0, 1.0f, KTSAMPLETYPE_PCM16, -32768},
    {"tie down to 0", KTSAMPLETYPE_FLOAT32, 0.5 / 32768, 1.0f, KTSAMPLETYPE_PCM16, 0},
    {"tie up to 2", KTSAMPLETYPE_FLOAT32, 1.5 / 32768, 1.0f, KTSAMPLETYPE_PCM16, 2},
    {"widening shifts", KTSAMPLETYPE_PCM16, 0x1234, 1.0f, KTSAMPLETYPE_PCM24, 0x123400},
    {"middle of 8 bits", KTSAMPLETYPE_PCM8, 0, 1.0f, KTSAMPLETYPE_FLOAT32, 0.0},
    {"same type, limited", KTSAMPLETYPE_PCM16, 32767, 2.0f, KTSAMPLETYPE_PCM16, 32767},
    {"same type, tie up", KTSAMPLETYPE_PCM16, 7, 0.5f, KTSAMPLETYPE_PCM16, 4},
    {"floats are not limited", KTSAMPLETYPE_FLOAT32, 1.5, 1.0f, KTSAMPLETYPE_FLOAT64, 1.5},
    {"nor with a gain", KTSAMPLETYPE_FLOAT64, 3.0, -2.0f, KTSAMPLETYPE_FLOAT32, -6.0},
    {"highest of 32 bits from float", KTSAMPLETYPE_FLOAT32, 1.0, 1.0f, KTSAMPLETYPE_PCM32, 2147483647},
    {"infinity", KTSAMPLETYPE_FLOAT32, kInfinity, 1.0f, KTSAMPLETYPE_PCM24, 8388607},
    {"not a number", KTSAMPLETYPE_FLOAT32, kNan, 1.0f, KTSAMPLETYPE_PCM16, 0},
    {"silence times infinity", KTSAMPLETYPE_PCM16, 0, kInfinity, KTSAMPLETYPE_PCM16, 0},
    {"gain is no number", KTSAMPLETYPE_PCM24, 1000, kNan, KTSAMPLETYPE_PCM32, 0},
    {"word above 24 bits to 24", KTSAMPLETYPE_PCM24IN32, 0x800000, 1.0f, KTSAMPLETYPE_PCM24, 0x7FFFFF},
    {"word above 24 bits to 32", KTSAMPLETYPE_PCM24IN32, 0x7FFFFFFF, 1.0f, KTSAMPLETYPE_PCM32, 0x7FFFFF00},
    {"word below 24 bits to 32", KTSAMPLETYPE_PCM24IN32, -2147483648.0, 1.0f, KTSAMPLETYPE_PCM32BE, -2147483648.0},
    {"word above 24 bits as it stands", KTSAMPLETYPE_PCM24IN32, 0x1000000, 1.0f, KTSAMPLETYPE_PCM24IN32, 0x1000000},
    {"word above 24 bits to float", KTSAMPLETYPE_PCM24IN32, 0x1000000, 1.0f, KTSAMPLETYPE_FLOAT32, 2.0},
    {"word above 24 bits with a gain", KTSAMPLETYPE_PCM24IN32, 0x1000000, 0.25f, KTSAMPLETYPE_PCM24, 0x400000},
};

void StoreValue(KTSAMPLETYPE type, uint8_t* p, double value) {
    WithFormat(type, [&]<class F>(F) {
        if constexpr (std::is_same_v<F, Float32>) {
            F::Store(p, static_cast<float>(value));
        } else if constexpr (std::is_same_v<F, Float64>) {
            F::Store(p, value);
        } else {
            F::Store(p, static_cast<int32_t>(value));
        }
    });
}

double LoadValue(KTSAMPLETYPE type, const uint8_t* p) {
    double value = 0;
    WithFormat(type, [&]<class F>(F) { value = F::Load(p); });
    return value;
}

TEST(ConverterRule, RowsAtEveryLevel) {
    for (const CpuLevel level : kCpuLevels) {
        if (!SetCpuLevel(level)) continue;
        for (const auto& row : kRows) {
            uint8_t source[8];
            uint8_t destination[8];
            StoreValue(row.source, source, row.value);
            KtAudio_GetCopyFunction2(row.destination, row.source)(destination, source, 1, row.gain);
            EXPECT_EQ(LoadValue(row.destination, destination), row.expected) << row.name << ", " << NameOf(level);
        }
    }
    ResetCpuLevel();
}

TEST(ConverterRule, CodesLieInMemoryAsTheTableSays) {
    const struct {
        KTSAMPLETYPE type;
        std::vector<uint8_t> bytes;
    } kCodes[] = {
        // 0x12345678 of 32 bits in every depth
        {KTSAMPLETYPE_PCM8, {0x92}},
        {KTSAMPLETYPE_PCM8S, {0x12}},
        {KTSAMPLETYPE_PCM16, {0x34, 0x12}},
        {KTSAMPLETYPE_PCM16BE, {0x12, 0x34}},
        {KTSAMPLETYPE_PCM24, {0x56, 0x34, 0x12}},
        {KTSAMPLETYPE_PCM24BE, {0x12, 0x34, 0x56}},
        {KTSAMPLETYPE_PCM24IN32, {0x56, 0x34, 0x12, 0x00}},
        {KTSAMPLETYPE_PCM32, {0x78, 0x56, 0x34, 0x12}},
        {KTSAMPLETYPE_PCM32BE, {0x12, 0x34, 0x56, 0x78}},
    };
    for (const auto& code : kCodes) {
        std::vector<uint8_t> out(code.bytes.size());
        kReferenceConverters.Find(code.type, KTSAMPLETYPE_PCM32)(out.data(), "\x78\x56\x34\x12", 1, 1.0f);
        EXPECT_EQ(out, code.bytes) << code.type;
    }
}

// The integer that the sample stands for in the destination, by other means than the rule's own.
template <class Dst, class Src>
int64_t Oracle(const uint8_t* p, float gain) {
    constexpr int64_t kHighest = (int64_t{1} << (Dst::kDepth - 1)) - 1;
    if constexpr (!kIsFloat<Src>) {
        if (gain == 1.0f) {
            // In units of a quarter of the finer step, with Euclidean division.
            const int64_t x = int64_t{Src::Load(p)} * (int64_t{1} << 32) / (int64_t{1} << (Src::kDepth - 1));
            const int64_t unit = (int64_t{1} << 32) >> (Dst::kDepth - 1);
            int64_t floor = x / unit - (x % unit < 0);
            const int64_t twice = 2 * (x - floor * unit);
            if (twice > unit || (twice == unit && floor % 2 != 0)) ++floor;
            return std::clamp(floor, -kHighest - 1, kHighest);
        }
    }
    double v;
    if constexpr (std::is_same_v<Src, Float32>) {
        v = gain == 1.0f ? Src::Load(p) : Src::Load(p) * gain;
    } else if constexpr (std::is_same_v<Src, Float64>) {
        v = gain == 1.0f ? Src::Load(p) : Src::Load(p) * static_cast<double>(gain);
    } else {
        v = std::ldexp(Src::Load(p), 1 - Src::kDepth) * static_cast<double>(gain);
    }
    const double y = std::nearbyint(std::ldexp(v, Dst::kDepth - 1));
    if (std::isnan(y)) return 0;
    if (y > static_cast<double>(kHighest)) return kHighest;
    if (y < static_cast<double>(-kHighest - 1)) return -kHighest - 1;
    return static_cast<int64_t>(y);
}

template <class Dst, class Src>
void CheckAgainstOracle() {
    const std::vector<uint8_t> samples = Src::kBytes == 1 ? AllCodes(Src::kType) : RemarkableSamples(Src::kType, 20000);
    const size_t count = samples.size() / Src::kBytes;
    std::vector<uint8_t> out(count * Dst::kBytes);
    for (const float gain : kGains) {
        if (std::is_same_v<Dst, Src> && gain == 1.0f) continue;
        kReferenceConverters.Find(Dst::kType, Src::kType)(out.data(), samples.data(), static_cast<int32_t>(count),
                                                          gain);
        for (size_t i = 0; i < count; ++i) {
            // The one source that may lie outside its depth has rows of its own at gain 1.0.
            const uint8_t* const p = samples.data() + i * Src::kBytes;
            if constexpr (std::is_same_v<Src, Pcm24In32>) {
                if (gain == 1.0f && Src::Load(p) != RoundLimited(Src::Load(p), 24)) continue;
            }
            ASSERT_EQ(Dst::Load(out.data() + i * Dst::kBytes), (Oracle<Dst, Src>(p, gain)))
                << Dst::kType << " from " << Src::kType << ", sample " << i << ", gain " << gain;
        }
    }
}

TEST(ConverterRule, IntegersAgreeWithAnOracle) {
    for (const KTSAMPLETYPE destination : kAllTypes) {
        for (const KTSAMPLETYPE source : kAllTypes) {
            WithFormat(destination, [&]<class Dst>(Dst) {
                WithFormat(source, [&]<class Src>(Src) {
                    if constexpr (!kIsFloat<Dst> && kPairExists<Dst, Src>) CheckAgainstOracle<Dst, Src>();
                });
            });
        }
    }
}

TEST(ConverterRule, WhatIsNotANumberStaysInFloats) {
    const uint32_t nan = 0x7FC12345;
    uint32_t same = 0;
    double wide = 0;
    kReferenceConverters.Find(KTSAMPLETYPE_FLOAT32, KTSAMPLETYPE_FLOAT32)(&same, &nan, 1, 1.0f);
    kReferenceConverters.Find(KTSAMPLETYPE_FLOAT64, KTSAMPLETYPE_FLOAT32)(&wide, &nan, 1, 0.5f);
    EXPECT_EQ(same, nan);
    EXPECT_TRUE(std::isnan(wide));
}

TEST(ConverterPairs, AllButTwoOfTheElevenTypes) {
    int pairs = 0;
    for (uint32_t destination = 0; destination < 140; ++destination) {
        for (uint32_t source = 0; source < 140; ++source) {
            const auto to = static_cast<KTSAMPLETYPE>(destination);
            const auto from = static_cast<KTSAMPLETYPE>(source);
            const bool known = BytesOf(to) != 0 && BytesOf(from) != 0;
            const bool hole = source == 48 && (destination == 64 || destination == 65);
            EXPECT_EQ(KtAudio_GetCopyFunction2(to, from) != nullptr, known && !hole) << destination << ", " << source;
            pairs += known && !hole;
        }
    }
    EXPECT_EQ(pairs, 119);
}

TEST(ConverterPairs, FormatsOfEitherKindNameTheirTypes) {
    tWAVEFORMATEX wfx;
    KtAudio_InitWfx(&wfx, 48000, KTSAMPLETYPE_PCM16, 2);
    _ktwaveformat record;
    record.Init(48000, KTSAMPLETYPE_FLOAT32, 2, 0, 32);
    const auto expect = [](KTSAMPLETYPE to, KTSAMPLETYPE from) { return KtAudio_GetCopyFunction2(to, from); };
    EXPECT_EQ(KtAudio_GetCopyFunction(&wfx, &record), expect(KTSAMPLETYPE_PCM16, KTSAMPLETYPE_FLOAT32));
    EXPECT_EQ(KtAudio_GetCopyFunction(&record, &wfx), expect(KTSAMPLETYPE_FLOAT32, KTSAMPLETYPE_PCM16));
    EXPECT_EQ(KtAudio_GetCopyFunction(&wfx, &wfx), expect(KTSAMPLETYPE_PCM16, KTSAMPLETYPE_PCM16));
    EXPECT_EQ(KtAudio_GetCopyFunction(&record, &record), expect(KTSAMPLETYPE_FLOAT32, KTSAMPLETYPE_FLOAT32));
    EXPECT_EQ(KtAudio_GetCopyFunction(&wfx, static_cast<const _ktwaveformat*>(nullptr)), nullptr);
}

// All pairs, all codes or many bit patterns, several gains, odd lengths and addresses, in place where that is allowed.
class ConverterLevels : public testing::TestWithParam<KTSAMPLETYPE> {
  protected:
    // Converts to every destination type at every level and compares with the rule.
    void CheckAllDestinations(const uint8_t* source, size_t count, float gain) {
        for (const KTSAMPLETYPE type : kAllTypes) {
            const Converter reference = kReferenceConverters.Find(type, GetParam());
            if (!reference) continue;
            expected_.resize(count * BytesOf(type));
            actual_.resize(expected_.size());
            reference(expected_.data(), source, static_cast<int32_t>(count), gain);
            for (const CpuLevel level : levels_) {
                std::memset(actual_.data(), 0xCC, actual_.size());
                FindConverter(level, type, GetParam())(actual_.data(), source, static_cast<int32_t>(count), gain);
                ASSERT_TRUE(SameSamples(type, expected_.data(), actual_.data(), count, std::isnan(gain)))
                    << NameOf(level) << ", gain " << gain;
            }
        }
    }

    const std::vector<CpuLevel> levels_ = VectorLevels();
    std::vector<uint8_t> expected_;
    std::vector<uint8_t> actual_;
};

TEST_P(ConverterLevels, AllCodesOrManyPatternsAtEveryGain) {
    const size_t bytes = BytesOf(GetParam());
    const std::vector<uint8_t> samples = bytes <= 2 ? AllCodes(GetParam()) : RemarkableSamples(GetParam(), 1 << 16);
    for (const float gain : kGains) CheckAllDestinations(samples.data(), samples.size() / bytes, gain);
}

TEST_P(ConverterLevels, EveryLengthAndAddress) {
    const std::vector<uint8_t> samples = RemarkableSamples(GetParam(), 600);
    std::vector<size_t> lengths;
    for (size_t n = 0; n <= 70; ++n) lengths.push_back(n);
    lengths.insert(lengths.end(), {127, 128, 129, 255, 257, 383, 511});
    for (const KTSAMPLETYPE type : kAllTypes) {
        const Converter reference = kReferenceConverters.Find(type, GetParam());
        if (!reference) continue;
        for (const size_t n : lengths) {
            const float gain = n % 3 ? 1.0f : 0.7071f;
            std::vector<uint8_t> expected(n * BytesOf(type));
            reference(expected.data(), samples.data(), static_cast<int32_t>(n), gain);
            for (const size_t offset : {n % 5, size_t{16}, n % 64}) {
                std::vector<uint8_t> source(offset + n * BytesOf(GetParam()));
                std::copy_n(samples.begin(), source.size() - offset,
                            source.begin() + static_cast<std::ptrdiff_t>(offset));
                for (const CpuLevel level : levels_) {
                    // The exact allocations let the address sanitizer see what goes behind their ends.
                    std::vector<uint8_t> actual(3 + offset + expected.size(), 0xCC);
                    FindConverter(level, type, GetParam())(actual.data() + 3 + offset, source.data() + offset,
                                                           static_cast<int32_t>(n), gain);
                    ASSERT_TRUE(SameSamples(type, expected.data(), actual.data() + 3 + offset, n))
                        << n << " samples at offset " << offset << ", " << NameOf(level);
                    ASSERT_EQ(actual[2 + offset], 0xCC);
                }
            }
        }
    }
}

TEST_P(ConverterLevels, OneBufferForBoth) {
    constexpr size_t kCount = 1000;
    const size_t sourceBytes = BytesOf(GetParam());
    const std::vector<uint8_t> samples = RemarkableSamples(GetParam(), kCount);
    for (const KTSAMPLETYPE type : kAllTypes) {
        const Converter reference = kReferenceConverters.Find(type, GetParam());
        // Type 66 walks from the last sample even when it narrows.
        if (!reference || (type == KTSAMPLETYPE_PCM32BE && BytesOf(type) < sourceBytes)) continue;
        for (const float gain : {1.0f, -1.0f}) {
            std::vector<uint8_t> expected(kCount * BytesOf(type));
            reference(expected.data(), samples.data(), kCount, gain);
            for (const CpuLevel level : kCpuLevels) {
                if (level != CpuLevel::Scalar && std::ranges::find(levels_, level) == levels_.end()) continue;
                for (const size_t offset : {0, 1, 4}) {
                    std::vector<uint8_t> buffer(offset + kCount * std::max(BytesOf(type), sourceBytes));
                    uint8_t* const p = buffer.data() + offset;
                    std::memcpy(p, samples.data(), kCount * sourceBytes);
                    FindConverter(level, type, GetParam())(p, p, kCount, gain);
                    ASSERT_TRUE(SameSamples(type, expected.data(), p, kCount)) << NameOf(level) << ", gain " << gain;
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Audio, ConverterLevels, testing::ValuesIn(kAllTypes),
                         [](const auto& info) { return "From" + std::to_string(info.param); });

}  // namespace
}  // namespace clipfio::audio
