// Uses the module by its public headers alone: the plug-in's interfaces, a class that it exports, and the kernel.
#include <cstdio>

#include "kernel/print.h"
#include "reader/host_interfaces.h"
#include "reader/plugin_exports.h"

namespace {

int Fail(const char* what) {
    std::fprintf(stderr, "consumer: %s\n", what);
    return 1;
}

bool RecognisesClips(IKtReadFileClass* file_class) {
    return file_class->CheckHeader(nullptr, "....RED1", 8, nullptr) == S_OK &&
           file_class->CheckHeader(nullptr, "....RIFF", 8, nullptr) == E_FAIL;
}

}  // namespace

int main() {
    IClassFactory* factory = nullptr;
    if (FAILED(DllGetClassObject(CLSID_KtReadFileClass, IID_IClassFactory, reinterpret_cast<void**>(&factory)))) {
        return Fail("no factory");
    }
    IKtReadFileClass* file_class = nullptr;
    const HRESULT made = factory->CreateInstance(nullptr, IID_IKtReadFileClass, reinterpret_cast<void**>(&file_class));
    factory->Release();
    if (FAILED(made)) return Fail("no file class");
    const bool recognises = RecognisesClips(file_class);
    file_class->Release();
    if (!recognises) return Fail("clips are not recognised");

    WCHAR text[32];
    if (KtPrintF(text, W("%d"), 42) != 2 || text[0] != W('4')) return Fail("the printer does not print");

    _ktmemorytoken token;
    if (FAILED(CreateMappedToken(token, 4096, 1))) return Fail("no mapped token");
    const bool usable = CMappingOfKtMemoryToken(token, kKtTokenWrite).Pointer() != nullptr;
    return usable && SUCCEEDED(FreeMappedToken(token)) ? 0 : Fail("the token cannot be used");
}
