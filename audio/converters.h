// The converter tables, one per level of the processor. All give the same samples, bit for bit.
#pragma once

#include "audio/converter_table.h"

namespace clipfio::audio {

// Plain scalar arithmetic, the measure for the others.
extern const ConverterTable kReferenceConverters;

extern const ConverterTable kSse2Converters;
extern const ConverterTable kSse41Converters;
extern const ConverterTable kAvx2Converters;
extern const ConverterTable kAvx512Converters;

}  // namespace clipfio::audio
