#include <immintrin.h>

#include "audio/block_driver.h"
#include "audio/converters.h"
#include "audio/simd/vector_inline.h"

namespace clipfio::audio::sse2 {
namespace {

#include "audio/simd/vectors_sse.inc"

#include "audio/simd/kernels.inc"

}  // namespace
}  // namespace clipfio::audio::sse2

namespace clipfio::audio {

constinit const ConverterTable kSse2Converters = MakeConverterTable<sse2::Pair>();

}  // namespace clipfio::audio
