// How vector kernels are written down. Their parts are always inlined: a vector in the signature of a real call would
// be passed by rules that differ between levels and targets.
#pragma once

#define VECTOR_INLINE [[gnu::always_inline]] inline

// What stands between these two is compiled for more than the module's own instruction set.
#define KT_PRAGMA(text) _Pragma(#text)
#ifdef __clang__
#define KT_BEGIN_TARGET(features) \
    KT_PRAGMA(clang attribute push(__attribute__((target(features))), apply_to = function))
#define KT_END_TARGET KT_PRAGMA(clang attribute pop)
#else
#define KT_BEGIN_TARGET(features) KT_PRAGMA(GCC push_options) KT_PRAGMA(GCC target(features))
#define KT_END_TARGET KT_PRAGMA(GCC pop_options)
#endif
