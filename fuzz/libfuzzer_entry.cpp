#include "fuzz/fuzzers.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) { return FUZZ_FUNCTION(data, size); }
