#include <immintrin.h>

#include "audio/block_driver.h"
#include "audio/converters.h"
#include "audio/simd/vector_inline.h"

KT_BEGIN_TARGET("ssse3,sse4.1")

#define CLIPFIO_SSE41

namespace clipfio::audio::sse41 {
namespace {

#include "audio/simd/vectors_sse.inc"

#include "audio/simd/kernels.inc"

}  // namespace
}  // namespace clipfio::audio::sse41

KT_END_TARGET

namespace clipfio::audio {

constinit const ConverterTable kSse41Converters = MakeConverterTable<sse41::Pair>();

}  // namespace clipfio::audio
