// Menus out of the language's resources, and what is done to them before they are shown.
//
// Lists of commands: `count` ids, a negative count meaning up to 10000; an id of 0 ends a list early. A null or wrong
// menu has no items. A menu belongs to one thread.
#pragma once

#include "kernel/lang.h"
#include "platform/menu.h"

// A menu of the context's modules, which the caller destroys; null when there is none. Item texts lose the mark "^*".
KT_API HMENU KtLoadMenu(HKTLANG handle, const WCHAR* name) noexcept;
// The same, culled as KtCullMenu does.
KT_API HMENU KtLoadCulledMenu(HKTLANG handle, const WCHAR* name, const uint32_t* ids, int32_t count,
                              int32_t clean) noexcept;

// Depth first. 1 and the menu and position of a command, or 0, null and -1. Both outs may be null.
KT_API int32_t KtFindSubMenu(HMENU menu, uint32_t id, HMENU* found, int32_t* position) noexcept;
// The menu that holds a command, and its position in it; null and -1 for none.
KT_API HMENU KtGetSubmenuByID(HMENU menu, uint32_t id, int32_t* position) noexcept;

// Removes separators that stand first, last or next to another one, and menus below that are left empty. When `menu` is
// left empty itself it is deleted from `parent`, where it stands at `position`, and the result is 1; else 0. `parent`
// may be null.
KT_API int32_t KtCleanMenu(HMENU menu, HMENU parent, int32_t position) noexcept;
// Deletes commands wherever they are and, with `clean`, cleans the menu.
KT_API void KtCullMenu(HMENU menu, const uint32_t* ids, int32_t count, int32_t clean) noexcept;
KT_API void KtGrayMenu(HMENU menu, const uint32_t* ids, int32_t count) noexcept;
// The items of this menu, not those of menus below.
KT_API void KtGrayAllMenuItems(HMENU menu) noexcept;
KT_API void KtEnableAllMenuItems(HMENU menu) noexcept;
// Runs item texts, up to 99 characters, through the formatter, for the sake of its tokens. There are no arguments: an
// item that asks for some gets zeros and empty texts.
KT_API void KtMenuReplaceTokens(HMENU menu) noexcept;
