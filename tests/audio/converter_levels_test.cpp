// Every vector level gives the samples of the scalar rule, bit for bit: all pairs, all codes or many bit patterns,
// several gains, odd lengths and addresses, in place where that is allowed.
#include <algorithm>
#include <cstring>

#include "audio/copy_engine.h"
#include "audio/sample_data.h"

namespace clipfio::audio {
namespace {

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

// 24-bit sources over their whole range, at gain 1.0, in pieces that stay in the cache.
class WholeRange24 : public ConverterLevels {};

TEST_P(WholeRange24, AllCodes) {
    constexpr size_t kPiece = 1 << 14;
    const size_t bytes = BytesOf(GetParam());
    const std::vector<uint8_t> codes = AllCodes(GetParam());
    for (size_t at = 0; at < codes.size() && !HasFatalFailure(); at += kPiece * bytes) {
        CheckAllDestinations(codes.data() + at, kPiece, 1.0f);
    }
}

INSTANTIATE_TEST_SUITE_P(Audio, WholeRange24,
                         testing::Values(KTSAMPLETYPE_PCM24, KTSAMPLETYPE_PCM24BE, KTSAMPLETYPE_PCM24IN32),
                         [](const auto& info) { return "From" + std::to_string(info.param); });

}  // namespace
}  // namespace clipfio::audio
