// Templates of dialogs, in the plain and in the extended form.
#pragma once

#include <vector>

#include "platform/dialogs.h"

namespace platform {

// A number or a text; as the platform's calls take it. The text lives as long as this.
struct TemplateName {
    WORD number = 0;
    WString text;

    [[nodiscard]] bool IsEmpty() const noexcept { return number == 0 && text.empty(); }
    [[nodiscard]] const WCHAR* Value() const noexcept {
        return number != 0 ? reinterpret_cast<const WCHAR*>(std::uintptr_t{number}) : text.c_str();
    }
};

// Places and sizes in dialog units.
struct TemplateWindow {
    DWORD style = 0;
    DWORD ex_style = 0;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    TemplateName class_name;
    WString title;
};

struct TemplateItem : TemplateWindow {
    DWORD id = 0;
    const void* creation_data = nullptr;  // in the template; null for none
};

struct DialogTemplate : TemplateWindow {
    bool has_font = false;
    int points = 0;
    int weight = 0;
    bool italic = false;
    BYTE charset = 0;
    WString face;
    std::vector<TemplateItem> items;
};

// False for a damaged template. Throws std::bad_alloc.
bool ReadDialogTemplate(const void* bytes, DialogTemplate& dialog);

}  // namespace platform
