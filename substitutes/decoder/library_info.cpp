// What a client asks before it uses the library, and the start and end of its use.
#include "platform/base.h"
#include "r3dsdk/sdk_interfaces.h"
#include "substitutes/decoder/clip_registry.h"

KT_API uint32_t RED_LIB_ID() { return clipfio::kMainLibraryId; }

KT_API uint32_t RED_LIB_MAJOR_VERSION() { return 7; }
KT_API uint32_t RED_LIB_MINOR_VERSION() { return 0; }
KT_API uint32_t RED_LIB_PATCH_VERSION() { return 3; }

// The oldest client that is served.
KT_API uint32_t RED_MINIMUM_MAJOR_VERSION() { return 7; }
KT_API uint32_t RED_MINIMUM_MINOR_VERSION() { return 0; }
KT_API uint32_t RED_MINIMUM_PATCH_VERSION() { return 0; }

KT_API uint32_t RED_STATICLIB_MAJOR_VERSION() { return 7; }
KT_API uint32_t RED_STATICLIB_MINOR_VERSION() { return 0; }
KT_API uint32_t RED_STATICLIB_PATCH_VERSION() { return 3; }

KT_API const char* RED_LIB_BUILD_NAME() { return "clipfio substitute decoder 7.0.3"; }
KT_API const char* RED_STATICLIB_BUILD_NAME() { return "clipfio substitute decoder, no client inside"; }

// There is nothing to prepare: tables are made when they are first needed.
KT_API int32_t RED_LIB_INITIALIZE(uint32_t phase, clipfio::SdkKeyValues*, const HMODULE*, uint32_t) {
    return phase <= 2 ? 0 : 1;
}

// Ends every clip that its owner left behind.
KT_API void RED_LIB_FINALIZE() { clipfio::decoder::Clips().DestroyAll(); }
