// A decoder library for the tests of the loader. CANDIDATE_NAME is its name; defining a symbol as another word leaves
// that symbol out.
#include "tests/r3dsdk/candidate.h"

#include "platform/modules.h"
#include "r3dsdk/sdk_symbols.h"

using namespace clipfio;

namespace {

candidate::Host* FindHost() {
    WCHAR digits[24];
    const DWORD length = GetEnvironmentVariableW(CANDIDATE_HOST_VARIABLE, digits, 24);
    uintptr_t address = 0;
    for (DWORD i = 0; i < length && i < 23; ++i) address = address * 10 + static_cast<uintptr_t>(digits[i] - W('0'));
    return reinterpret_cast<candidate::Host*>(address);
}

uint32_t Number(const char* symbol, uint32_t usual) {
    candidate::Host* const host = FindHost();
    return host ? host->Number(CANDIDATE_NAME, symbol, usual) : usual;
}

const char* Text(const char* symbol, const char* usual) {
    candidate::Host* const host = FindHost();
    return host ? host->Text(CANDIDATE_NAME, symbol, usual) : usual;
}

void Event(const char* event) {
    if (candidate::Host* const host = FindHost()) host->Event(CANDIDATE_NAME, event);
}

struct Presence {
    ~Presence() { Event("detach"); }
} presence;

}  // namespace

KT_API uint32_t RED_LIB_ID() { return Number("id", kMainLibraryId); }
KT_API uint32_t RED_LIB_MAJOR_VERSION() { return Number("major", 7); }
KT_API uint32_t RED_LIB_MINOR_VERSION() { return Number("minor", 0); }
KT_API uint32_t RED_LIB_PATCH_VERSION() { return Number("patch", 3); }
KT_API uint32_t RED_MINIMUM_MAJOR_VERSION() { return Number("minimum-major", 7); }
KT_API uint32_t RED_MINIMUM_MINOR_VERSION() { return Number("minimum-minor", 0); }
KT_API uint32_t RED_MINIMUM_PATCH_VERSION() { return Number("minimum-patch", 1); }
KT_API uint32_t RED_STATICLIB_MAJOR_VERSION() { return Number("static-major", 7); }
KT_API uint32_t RED_STATICLIB_MINOR_VERSION() { return Number("static-minor", 0); }
KT_API uint32_t RED_STATICLIB_PATCH_VERSION() { return Number("static-patch", 2); }
KT_API const char* RED_LIB_BUILD_NAME() { return Text("build", CANDIDATE_NAME); }
KT_API const char* RED_STATICLIB_BUILD_NAME() { return Text("static-build", "static " CANDIDATE_NAME); }
KT_API const char* RED_REDIRECT() { return Text("redirect", nullptr); }

KT_API int32_t RED_LIB_INITIALIZE(uint32_t phase, SdkKeyValues* values, const HMODULE* handles, uint32_t count) {
    candidate::Host* const host = FindHost();
    return host ? host->Initialize(CANDIDATE_NAME, phase, values, handles, count) : 0;
}

KT_API void RED_LIB_FINALIZE() { Event("finalize"); }

KT_API uint32_t RED_IMPORTS(SdkImportList* list) {
    candidate::Host* const host = FindHost();
    return host ? host->Imports(CANDIDATE_NAME, list) : 0;
}

// The tables: the loader looks for every symbol and calls none.
#define NEVER_CALLED(symbol, ...) \
    KT_API uintptr_t symbol() { return 5; }
SDK_CLIP_API_SYMBOLS(NEVER_CALLED, NEVER_CALLED)
SDK_METADATA_API_SYMBOLS(NEVER_CALLED)
SDK_ASYNC_DECODER_API_SYMBOLS(NEVER_CALLED)
SDK_RED_ROCKET_API_SYMBOLS(NEVER_CALLED)
SDK_STREAM_API_SYMBOLS(NEVER_CALLED)
