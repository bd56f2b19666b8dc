#include <immintrin.h>

#include "audio/block_driver.h"
#include "audio/converters.h"
#include "audio/simd/vector_inline.h"

KT_BEGIN_TARGET("avx2")

namespace clipfio::audio::avx2 {
namespace {

#include "audio/simd/vectors_avx2.inc"

#include "audio/simd/kernels.inc"

}  // namespace
}  // namespace clipfio::audio::avx2

KT_END_TARGET

namespace clipfio::audio {

constinit const ConverterTable kAvx2Converters = MakeConverterTable<avx2::Pair>();

}  // namespace clipfio::audio
