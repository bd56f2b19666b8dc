#include "kernel/dialog_size.h"

#include <iterator>
#include <limits>

#include "kernel/lang_handle.h"
#include "kernel/lang_resources.h"
#include "kernel/text_copy.h"
#include "kernel/ui_fonts.h"
#include "platform/endian.h"
#include "platform/locale.h"
#include "platform/resources.h"

namespace clipfio {
namespace {

constexpr int kStandardDpi = 96;
constexpr int32_t kNormalWeight = 400;
constexpr uint32_t kDefaultCharset = 1;
constexpr uint32_t kExtendedTemplate = 0xFFFF0001;

struct DeviceTraits {
    using Type = HDC;
    static Type Empty() noexcept { return nullptr; }
    static bool IsSet(Type device) noexcept { return device != nullptr; }
    static void Free(Type device) noexcept { ReleaseDC(nullptr, device); }
};
using ScreenDevice = platform::Scoped<DeviceTraits>;

struct FontTraits {
    using Type = HFONT;
    static Type Empty() noexcept { return nullptr; }
    static bool IsSet(Type font) noexcept { return font != nullptr; }
    static void Free(Type font) noexcept { DeleteObject(font); }
};
using ScopedFont = platform::Scoped<FontTraits>;

struct Font {
    WCHAR face[64] = {};
    int32_t points = 0;
    int32_t weight = kNormalWeight;
    int32_t italic = 0;
    uint32_t charset = kDefaultCharset;
};

struct Header {
    int32_t width = 0;  // in dialog units
    int32_t height = 0;
    bool has_font = false;
    Font font;
};

// Reads what lies before the controls of a template. Past the end everything is 0.
class TemplateReader {
  public:
    TemplateReader(const void* bytes, std::size_t size) noexcept
        : at_(static_cast<const uint8_t*>(bytes)), left_(size) {}

    [[nodiscard]] bool Read(Header& header) noexcept {
        const uint32_t first = Word32();
        const bool extended = first == kExtendedTemplate;
        if (extended) Skip(8);  // the help id, the extended style
        const uint32_t style = extended ? Word32() : first;
        Skip(extended ? 2 : 6);  // the count of controls; in the plain form the extended style before it
        Skip(4);                 // the place
        header.width = static_cast<int16_t>(Word16());
        header.height = static_cast<int16_t>(Word16());
        if ((style & DS_SETFONT) == 0 || failed_) return !failed_;
        SkipName();
        SkipName();
        SkipText();
        header.font.points = Word16();
        if (extended) {
            header.font.weight = Word16();
            const uint16_t both = Word16();
            header.font.italic = both & 0xFF;
            header.font.charset = both >> 8;
        }
        ReadText(header.font.face, std::size(header.font.face));
        header.has_font = !failed_ && header.font.face[0] != 0;
        return true;
    }

  private:
    const uint8_t* Take(std::size_t bytes) noexcept {
        failed_ = failed_ || bytes > left_;
        if (failed_) return nullptr;
        const uint8_t* const taken = at_;
        at_ += bytes;
        left_ -= bytes;
        return taken;
    }
    void Skip(std::size_t bytes) noexcept { Take(bytes); }
    uint16_t Word16() noexcept {
        const uint8_t* const bytes = Take(2);
        return bytes ? platform::LoadLittle<uint16_t>(bytes) : uint16_t{0};
    }
    uint32_t Word32() noexcept {
        const uint8_t* const bytes = Take(4);
        return bytes ? platform::LoadLittle<uint32_t>(bytes) : 0;
    }
    void SkipText() noexcept {
        while (Word16() != 0) {
        }
    }
    // A menu or a class: nothing, a number or a text.
    void SkipName() noexcept {
        const uint16_t first = Word16();
        if (first == 0xFFFF) {
            Skip(2);
        } else if (first != 0) {
            SkipText();
        }
    }
    void ReadText(WCHAR* text, std::size_t size) noexcept {
        std::size_t length = 0;
        while (const uint16_t unit = Word16()) {
            if (length + 1 < size) text[length++] = static_cast<WCHAR>(unit);
        }
        text[length] = 0;
    }

