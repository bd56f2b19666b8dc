// Source samples that find faults in converters: every code of the small formats; for the wide ones limits, ties,
// what is not a number, and random bits. And an oracle of our own for single samples.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "audio/converters.h"
#include "audio/cpu_level.h"
#include "audio/sample_format.h"

namespace clipfio::audio {

inline constexpr KTSAMPLETYPE kAllTypes[] = {KTSAMPLETYPE_PCM8,      KTSAMPLETYPE_PCM16,   KTSAMPLETYPE_PCM24,
                                             KTSAMPLETYPE_PCM32,     KTSAMPLETYPE_FLOAT32, KTSAMPLETYPE_FLOAT64,
                                             KTSAMPLETYPE_PCM24IN32, KTSAMPLETYPE_PCM8S,   KTSAMPLETYPE_PCM16BE,
                                             KTSAMPLETYPE_PCM24BE,   KTSAMPLETYPE_PCM32BE};

inline constexpr float kGains[] = {1.0f,
                                   0.5f,
                                   2.0f,
                                   -1.0f,
                                   0.0f,
                                   0.7071f,
                                   1.5e30f,
                                   1e-40f,
                                   std::numeric_limits<float>::infinity(),
                                   std::numeric_limits<float>::quiet_NaN()};

inline size_t BytesOf(KTSAMPLETYPE type) { return KtAudio_BytesFromSampleType(type); }

// The levels that this processor has, the scalar one left out.
inline std::vector<CpuLevel> VectorLevels() {
    std::vector<CpuLevel> levels;
    for (const CpuLevel level : kCpuLevels) {
        if (level != CpuLevel::Scalar && SetCpuLevel(level)) levels.push_back(level);
    }
    ResetCpuLevel();
    return levels;
}

// All codes of an integer type in rising order, in the type's own coding.
std::vector<uint8_t> AllCodes(KTSAMPLETYPE type);

// At least `count` samples; the remarkable ones come first.
std::vector<uint8_t> RemarkableSamples(KTSAMPLETYPE type, size_t count);

// Compares sample by sample and names the first difference. Two values that are not numbers count as equal in the
// float types when `anyNan` is set: which of two goes through a product is the processor's choice.
testing::AssertionResult SameSamples(KTSAMPLETYPE type, const uint8_t* expected, const uint8_t* actual, size_t count,
                                     bool anyNan = false);

}  // namespace clipfio::audio
