#include "kernel/runtime/lifecycle.h"

#include <utility>

#include "kernel/internationals.h"
#include "kernel/lang.h"
#include "kernel/print_tokens.h"

bool KtKernel_EarlyInitialize(HMODULE module, uint32_t) noexcept {
    clipfio::KernelModule() = module;
    if (FAILED(clipfio::CreatePrintTokens())) return false;
    HKTLANG& language = clipfio::KernelLanguage();
    if (!language && FAILED(KtLang_Open(&language, module, 0, 0))) return false;
    KtLang_GetInternationals(nullptr, 0);
    return true;
}

int32_t KtKernel_LateTerminate(HMODULE) noexcept {
    clipfio::DestroyPrintTokens();
    KtLang_Close(std::exchange(clipfio::KernelLanguage(), nullptr));
    clipfio::KernelModule() = nullptr;
    return 1;
}

HMODULE KtKernel_GetAppKernel() noexcept { return clipfio::KernelModule(); }
