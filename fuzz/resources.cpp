// Resource images: found, walked and read in all the ways that a language context has.
#include "platform/resources.h"

#include <utility>

#include "fuzz/fuzzers.h"
#include "fuzz/resource_image.h"
#include "kernel/dialog_size.h"
#include "kernel/lang_facts.h"
#include "kernel/lang_menus.h"
#include "kernel/lang_resources.h"
#include "kernel/ui_fonts.h"
#include "platform/window.h"

namespace {

constexpr clipfio::UiFonts kFonts{nullptr, [](int, SIZE& units) noexcept {
                                      units = {6, 13};
                                      return true;
                                  }};

void ReadStrings(HKTLANG lang) {
    for (const uint32_t id : {0u, 1u, 15u, 16u, 17u, 32u, 0xFFFFu, 0x10000u, 0xFFFFFFFFu}) {
        WCHAR text[64];
        const int32_t length = KtLoadString(lang, id, text, 64);
        FuzzRequire(length >= 0 && length < 64 && text[length] == 0, "a loaded text ends within its buffer");
        const WCHAR* const kept = KtGetString(lang, id);
        FuzzRequire(kept != nullptr && KtGetString(lang, id) == kept, "a text stays where it is");
        struct {
            alignas(8) uint16_t signature = 0xFFFE;
            uint16_t count = 2;
            uint32_t reserved = 0;
            const WCHAR* entries[3] = {W("english"), nullptr, nullptr};
        } row;
        row.entries[1] = reinterpret_cast<const WCHAR*>(uintptr_t{id & 0xFFFF});
        const WCHAR* const resolved = KtGetString(lang, reinterpret_cast<KTLANGSTRINGID>(&row));
        size_t end = 0;
        while (resolved[end] != 0) ++end;  // the sanitizer watches
    }
}

// Dialogs, pictures and keys: made, and taken down again.
void MakeObjects(HKTLANG lang, const WCHAR* name) {
    if (const HWND dialog = KtCreateDialogParam(lang, name, nullptr, nullptr, 0)) {
        FuzzRequire(DestroyWindow(dialog) != FALSE, "a dialog that was made can be destroyed");
    }
    if (const HACCEL keys = KtLoadAccelerators(lang, name)) DestroyAcceleratorTable(keys);
    if (const HBITMAP bitmap = KtLoadBitmap(lang, name)) {
        BITMAP facts{};
        FuzzRequire(GetObjectW(bitmap, sizeof facts, &facts) != 0 && facts.bmWidth > 0, "a bitmap has a size");
        DeleteObject(bitmap);
    }
    for (const UINT type : {IMAGE_ICON, IMAGE_CURSOR}) {
        const auto icon = static_cast<HICON>(KtLoadImage(lang, name, type, 0, 0, 0));
        ICONINFO info{};
        if (!icon) continue;
        FuzzRequire(GetIconInfo(icon, &info) != FALSE, "an icon has its pictures");
        DeleteObject(info.hbmMask);
        if (info.hbmColor) DeleteObject(info.hbmColor);
        DestroyIcon(icon);
    }
    if (const HIMAGELIST list = KtImageList_LoadImage(lang, name, 0, 0, CLR_DEFAULT, IMAGE_BITMAP, 0)) {
        FuzzRequire(ImageList_GetImageCount(list) > 0, "a list has an image");
        ImageList_Destroy(list);
    }
}

}  // namespace

int FuzzResources(const uint8_t* data, size_t size) {
    const ResourceImageOfRun image(data, size);
    clipfio::SetUiFonts(&kFonts);
    SIZE alone{};
    clipfio::DialogSizeOfTemplate(data, size, alone);
    HKTLANG lang = nullptr;
    FuzzRequire(SUCCEEDED(KtLang_Open(&lang, image.Module(), 0x0411, 0)), "a context opens over any module");
    HKTLANG& kernel = clipfio::KernelLanguage();
    const bool own_kernel = kernel == nullptr;
    if (own_kernel) FuzzRequire(SUCCEEDED(KtLang_Open(&kernel, nullptr, 0, 0)), "the kernel's context opens");
    const WCHAR* const names[] = {
        MAKEINTRESOURCEW(1),  MAKEINTRESOURCEW(20), MAKEINTRESOURCEW(30), MAKEINTRESOURCEW(50),
        MAKEINTRESOURCEW(51), MAKEINTRESOURCEW(52), MAKEINTRESOURCEW(53), W("NAME")};
    for (const LCID lcid : {0x0411u, 0x0409u}) {
        KtLang_UpdateKernelLCID(lang, lcid, 0);
        ReadStrings(lang);
        for (const WCHAR* const name : names) {
            uint32_t bytes = 0;
            const void* const block = LockResource(KtLoadResourceCustom(lang, name, RT_DIALOG, &bytes));
            SIZE extent{};
            if (block) clipfio::DialogSizeOfTemplate(block, bytes, extent);
            if (const HMENU menu = KtLoadMenu(lang, name)) {
                KtMenuReplaceTokens(menu);
                KtCleanMenu(menu, nullptr, 0);
                FuzzRequire(DestroyMenu(menu) != FALSE, "a menu that was made can be destroyed");
            }
            MakeObjects(lang, name);
            const HRSRC found = KtFindResource(lang, name, RT_DIALOG);
            FuzzRequire(!found || KtLoadResource(lang, found), "what is found can be loaded");
        }
        WCHAR languages[64];
        KtEnumResourceLanguages(lang, 1, languages, 64);
    }
    KtLang_Close(lang);
    if (own_kernel) KtLang_Close(std::exchange(kernel, nullptr));
    clipfio::SetUiFonts(nullptr);
    return 0;
}
