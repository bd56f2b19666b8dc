// A module for the tests of loading: it notes what its entry was told, and refuses when a variable says so.
#include "platform/com.h"
#include "platform/memory.h"
#include "platform/module_entry.h"
#include "platform/modules.h"
#include "platform/resources.h"
#include "platform/sync.h"
#include "test_module_part.h"

extern "C" {
// One entry of type 10, name 1 and no language that holds "ok".
extern const unsigned char clipfio_resources[] = {2, 0, 0, 0, 32, 0, 0, 0, 0xFF, 0xFF, 10, 0, 0xFF, 0xFF, 1, 0,   0,
                                                  0, 0, 0, 0, 0,  0, 0, 0, 0,    0,    0,  0, 0,    0,    0, 'o', 'k'};
extern const unsigned int clipfio_resources_size = sizeof clipfio_resources;
}

namespace {
HINSTANCE g_instance = nullptr;
bool g_part_was_made = false;
void (*g_detached)(bool part_is_there) = nullptr;
}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
    if (reason == DLL_PROCESS_DETACH) {
        if (g_detached) g_detached(PartWasMade());
        return TRUE;
    }
    g_instance = instance;
    g_part_was_made = PartWasMade();
    WCHAR refuse[2];
    return GetEnvironmentVariableW(W("CLIPFIO_TEST_REFUSE"), refuse, 2) == 0;
}

KT_API HINSTANCE TestModuleInstance() { return g_instance; }
KT_API bool TestModuleEntryCameLast() { return g_part_was_made; }
KT_API bool TestModuleAttached() { return platform::ModuleAttached(); }
KT_API void TestModuleOnDetach(void (*detached)(bool part_is_there)) { g_detached = detached; }
// What the module's own copy of the layer makes of a handle that the program's copy made.
KT_API DWORD TestModuleWait(HANDLE mutex) { return WaitForSingleObject(mutex, 0); }
KT_API HGLOBAL TestModuleFree(HGLOBAL block) { return GlobalFree(block); }
KT_API void TestModuleFreeText(BSTR text) { SysFreeString(text); }
