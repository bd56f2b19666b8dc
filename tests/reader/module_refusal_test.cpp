// A module that refuses its process: its exports refuse in their turn.
#include <gtest/gtest.h>

#include <iostream>

#include "platform/faults.h"
#include "platform/modules.h"
#include "platform/scoped.h"
#include "platform/text.h"
#include "reader/host_interfaces.h"
#include "reader/plugin_exports.h"
#include "support/child_roles.h"

namespace {

TEST(ModuleRefusal, GivesNoFactory) {
    // The first call that can fail is the loading itself; behind it come the kernel's and the plug-in's language
    // contexts, without which the module refuses. What fails later, the decoder's search, is no refusal.
    const char* const kResults[] = {"not loaded", "refused", "refused", "factory", "factory"};
    for (int n = 0; n < 5; ++n) {
        support::ChildProcess child("load_the_module", {std::to_string(n)});
        const std::string result = child.ReadLine();
        if (result == "nothing failed") GTEST_SKIP() << "nothing is failed on this platform";
        EXPECT_EQ(result, kResults[n]) << n;
        EXPECT_EQ(child.Wait(), 0u);
    }
}

}  // namespace

CHILD_ROLE(load_the_module) {
    platform::faults::FailAfter(std::stoi(arguments[0]));
    const HMODULE module = LoadLibraryW(platform::Wide(CLIPFIO_MODULE).c_str());
    const bool hit = platform::faults::Hit();
    platform::faults::Clear();
    if (!hit) {
        std::cout << "nothing failed" << std::endl;
        return 0;
    }
    const auto get = reinterpret_cast<decltype(&DllGetClassObject)>(
        reinterpret_cast<void*>(module ? GetProcAddress(module, "DllGetClassObject") : nullptr));
    if (!get) {
        std::cout << "not loaded" << std::endl;
        return 0;
    }
    platform::ComPtr<IClassFactory> factory;
    const HRESULT hr = get(CLSID_KtReadFileClass, IID_IClassFactory, factory.OutVoid());
    std::cout << (hr == S_OK ? "factory" : hr == E_UNEXPECTED && !factory ? "refused" : "something else") << std::endl;
    return 0;
}
