// A module with nothing in it but resources.
#include "platform/modules.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, void*) { return TRUE; }
