// A decoder library for the tests of the loader. CANDIDATE_NAME is its name; defining a symbol as another word leaves
// that symbol out.
#include "tests/r3dsdk/candidate.h"

#include <cstdarg>
#include <cstdio>

#include "platform/modules.h"
#include "r3dsdk/sdk_records.h"
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

__attribute__((format(printf, 1, 2))) void Event(const char* format, ...) {
    char line[256];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    if (candidate::Host* const host = FindHost()) host->Event(CANDIDATE_NAME, line);
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

// The operations report their arguments and give answers that tell them apart.
KT_API uintptr_t R3D_AAB() { return 5; }
KT_API void R3D_AAA(uintptr_t clip) { Event("DestroyClip %u", static_cast<unsigned>(clip)); }
KT_API int32_t R3D_AAD(uintptr_t clip) { return static_cast<int32_t>(clip) + 1; }
KT_API int32_t R3D_AAE(uintptr_t clip, const char* path) {
    Event("LoadClip %s", path);
    return static_cast<int32_t>(clip) + 2;
}
KT_API void R3D_AAF(uintptr_t clip) { Event("CloseClip %u", static_cast<unsigned>(clip)); }
KT_API int32_t R3D_AAI(uintptr_t clip, uint64_t frame, VideoDecodeJob* job) {
    Event("DecodeFrame %u %u %u %u", static_cast<unsigned>(frame), job->version, job->size,
          static_cast<unsigned>(job->reserved2));
    *job = {};
    return static_cast<int32_t>(clip) + 3;
}
KT_API int32_t R3D_AAK(uintptr_t clip, uint64_t first, uint64_t* count, void* buffer, uint64_t bytes) {
    *count = first + bytes;
    *static_cast<char*>(buffer) = 'b';
    return static_cast<int32_t>(clip) + 4;
}
KT_API void R3D_AAO(uintptr_t clip, DecodeSettingsRecord* settings) { settings->imageIso = clip + 5; }
KT_API uint64_t R3D_AAV(uintptr_t clip) { return clip + 6; }
KT_API uint64_t R3D_AAW(uintptr_t clip) { return clip + 7; }
KT_API uint64_t R3D_AAX(uintptr_t clip) { return clip + 8; }
KT_API float R3D_ABB(uintptr_t clip) { return static_cast<float>(clip) + 0.5f; }
KT_API uint64_t R3D_AAZ(uintptr_t clip, uint64_t* largest) {
    *largest = clip + 10;
    return clip + 9;
}
KT_API uint64_t R3D_ABA(uintptr_t clip) { return clip + 11; }
KT_API const char* R3D_ABD(uintptr_t, uint64_t frame) { return frame == 3 ? "00:00:00:03" : nullptr; }
KT_API uint32_t R3D_ABK(uintptr_t clip, const char* key) {
    return static_cast<uint32_t>(clip) + static_cast<uint8_t>(*key);
}

#define WRITTEN_ABOVE(symbol, operation)
#define NEVER_CALLED(symbol) \
    KT_API void symbol() { Event("a symbol that nobody calls"); }
SDK_CLIP_API_SYMBOLS(WRITTEN_ABOVE, NEVER_CALLED)
SDK_METADATA_API_SYMBOLS(NEVER_CALLED)
SDK_ASYNC_DECODER_API_SYMBOLS(NEVER_CALLED)
SDK_RED_ROCKET_API_SYMBOLS(NEVER_CALLED)
SDK_STREAM_API_SYMBOLS(NEVER_CALLED)
