// Marks the parts of a vector kernel. They are always inlined: a vector in the signature of a real call would be passed
// by rules that differ between levels and targets.
#pragma once

#define VECTOR_INLINE [[gnu::always_inline]] inline
