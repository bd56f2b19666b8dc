#include "reader/plugin_module.h"

#include <new>
#include <utility>

#include "kernel/runtime/lifecycle.h"
#include "platform/modules.h"
#include "settings/media_property_editor.h"

namespace clipfio {
namespace {

constinit PluginModule g_module;
constinit MediaPropertyEditor* g_editor = nullptr;
constinit std::atomic<int32_t> g_server_locks = 0;
constinit std::atomic<int32_t> g_factories = 0;

}  // namespace

PluginModule& Module() noexcept { return g_module; }
MediaPropertyEditor*& ProcessEditor() noexcept { return g_editor; }
std::atomic<int32_t>& ServerLockCount() noexcept { return g_server_locks; }
std::atomic<int32_t>& FactoryCount() noexcept { return g_factories; }

bool AttachProcess(HINSTANCE instance) noexcept {
    g_module = PluginModule{.hInstance = instance};
    const bool attached =
        KtKernel_EarlyInitialize(instance, 0) && SUCCEEDED(KtLang_Open(&g_module.hLang, instance, 0, 0));
    g_editor = new (std::nothrow) MediaPropertyEditor;
    DisableThreadLibraryCalls(instance);
    return attached;
}

void DetachProcess() noexcept {
    delete std::exchange(g_editor, nullptr);
    KtLang_Close(std::exchange(g_module.hLang, nullptr));
    KtKernel_LateTerminate(g_module.hInstance);
}

}  // namespace clipfio
