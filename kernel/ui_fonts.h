// The fonts of the user interface, filled by the room that knows them.
#pragma once

#include "platform/gdi.h"

namespace clipfio {

inline constexpr int kStandardUiFont = 100;
inline constexpr int kDialogUiFont = 17;

struct UiFonts {
    HFONT (*font)(int number) noexcept;               // the kit's own, never to be deleted; null when there is none
    bool (*units)(int number, SIZE& units) noexcept;  // the extent of "0" in pixels; false when there is none
};

// `fonts` stays until it is replaced; null: there are none.
void SetUiFonts(const UiFonts* fonts) noexcept;
HFONT UiFont(int number) noexcept;
bool UiFontUnits(int number, SIZE& units) noexcept;

}  // namespace clipfio
