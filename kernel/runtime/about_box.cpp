#include "kernel/runtime/about_box.h"

#include "kernel/guard.h"

namespace {

constinit clipfio::AboutPresenter g_presenter = nullptr;

}  // namespace

HRESULT KtAboutBox(HWND parent, const void* record, uint32_t bytes) noexcept {
    if (!record || bytes < sizeof(KtAboutRecord)) return E_INVALIDARG;
    if (!g_presenter) return E_NOTIMPL;
    return clipfio::Guarded([&] { return g_presenter(parent, *static_cast<const KtAboutRecord*>(record)); });
}

namespace clipfio {

void SetAboutPresenter(AboutPresenter presenter) noexcept { g_presenter = presenter; }

}  // namespace clipfio
