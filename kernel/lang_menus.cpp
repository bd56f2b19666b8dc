#include "kernel/lang_menus.h"

#include "kernel/lang_handle.h"
#include "kernel/lang_resource_search.h"
#include "kernel/print_engine.h"

namespace {

using namespace clipfio;

constexpr int kLongestMarkedText = 260;
constexpr int kLongestItemText = 100;
constexpr int kLongestReplacedText = 200;
constexpr int32_t kMostIds = 10000;

// The state of an item with a menu of its own carries a count where other items have this flag.
bool IsSeparator(HMENU menu, int position) noexcept {
    const UINT state = GetMenuState(menu, static_cast<UINT>(position), MF_BYPOSITION);
    return state != static_cast<UINT>(-1) && !GetSubMenu(menu, position) && (state & MF_SEPARATOR) != 0;
}

void DeleteAt(HMENU menu, int position) noexcept { DeleteMenu(menu, static_cast<UINT>(position), MF_BYPOSITION); }

// The text alone: the item keeps its id, its state and its menu.
void SetText(HMENU menu, int position, WCHAR* text) noexcept {
    MENUITEMINFOW info{};
    info.cbSize = sizeof info;
    info.fMask = MIIM_STRING;
    info.dwTypeData = text;
    SetMenuItemInfoW(menu, static_cast<UINT>(position), TRUE, &info);
}

template <class Operation>
void ForEachId(const uint32_t* ids, int32_t count, Operation&& operation) noexcept {
    const int32_t most = count < 0 ? kMostIds : count;
    for (int32_t i = 0; ids && i < most && ids[i] != 0; ++i) operation(ids[i]);
}

void RemoveMarks(HMENU menu) noexcept {
    const int count = GetMenuItemCount(menu);
    for (int i = 0; i < count; ++i) {
        WCHAR text[kLongestMarkedText] = {};
        GetMenuStringW(menu, static_cast<UINT>(i), text, kLongestMarkedText, MF_BYPOSITION);
        const WStringView rest = WithoutMark(text);
        if (rest.data() != text) SetText(menu, i, text + (rest.data() - text));
        if (const HMENU below = GetSubMenu(menu, i)) RemoveMarks(below);
    }
}

void EnableAll(HMENU menu, UINT flags) noexcept {
    const int count = GetMenuItemCount(menu);
    for (int i = 0; i < count; ++i) EnableMenuItem(menu, static_cast<UINT>(i), flags);
}

}  // namespace

HMENU KtLoadMenu(HKTLANG handle, const WCHAR* name) noexcept {
    if (!handle) return nullptr;
    const void* const found = BytesOf(FindBeforeBase(*handle, RT_MENU, name));
    HMENU menu = nullptr;
    if (found) {
        menu = LoadMenuIndirectW(found);
    } else if (AsksBase(handle)) {
        menu = LoadMenuW(handle->base, name);
    }
    if (menu) RemoveMarks(menu);
    return menu;
}

HMENU KtLoadCulledMenu(HKTLANG handle, const WCHAR* name, const uint32_t* ids, int32_t count, int32_t clean) noexcept {
    const HMENU menu = KtLoadMenu(handle, name);
    if (menu) KtCullMenu(menu, ids, count, clean);
    return menu;
}

HMENU KtGetSubmenuByID(HMENU menu, uint32_t id, int32_t* position) noexcept {
    if (position) *position = -1;
    const int count = GetMenuItemCount(menu);
    for (int i = 0; i < count; ++i) {
        if (const HMENU below = GetSubMenu(menu, i)) {
            if (const HMENU found = KtGetSubmenuByID(below, id, position)) return found;
        } else if (GetMenuItemID(menu, i) == id && !IsSeparator(menu, i)) {
            if (position) *position = i;
            return menu;
        }
    }
    return nullptr;
}

int32_t KtFindSubMenu(HMENU menu, uint32_t id, HMENU* found, int32_t* position) noexcept {
    const HMENU holder = KtGetSubmenuByID(menu, id, position);
    if (found) *found = holder;
    return holder != nullptr;
}

int32_t KtCleanMenu(HMENU menu, HMENU parent, int32_t position) noexcept {
    for (int i = GetMenuItemCount(menu); i-- > 0;) {
        if (const HMENU below = GetSubMenu(menu, i)) KtCleanMenu(below, menu, i);
    }
    for (int i = GetMenuItemCount(menu); i-- > 0;) {
        // What stands behind has been looked at. Of several separators the first one is left, until it comes first.
        const bool at_end = i == GetMenuItemCount(menu) - 1;
        if (IsSeparator(menu, i) && (i == 0 || at_end || IsSeparator(menu, i - 1))) DeleteAt(menu, i);
    }
    if (!parent || GetMenuItemCount(menu) != 0) return 0;
    DeleteAt(parent, position);
    return 1;
}

void KtCullMenu(HMENU menu, const uint32_t* ids, int32_t count, int32_t clean) noexcept {
    ForEachId(ids, count, [menu](uint32_t id) { DeleteMenu(menu, id, MF_BYCOMMAND); });
    if (clean) KtCleanMenu(menu, nullptr, 0);
}

void KtGrayMenu(HMENU menu, const uint32_t* ids, int32_t count) noexcept {
    ForEachId(ids, count, [menu](uint32_t id) { EnableMenuItem(menu, id, MF_BYCOMMAND | MF_GRAYED); });
}

void KtGrayAllMenuItems(HMENU menu) noexcept { EnableAll(menu, MF_BYPOSITION | MF_GRAYED); }

void KtEnableAllMenuItems(HMENU menu) noexcept { EnableAll(menu, MF_BYPOSITION); }

void KtMenuReplaceTokens(HMENU menu) noexcept {
    const int count = GetMenuItemCount(menu);
    for (int i = 0; i < count; ++i) {
        if (IsSeparator(menu, i)) continue;
        WCHAR text[kLongestItemText] = {};
        WCHAR replaced[kLongestReplacedText] = {};
        GetMenuStringW(menu, static_cast<UINT>(i), text, kLongestItemText, MF_BYPOSITION);
        PrintWithoutArguments(replaced, kLongestReplacedText, text);
        if (WStringView(text) != replaced) SetText(menu, i, replaced);
        if (const HMENU below = GetSubMenu(menu, i)) KtMenuReplaceTokens(below);
    }
}
