#include "platform/activation.h"

#include <atomic>

namespace platform {
namespace {

constinit std::atomic<bool> g_unavailable{false};

bool MeansUnavailable(DWORD error) noexcept {
    return error == ERROR_CALL_NOT_IMPLEMENTED || error == ERROR_INVALID_FUNCTION || error == ERROR_NOT_SUPPORTED ||
           error == ERROR_MOD_NOT_FOUND || error == ERROR_PROC_NOT_FOUND;
}

HANDLE MakeContext() noexcept {
    HMODULE module = nullptr;
    constexpr DWORD kOfAddress = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (!GetModuleHandleExW(kOfAddress, reinterpret_cast<const WCHAR*>(&g_unavailable), &module)) {
        return INVALID_HANDLE_VALUE;
    }
    constexpr WORD kManifestOfLibrary = 2;
    ACTCTXW request{};
    request.cbSize = sizeof request;
    request.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    request.hModule = module;
    request.lpResourceName = MAKEINTRESOURCEW(kManifestOfLibrary);
    return CreateActCtxW(&request);
}

}  // namespace

ActivationScope::ActivationScope() noexcept {
    if (g_unavailable.load(std::memory_order_relaxed)) return;
    // A module without a manifest of its own has no context, and calls go straight on.
    static const HANDLE context = MakeContext();
    if (context == INVALID_HANDLE_VALUE) {
        g_unavailable.store(true, std::memory_order_relaxed);
        return;
    }
    active_ = ActivateActCtx(context, &cookie_) != FALSE;
    if (!active_ && MeansUnavailable(GetLastError())) g_unavailable.store(true, std::memory_order_relaxed);
}

ActivationScope::~ActivationScope() {
    const DWORD error = GetLastError();
    if (active_) DeactivateActCtx(0, cookie_);
    SetLastError(error);
}

}  // namespace platform
