// A module that refuses its process: its exports refuse in their turn.
#include <gtest/gtest.h>

#include <algorithm>
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
    // The first call that can fail is the loading itself; behind it comes what the kernel and the two language contexts
    // need, without which the module refuses. What fails later, the decoder's search, is no refusal.
    std::vector<std::string> results;
    while (results.size() < 100 && std::count(results.begin(), results.end(), "factory") < 2) {
        support::ChildProcess child("load_the_module", {std::to_string(results.size())});
        results.push_back(child.ReadLine());
        if (results.back() == "nothing failed") GTEST_SKIP() << "nothing is failed on this platform";
        EXPECT_EQ(child.Wait(), 0u);
    }
    EXPECT_EQ(results.front(), "not loaded");
    EXPECT_GE(std::count(results.begin(), results.end(), "refused"), 3);
    EXPECT_EQ(std::count(results.begin() + 1, results.end() - 2, "refused"), std::ssize(results) - 3);
    EXPECT_EQ(results.back(), "factory");
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