    const uint8_t* at_;
    std::size_t left_;
    bool failed_ = false;
};

bool FontUnits(const Font& font, SIZE& units) noexcept {
    units = {};
    const ScreenDevice screen(GetDC(nullptr));
    if (!screen) return false;
    const int height = -MulDiv(font.points, GetDeviceCaps(screen.Get(), LOGPIXELSY), 72);
    const ScopedFont made(CreateFontW(height, 0, 0, 0, font.weight, font.italic ? TRUE : FALSE, FALSE, FALSE,
                                      font.charset, 0, 0, 0, 0, font.face));
    if (!made) return false;
    constexpr WStringView kLetters = W("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    constexpr auto kCount = static_cast<int>(kLetters.size());
    SIZE extent{};
    TEXTMETRICW metrics{};
    const HGDIOBJ before = SelectObject(screen.Get(), made.Get());
    const bool measured = GetTextExtentPoint32W(screen.Get(), kLetters.data(), kCount, &extent) &&
                          GetTextMetricsW(screen.Get(), &metrics);
    if (before) SelectObject(screen.Get(), before);
    if (!measured) return false;
    units.cx = (extent.cx + kCount / 2) / kCount;
    units.cy = metrics.tmHeight + metrics.tmExternalLeading;
    return units.cx != 0;
}

bool IsMeasuredByTemplate() noexcept {
    if (!IsEnglish(GetUserDefaultUILanguage())) return false;
    const ScreenDevice screen(GetDC(nullptr));
    return screen && GetDeviceCaps(screen.Get(), LOGPIXELSX) == kStandardDpi;
}

INT_PTR CALLBACK Passive(HWND, UINT, WPARAM, LPARAM) noexcept { return FALSE; }

bool MeasureDialog(HKTLANG handle, const WCHAR* name, SIZE& size) noexcept {
    const HWND dialog = KtCreateDialogParam(handle, name, GetDesktopWindow(), Passive, 0);
    if (!dialog) return false;
    RECT outline{};
    const bool measured = GetWindowRect(dialog, &outline) != FALSE;
    DestroyWindow(dialog);
    if (measured) size = {outline.right - outline.left, outline.bottom - outline.top};
    return measured;
}

bool MeasureResource(HKTLANG handle, const WCHAR* name, SIZE& size) noexcept {
    uint32_t bytes = 0;
    const void* const dialog = LockResource(KtLoadResourceCustom(handle, name, RT_DIALOG, &bytes));
    return dialog && DialogSizeOfTemplate(dialog, bytes, size);
}

}  // namespace

bool DialogSizeOfTemplate(const void* dialog, std::size_t bytes, SIZE& size) noexcept {
    size = {};
    Header header;
    if (!TemplateReader(dialog, bytes).Read(header)) return false;
    SIZE units{};
    if (!(header.has_font && FontUnits(header.font, units)) && !UiFontUnits(kStandardUiFont, units)) return false;
    size = {MulDiv(header.width, units.cx, 4), MulDiv(header.height, units.cy, 8)};
    return true;
}

}  // namespace clipfio

using namespace clipfio;

int32_t KtGetDialogUnitsForFont(HKTLANG, const WCHAR* face, int32_t points, int32_t weight, int32_t italic,
                                uint32_t charset, SIZE* units) noexcept {
    if (!units) return 0;
    *units = {};
    Font font{{}, points, weight, italic, charset};
    CopyText(font.face, static_cast<int32_t>(std::size(font.face)), face ? face : kNoText);
    return FontUnits(font, *units);
}

int32_t KtGetDialogSizeIndirect(HKTLANG, const DLGTEMPLATE* dialog, SIZE* size) noexcept {
    if (!size) return 0;
    *size = {};
    // Where the template ends is not told; it has to be whole.
    return dialog && DialogSizeOfTemplate(dialog, std::numeric_limits<std::size_t>::max(), *size);
}

int32_t KtGetDialogSize(HKTLANG handle, const WCHAR* name, SIZE* size) noexcept {
    if (!size) return 0;
    *size = {};
    if (!handle) return 0;
    return IsMeasuredByTemplate() ? MeasureResource(handle, name, *size) : MeasureDialog(handle, name, *size);
}
