#include "kernel/print_window.h"

#include <cstdarg>

#include "kernel/print.h"
#include "kernel/print_engine.h"
#include "platform/text.h"

namespace {

constexpr uint32_t kLongest = 2048;            // characters of a text, with the terminator
constexpr int32_t kLongestCompared = 8192;     // of a control's present text
constexpr const WCHAR* kTextFormat = W("%s");  // of the forms without a format

// The text of a format: the format itself, or what is printed by it into a buffer of this object.
class FormattedText {
  public:
    FormattedText(const WCHAR* format, std::va_list arguments) noexcept : text_(format) {
        if (WStringView(format).find_first_of(W("$%")) == WStringView::npos) return;
        clipfio::PrintArguments taken;
        va_copy(taken.list, arguments);
        clipfio::Print(buffer_, kLongest, clipfio::TextRule::kPlatform, format, taken);
        va_end(taken.list);
        text_ = buffer_;
    }
    FormattedText(const FormattedText&) = delete;
    FormattedText& operator=(const FormattedText&) = delete;

    [[nodiscard]] const WCHAR* Text() const noexcept { return text_; }
    [[nodiscard]] int32_t Length() const noexcept { return lstrlenW(text_); }

  private:
    const WCHAR* text_;
    WCHAR buffer_[kLongest];
};

int32_t SetText(HWND window, const WCHAR* format, std::va_list arguments) noexcept {
    if (!window || !format) return 0;
    const FormattedText text(format, arguments);
    return SetWindowTextW(window, text.Text()) ? text.Length() : 0;
}

int32_t SetItemText(HWND dialog, int32_t item, const WCHAR* format, std::va_list arguments) noexcept {
    return format ? SetText(GetDlgItem(dialog, item), format, arguments) : 0;
}

int32_t SetItemTextNoFlash(HWND dialog, int32_t item, const WCHAR* format, std::va_list arguments) noexcept {
    const HWND control = format ? GetDlgItem(dialog, item) : nullptr;
    if (!control) return 0;
    const FormattedText text(format, arguments);
    if (GetWindowTextLengthW(control) < kLongestCompared) {
        WCHAR present[kLongestCompared];
        const int32_t length = GetWindowTextW(control, present, kLongestCompared);
        if (lstrcmpW(present, text.Text()) == 0) return length;
    }
    return SetWindowTextW(control, text.Text()) ? text.Length() : 0;
}

void Append(HWND edit, const WCHAR* text) noexcept {
    constexpr auto kNothing = static_cast<WPARAM>(-1);
    SendMessageW(edit, EM_SETSEL, kNothing, static_cast<LPARAM>(kNothing));
    SendMessageW(edit, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text));
}

}  // namespace

int32_t KtSetWindowTextF(HWND window, const WCHAR* format, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    const int32_t length = SetText(window, format, arguments);
    va_end(arguments);
    return length;
}

int32_t KtSetWindowTextNoF(HWND window, const WCHAR* text) noexcept {
    return KtSetWindowTextF(window, kTextFormat, text);
}

int32_t KtSetDlgItemTextF(HWND dialog, int32_t item, const WCHAR* format, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    const int32_t length = SetItemText(dialog, item, format, arguments);
    va_end(arguments);
    return length;
}

int32_t KtSetDlgItemTextNoF(HWND dialog, int32_t item, const WCHAR* text) noexcept {
    return KtSetDlgItemTextF(dialog, item, kTextFormat, text);
}

int32_t KtSetDlgItemTextNoFlashF(HWND dialog, int32_t item, const WCHAR* format, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    const int32_t length = SetItemTextNoFlash(dialog, item, format, arguments);
    va_end(arguments);
    return length;
}

int32_t KtSetDlgItemTextNoFlashNoF(HWND dialog, int32_t item, const WCHAR* text) noexcept {
    return KtSetDlgItemTextNoFlashF(dialog, item, kTextFormat, text);
}

int32_t KtSetWindowTextId(HKTLANG handle, HWND window, uint32_t id, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, id);
    const int32_t length = SetText(window, KtGetString(handle, id), arguments);
    va_end(arguments);
    return length;
}

int32_t KtSetDlgItemTextId(HKTLANG handle, HWND dialog, int32_t item, uint32_t id, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, id);
    const int32_t length = SetItemText(dialog, item, KtGetString(handle, id), arguments);
    va_end(arguments);
    return length;
}

uint32_t KtMEditPrintF(HWND edit, const WCHAR* format, ...) noexcept {
    if (!format) {
        SetWindowTextW(edit, W(""));
        return 0;
    }
    const bool open = *format == W('~');
    const WCHAR* printed = format;
    while (*printed == W('~')) ++printed;
    WCHAR text[kLongest];
    uint32_t length = 0;
    std::va_list arguments;
    va_start(arguments, format);
    static_cast<void>(KtNVPrintF(text, kLongest, &length, printed, arguments));
    va_end(arguments);
    Append(edit, text);
    if (!open) Append(edit, W("\r\n"));
    return length;
}
