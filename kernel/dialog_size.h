// How large a dialog becomes, from its template alone where that can be told.
//
// Sizes in pixels. 1, or 0 with a size of 0.
#pragma once

#include "kernel/lang.h"
#include "platform/dialogs.h"
#include "platform/gdi.h"

// A dialog of the context's modules. On an English system with 96 dots per inch its template is measured; elsewhere the
// dialog is made, measured and destroyed again.
KT_API int32_t KtGetDialogSize(HKTLANG handle, const WCHAR* name, SIZE* size) noexcept;
// The inner size that a template, plain or extended, asks for. Without a font that can be measured the units are those
// of the standard font of the user interface.
KT_API int32_t KtGetDialogSizeIndirect(HKTLANG handle, const DLGTEMPLATE* dialog, SIZE* size) noexcept;
// The units that a dialog is laid out in with this font: a quarter of `cx` across, an eighth of `cy` down. `points` is
// the font's size.
KT_API int32_t KtGetDialogUnitsForFont(HKTLANG handle, const WCHAR* face, int32_t points, int32_t weight,
                                       int32_t italic, uint32_t charset, SIZE* units) noexcept;

namespace clipfio {

// As KtGetDialogSizeIndirect, for a template of so many bytes.
bool DialogSizeOfTemplate(const void* dialog, std::size_t bytes, SIZE& size) noexcept;

}  // namespace clipfio
