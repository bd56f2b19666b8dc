// What a window has more when it is a dialog.
#pragma once

#include "platform/dialogs.h"
#include "platform/gdi.h"

namespace platform {

// Made by one copy of the layer and perhaps freed by another: plain data from the C library's heap.
struct Dialog {
    DLGPROC procedure;
    LONG_PTR message_result;
    LONG_PTR user_data;
    HFONT font;  // its own; null: that of the system
    SIZE units;
    bool ended;
    INT_PTR result;
};

}  // namespace platform
