// Texts that are read as colours, numbers and codes: reading stops inside the text, and what is written reads back.
#include <algorithm>
#include <cstring>
#include <memory>

#include "fuzz/fuzzers.h"
#include "kernel/colorref_text.h"
#include "kernel/internationals.h"
#include "kernel/number_to_text.h"
#include "kernel/stereo_names.h"
#include "kernel/text_to_number.h"
#include "kernel/text_tools.h"

namespace {

struct Text {
    std::unique_ptr<WCHAR[]> characters;  // exactly as long as the text, so that a sanitizer sees its end
    std::size_t length;

    Text(const uint8_t* data, size_t size) : length(std::min<std::size_t>(size / sizeof(WCHAR), 4000)) {
        characters = std::make_unique<WCHAR[]>(length + 1);
        std::memcpy(characters.get(), data, length * sizeof(WCHAR));
        characters[length] = 0;
        length = WStringView(characters.get()).size();
    }
    [[nodiscard]] const WCHAR* Begin() const { return characters.get(); }
    template <class... More>
    auto Read(auto read, More... more) const {
        const WCHAR* end = nullptr;
        const auto value = read(Begin(), &end, more...);
        FuzzRequire(end >= Begin() && end <= Begin() + length, "reading stops inside the text");
        return value;
    }
};

void ReadNumbers(const Text& text) {
    const int32_t number = text.Read(KtTextToLongToken);
    text.Read(KtTextToDWordToken);
    const uint64_t wide = text.Read(KtTextToDWordLongToken);
    text.Read(KtTextToDoubleToken, 0);
    const double value = text.Read(KtTextToDoubleToken, 1);
    const uint64_t hex = text.Read(KtHexToDWordLongToken);
    FuzzRequire(static_cast<uint32_t>(hex) == KtHexToDWordToken(text.Begin(), nullptr), "widths of hex agree");
    const int32_t limited = KtTextToLongTokenEx(text.Begin(), 7, -100, 100, nullptr);
    FuzzRequire(limited >= -100 && limited <= 100, "limits hold");

    WCHAR written[64];
    for (const int grouped : {0, 1}) {
        FuzzRequire(KtLongToText(number, written, grouped) > 0 && KtTextToLongToken(written, nullptr) == number,
                    "a number reads back");
        FuzzRequire(KtDWordLongToText(wide, written, grouped) > 0 && KtTextToDWordLongToken(written, nullptr) == wide,
                    "a wide number reads back");
        FuzzRequire(KtDoubleToText(written, value, 3, grouped) > 0, "a double is written");
    }
}

void ReadColor(const Text& text) {
    const uint32_t color = text.Read(KtTextToColorrefToken);
    for (const int32_t mode : {0, 1, 2}) {
        WCHAR written[32];
        FuzzRequire(KtColorrefToText(written, 32, color, mode) > 0 && KtTextToColorref(written) == color,
                    "a colour reads back");
    }
}

void ReadGuid(const Text& text) {
    GUID guid{};
    if (KtGuidFromString(text.Begin(), &guid) != 0) return;
    WCHAR written[40];
    GUID again{};
    KtGuidToString(&guid, written, 40);
    FuzzRequire(KtGuidFromString(written, &again) == 0 && again == guid, "a code reads back");
}

}  // namespace

int FuzzTextValues(const uint8_t* data, size_t size) {
    static const HRESULT ready = KtLang_GetInternationals(nullptr, 0);
    static_cast<void>(ready);
    const Text text(data, size);
    ReadNumbers(text);
    ReadColor(text);
    ReadGuid(text);
    WCHAR left[40];
    WCHAR right[20];
    KtChannelizeStereoName(text.Begin(), left, 40, right, 20);
    KtPrepareName(text.Begin(), left, 40);
    KtFixNameForMenu(left, text.Begin(), 40);
    KtStripWhiteSpace(text.characters.get());
    return 0;
}
