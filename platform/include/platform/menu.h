// Menus, and how they are made out of templates, and the keys that stand for their commands.
//
// A menu is used by one thread at a time. A wrong or destroyed menu fails with ERROR_INVALID_MENU_HANDLE.
#pragma once

#include "platform/base.h"

#ifndef _WIN32

using HMENU = struct HMENU__*;
using HACCEL = struct HACCEL__*;

inline constexpr UINT MF_BYCOMMAND = 0x0;
inline constexpr UINT MF_BYPOSITION = 0x400;
inline constexpr UINT MF_STRING = 0x0;
inline constexpr UINT MF_GRAYED = 0x1;
inline constexpr UINT MF_POPUP = 0x10;
inline constexpr UINT MF_SEPARATOR = 0x800;
inline constexpr UINT MIIM_STRING = 0x40;

// Only wID, hSubMenu and dwTypeData are looked at, as fMask says.
struct MENUITEMINFOW {
    UINT cbSize;
    UINT fMask;
    UINT fType;
    UINT fState;
    UINT wID;
    HMENU hSubMenu;
    HANDLE hbmpChecked;
    HANDLE hbmpUnchecked;
    ULONG_PTR dwItemData;
    WCHAR* dwTypeData;
    UINT cch;
    HANDLE hbmpItem;
};

extern "C" HMENU CreateMenu() noexcept;
extern "C" HMENU CreatePopupMenu() noexcept;
extern "C" BOOL DestroyMenu(HMENU menu) noexcept;  // with all menus below it
// Menus out of a template in the plain or in the extended form, such as a resource. A damaged one fails with
// ERROR_INVALID_DATA. A template that is no resource has to be whole.
extern "C" HMENU LoadMenuIndirectW(const void* menu_template) noexcept;
extern "C" HMENU LoadMenuW(HINSTANCE module, const WCHAR* name) noexcept;

// With MF_POPUP the id is a menu, which then belongs to this one.
extern "C" BOOL AppendMenuW(HMENU menu, UINT flags, ULONG_PTR id, const WCHAR* text) noexcept;
// Items by position, or by command, which is looked for in the menus below too. A deleted item's menu is destroyed.
extern "C" BOOL DeleteMenu(HMENU menu, UINT item, UINT flags) noexcept;
extern "C" BOOL EnableMenuItem(HMENU menu, UINT item, UINT flags) noexcept;  // the state before, -1 for no item
extern "C" int GetMenuItemCount(HMENU menu) noexcept;                        // -1 on failure
extern "C" UINT GetMenuItemID(HMENU menu, int position) noexcept;            // -1 for none, and for an item with a menu
// The flags of an item, and in the second byte the number of items of its menu; -1 for no item.
extern "C" UINT GetMenuState(HMENU menu, UINT item, UINT flags) noexcept;
// The characters copied, without the terminator; a size of 0 asks for the length.
extern "C" int GetMenuStringW(HMENU menu, UINT item, WCHAR* text, int size, UINT flags) noexcept;
extern "C" HMENU GetSubMenu(HMENU menu, int position) noexcept;
extern "C" BOOL SetMenuItemInfoW(HMENU menu, UINT item, BOOL by_position, const MENUITEMINFOW* info) noexcept;

struct ACCEL {
    BYTE fVirt;  // flags: a key's number rather than a character, and the keys held with it
    WORD key;
    WORD cmd;
};

// Tables of keys: kept and given back, for no key is ever pressed here. The table is the caller's to destroy.
extern "C" HACCEL CreateAcceleratorTableW(ACCEL* entries, int count) noexcept;
extern "C" BOOL DestroyAcceleratorTable(HACCEL table) noexcept;
// The entries copied, `count` at most; without `entries` how many there are. 0 for what is no table.
extern "C" int CopyAcceleratorTableW(HACCEL table, ACCEL* entries, int count) noexcept;

#endif
