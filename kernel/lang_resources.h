// Resources of a language context: those of the satellite in the context's language come first while it is in use, then
// those of the base module.
//
// Names and types are texts, or numbers as MAKEINTRESOURCEW makes them. Blocks are the modules' and are not freed;
// objects that are made of them are the caller's, as with the platform's own calls, and null is the failure of all that
// give one. Any thread; objects of the user interface belong to the thread that makes them.
#pragma once

#include <cstdint>

#include "kernel/lang.h"
#include "platform/dialogs.h"
#include "platform/images.h"
#include "platform/menu.h"

KT_API HRSRC KtFindResource(HKTLANG handle, const WCHAR* name, const WCHAR* type) noexcept;
// Tries each of `count` types in the satellite, then each in the base module; `index` may be null and gets the one that
// was found, -1 for none.
KT_API HRSRC KtFindResourceMulti(HKTLANG handle, const WCHAR* name, const WCHAR* const* types, int32_t count,
                                 int32_t* index) noexcept;
// The satellite when it has the resource, else the base module, which is not asked.
KT_API HMODULE KtFindResInstance(HKTLANG handle, const WCHAR* name, const WCHAR* type) noexcept;
KT_API HGLOBAL KtLoadResource(HKTLANG handle, HRSRC resource) noexcept;
// Of a resource of the satellite while it is in use, else of the base module; 0 for one of the other.
KT_API uint32_t KtSizeofResource(HKTLANG handle, HRSRC resource) noexcept;
// Finds and loads; `size` receives its bytes and may be null.
KT_API HGLOBAL KtLoadResourceCustom(HKTLANG handle, const WCHAR* name, const WCHAR* type, uint32_t* size) noexcept;

KT_API HWND KtCreateDialogParam(HKTLANG handle, const WCHAR* name, HWND parent, DLGPROC procedure,
                                LPARAM parameter) noexcept;
KT_API HWND KtCreateDialogIndirectParam(HKTLANG handle, const DLGTEMPLATE* dialog, HWND parent, DLGPROC procedure,
                                        LPARAM parameter) noexcept;
// What the dialog was ended with; -1 when it could not be made.
KT_API INT_PTR KtDialogBoxParam(HKTLANG handle, const WCHAR* name, HWND parent, DLGPROC procedure,
                                LPARAM parameter) noexcept;
KT_API INT_PTR KtDialogBoxIndirectParam(HKTLANG handle, const DLGTEMPLATE* dialog, HWND parent, DLGPROC procedure,
                                        LPARAM parameter) noexcept;

// A table of the resource's first entry.
KT_API HACCEL KtLoadAccelerators(HKTLANG handle, const WCHAR* name) noexcept;

// Of the base module alone; without a handle of none, which means the system's own pictures.
KT_API HBITMAP KtLoadBitmap(HKTLANG handle, const WCHAR* name) noexcept;
KT_API HICON KtLoadIcon(HKTLANG handle, const WCHAR* name) noexcept;
KT_API HANDLE KtLoadImage(HKTLANG handle, const WCHAR* name, uint32_t type, int32_t width, int32_t height,
                          uint32_t flags) noexcept;
KT_API HIMAGELIST KtImageList_LoadImage(HKTLANG handle, const WCHAR* name, int32_t width, int32_t grow_by,
                                        COLORREF mask, uint32_t type, uint32_t flags) noexcept;
// Without a handle the numbers from 32512 are the system's cursors, and all else is of the module that the kernel was
// started with.
KT_API HCURSOR KtLoadCursor(HKTLANG handle, const WCHAR* name) noexcept;
