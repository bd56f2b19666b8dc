// Symbols that a client's tables demand and that no client calls. They take nothing, do nothing and give 0.
#include "platform/base.h"
#include "r3dsdk/sdk_symbols.h"

#define DEFINE_UNCALLED(symbol) \
    KT_API uintptr_t symbol() { return 0; }
#define PASS_OVER_CALLED(symbol, operation)

SDK_CLIP_API_SYMBOLS(PASS_OVER_CALLED, DEFINE_UNCALLED)
SDK_METADATA_API_SYMBOLS(DEFINE_UNCALLED)
SDK_ASYNC_DECODER_API_SYMBOLS(DEFINE_UNCALLED)
SDK_RED_ROCKET_API_SYMBOLS(DEFINE_UNCALLED)
SDK_STREAM_API_SYMBOLS(DEFINE_UNCALLED)
