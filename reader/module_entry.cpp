// The entry that the system's loader calls.
#include "platform/modules.h"
#include "reader/plugin_module.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
    switch (reason) {
        case DLL_PROCESS_ATTACH:
            return clipfio::AttachProcess(instance) ? TRUE : FALSE;
        case DLL_PROCESS_DETACH:
            clipfio::DetachProcess();
            return TRUE;
        default:
            return TRUE;
    }
}
