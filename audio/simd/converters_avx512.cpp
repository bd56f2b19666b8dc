#include <immintrin.h>

#include "audio/block_driver.h"
#include "audio/converters.h"
#include "audio/simd/vector_inline.h"

#pragma GCC diagnostic push
// The compiler's own header makes "undefined" vectors by an initialisation with themselves.
#ifndef __clang__
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
KT_BEGIN_TARGET("avx512f,avx512bw,avx512dq,avx512vl")

namespace clipfio::audio::avx512 {
namespace {

#include "audio/simd/vectors_avx512.inc"

#include "audio/simd/kernels.inc"

}  // namespace
}  // namespace clipfio::audio::avx512

KT_END_TARGET
#pragma GCC diagnostic pop

namespace clipfio::audio {

constinit const ConverterTable kAvx512Converters = MakeConverterTable<avx512::Pair>();

}  // namespace clipfio::audio
