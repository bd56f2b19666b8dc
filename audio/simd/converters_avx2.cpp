#include <immintrin.h>

#include "audio/block_driver.h"
#include "audio/converters.h"
#include "audio/simd/vector_inline.h"

#pragma GCC push_options
#pragma GCC target("avx2")

namespace clipfio::audio::avx2 {
namespace {

#include "audio/simd/vectors_avx2.inc"

#include "audio/simd/kernels.inc"

}  // namespace
}  // namespace clipfio::audio::avx2

#pragma GCC pop_options

namespace clipfio::audio {

constinit const ConverterTable kAvx2Converters = MakeConverterTable<avx2::Pair>();

}  // namespace clipfio::audio
