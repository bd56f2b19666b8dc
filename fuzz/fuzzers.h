// The fuzzers: each is a function over any bytes, driven by libFuzzer in a program of its own (`make fuzz`) and, over
// the files of fuzz/seeds/NAME, by the tests. A find becomes a seed, named after what it broke.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

// Always 0, as libFuzzer has it.
using FuzzFunction = int(const uint8_t* data, size_t size);

FuzzFunction FuzzClip;
FuzzFunction FuzzResources;
FuzzFunction FuzzPrintFormat;
FuzzFunction FuzzSettingsFile;
FuzzFunction FuzzTimeText;
FuzzFunction FuzzTextValues;
FuzzFunction FuzzWavInput;

struct Fuzzer {
    const char* name;
    FuzzFunction* run;
};

inline constexpr Fuzzer kFuzzers[] = {
    {"clip", FuzzClip},
    {"resources", FuzzResources},
    {"print_format", FuzzPrintFormat},
    {"settings_file", FuzzSettingsFile},
    {"time_text", FuzzTimeText},
    {"text_values", FuzzTextValues},
    {"wav_input", FuzzWavInput},
};

// A fuzzer looks for more than crashes: what has to hold whatever the bytes are.
inline void FuzzRequire(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "fuzzer: not so: %s\n", what);
    std::abort();
}
