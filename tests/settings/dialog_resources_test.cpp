// The dialog of the settings as the module's resources have it: in each language the controls that the table of
// settings names, and texts.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

#include "platform/resources.h"
#include "platform/text.h"
#include "settings/property_table.h"

namespace clipfio {
namespace {

// Classes by the atoms that stand for them in a template.
constexpr char kButton[] = "#128", kEdit[] = "#129", kStatic[] = "#130", kComboBox[] = "#133";
constexpr char kTrackbar[] = "KTKRN_TRACKBAR_CLASS";
constexpr DWORD kAutoCheckBox = 3, kGroupBox = 7, kButtonKinds = 0xF;

struct Control {
    DWORD style = 0;
    int16_t place[4] = {};
    std::string kind;  // class, in capitals: case counts for nothing
    bool operator==(const Control&) const = default;
};

// A dialog's extended template, taken apart.
struct Dialog {
    std::string title;
    std::multimap<uint32_t, Control> controls;  // by id
    std::vector<std::string> texts;             // of the labels and buttons, in order

    explicit Dialog(WORD language) {
        const HRSRC found = FindResourceExW(nullptr, RT_DIALOG, MAKEINTRESOURCEW(111), language);
        const void* const data = LockResource(LoadResource(nullptr, found));
        if (!data) return;
        bytes_.assign(static_cast<const char*>(data), SizeofResource(nullptr, found));
        at_ = 16;  // behind version, help id and styles
        const auto count = Take<WORD>();
        at_ += 8;
        TakeText();  // menu
        TakeText();  // class
        title = TakeText();
        at_ += 6;  // the font's size, weight and kind
        TakeText();
        for (int i = 0; i < count; ++i) TakeControl();
        EXPECT_EQ(at_, bytes_.size());
    }

  private:
    template <class Value>
    Value Take() {
        Value value{};
        if (at_ + sizeof value <= bytes_.size()) std::memcpy(&value, &bytes_[at_], sizeof value);
        at_ += sizeof value;
        return value;
    }
    // A text, or "#number" for what has one.
    std::string TakeText() {
        WString text;
        WCHAR c = Take<WCHAR>();
        if (c == 0xFFFF) return "#" + std::to_string(Take<WORD>());
        for (; c != 0; c = Take<WCHAR>()) text += c;
        return platform::Utf8(text);
    }
    void TakeControl() {
        at_ = (at_ + 3) & ~std::size_t{3};
        at_ += 8;  // help id and the extended style
        Control control;
        control.style = Take<DWORD>();
        for (int16_t& number : control.place) number = Take<int16_t>();
        const auto id = Take<uint32_t>();
        for (const WCHAR c : platform::Wide(TakeText())) control.kind += static_cast<char>(platform::UpperCase(c));
        const std::string text = TakeText();
        at_ += Take<WORD>();  // what the control is given at its start
        const DWORD button = control.style & kButtonKinds;
        if (control.kind == kStatic || (control.kind == kButton && button != kAutoCheckBox)) texts.push_back(text);
        controls.emplace(id, control);
    }

    std::string bytes_;
    std::size_t at_ = 0;
};

constexpr WORD kEnglish = 0x0409;

std::vector<WORD> Languages() {
    std::vector<WORD> languages;
    EnumResourceLanguagesW(
        nullptr, RT_DIALOG, MAKEINTRESOURCEW(111),
        [](HMODULE, const WCHAR*, const WCHAR*, WORD language, LONG_PTR out) -> BOOL {
            reinterpret_cast<std::vector<WORD>*>(out)->push_back(language);
            return TRUE;
        },
        reinterpret_cast<LONG_PTR>(&languages));
    return languages;
}

TEST(DialogResources, HaveTheSameControlsAndTextsOfTheirOwnInEachLanguage) {
    const std::vector<WORD> languages = Languages();
    EXPECT_EQ(languages.size(), 9u);
    const Dialog english(kEnglish);
    std::set<std::string> titles;
    std::set<std::vector<std::string>> texts;
    for (const WORD language : languages) {
        SCOPED_TRACE(testing::Message() << std::hex << language);
        const Dialog dialog(language);
        EXPECT_TRUE(dialog.controls == english.controls);
        EXPECT_EQ(dialog.texts.size(), english.texts.size());
        EXPECT_NE(dialog.title, "");
        EXPECT_EQ(std::count(dialog.texts.begin(), dialog.texts.end(), ""), 0);
        EXPECT_TRUE(titles.insert(dialog.title).second) << dialog.title;
        EXPECT_TRUE(texts.insert(dialog.texts).second) << "the texts of another language";
    }
}

TEST(DialogResources, HaveTheControlsOfTheTableAndNoOthers) {
    const Dialog dialog(kEnglish);
    std::map<uint32_t, std::string> wanted;  // the class of each control that takes a value
    for (const PropertyRow& row : kPropertyTable) {
        const PropertyControls& ids = row.controls;
        if (row.key.text == std::string("ImageGammaCurve") || row.key.text == std::string("ImageColorSpace")) {
            EXPECT_EQ(dialog.controls.count(ids.control), 0u) << row.key.text << " has an id and no control";
            continue;
        }
        switch (row.kind) {
            case PropertyKind::Float:
                wanted[ids.control] = kTrackbar;
                break;
            case PropertyKind::Coordinate:
                wanted[ids.control] = "CURVE_CONTROL_";
                wanted[ids.yEdit] = kEdit;
                break;
            case PropertyKind::Boolean:
                wanted[ids.control] = kButton;
                break;
            default:
                wanted[ids.control] = kComboBox;
        }
        if (ids.edit != 0) wanted[ids.edit] = kEdit;
        if (ids.check != 0) wanted[ids.check] = kButton;
    }
    for (const auto& [id, kind] : wanted) {
        ASSERT_EQ(dialog.controls.count(id), 1u) << id;
        const Control& control = dialog.controls.find(id)->second;
        EXPECT_TRUE(control.kind.starts_with(kind)) << id << " is " << control.kind;
        EXPECT_TRUE(kind != kButton || (control.style & kButtonKinds) == kAutoCheckBox) << id;
    }
    std::set<uint32_t> buttons;
    for (const auto& [id, control] : dialog.controls) {
        const bool label = control.kind == kStatic || (control.style & kButtonKinds) == kGroupBox;
        if (!label && !wanted.contains(id)) buttons.insert(id);
    }
    EXPECT_EQ(buttons, (std::set<uint32_t>{1, 2, 1128, 1129}));  // OK, Cancel, and the two defaults
}

}  // namespace
}  // namespace clipfio
