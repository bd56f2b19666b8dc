// Stored samples and the light that they stand for.
#pragma once

#include <cstdint>

#include "substitutes/decoder/clip_form.h"

namespace clipfio::decoder {

// `coded` over 0..1 to linear light over 0..1.
double LinearFromCoded(PictureCoding coding, double coded) noexcept;

// The light of each of the 65536 sample values. Made once for the process and never freed; null when there was no
// memory for it. Any thread.
const float* LinearTable(PictureCoding coding) noexcept;

}  // namespace clipfio::decoder
