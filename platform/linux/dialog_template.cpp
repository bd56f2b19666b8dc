#include "dialog_template.h"

#include <string>

#include "platform/text.h"
#include "template_bytes.h"

namespace platform {
namespace {

constexpr WORD kNumberFollows = 0xFFFF;
constexpr WORD kNormalWeight = 400;
constexpr BYTE kDefaultCharset = 1;

class Reader {
  public:
    explicit Reader(const void* bytes) noexcept : in_(bytes) {}

    bool Read(DialogTemplate& dialog) {
        constexpr DWORD kExtended = 0xFFFF0001;
        const auto first = in_.Read<DWORD>();
        extended_ = first == kExtended;
        if (!extended_ && first >> 16 == kNumberFollows) return false;  // of a version that is not known
        if (extended_) in_.Skip(sizeof(DWORD));                         // the help id
        ReadStyles(dialog, extended_ ? in_.Read<DWORD>() : first);
        const auto count = in_.Read<WORD>();
        ReadPlace(dialog);
        ReadName();  // the menu
        dialog.class_name = ReadName();
        dialog.title = in_.ReadText();
        dialog.has_font = (dialog.style & DS_SETFONT) != 0;
        if (dialog.has_font) ReadFont(dialog);
        for (WORD i = 0; i < count && !in_.Failed(); ++i) ReadItem(dialog.items.emplace_back());
        return !in_.Failed();
    }

  private:
    // `first` is that of the two which comes first.
    void ReadStyles(TemplateWindow& window, DWORD first) noexcept {
        const auto second = in_.Read<DWORD>();
        window.style = extended_ ? second : first;
        window.ex_style = extended_ ? first : second;
    }

    void ReadPlace(TemplateWindow& window) noexcept {
        for (int* const each : {&window.x, &window.y, &window.width, &window.height}) *each = in_.Read<std::int16_t>();
    }

    TemplateName ReadName() {
        TemplateName name;
        const auto first = in_.Read<WORD>();
        if (first == kNumberFollows) {
            name.number = in_.Read<WORD>();
        } else if (first != 0) {
            name.text = static_cast<WCHAR>(first) + in_.ReadText();
        }
        return name;
    }

    void ReadFont(DialogTemplate& dialog) {
        dialog.points = in_.Read<WORD>();
        dialog.weight = kNormalWeight;
        dialog.charset = kDefaultCharset;
        if (extended_) {
            dialog.weight = in_.Read<WORD>();
            dialog.italic = in_.Read<BYTE>() != 0;
            dialog.charset = in_.Read<BYTE>();
        }
        dialog.face = in_.ReadText();
    }

    void ReadItem(TemplateItem& item) {
        in_.Align();
        if (extended_) in_.Skip(sizeof(DWORD));  // the help id
        ReadStyles(item, in_.Read<DWORD>());
        ReadPlace(item);
        item.id = extended_ ? in_.Read<DWORD>() : in_.Read<WORD>();
        item.class_name = ReadName();
        const TemplateName title = ReadName();
        item.title = title.number != 0 ? u'#' + Wide(std::to_string(title.number)) : title.text;
        const unsigned char* const data = in_.Here();
        auto bytes = std::size_t{in_.Read<WORD>()};
        if (bytes == 0 || in_.Failed()) return;
        item.creation_data = data;
        // The plain form counts the size too.
        if (!extended_) bytes -= std::min(bytes, sizeof(WORD));
        in_.Skip(bytes);
    }

    TemplateBytes in_;
    bool extended_ = false;
};

}  // namespace

bool ReadDialogTemplate(const void* bytes, DialogTemplate& dialog) { return Reader(bytes).Read(dialog); }

}  // namespace platform
