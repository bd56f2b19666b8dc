// Menus of a language's resources, cleaned, culled and grayed.
#include "kernel/lang_menus.h"

#include <tuple>
#include <vector>

#include "lang_fixture.h"
#include "platform/modules.h"
#include "platform/resources.h"
#include "platform/scoped.h"

namespace {

struct MenuTraits {
    using Type = HMENU;
    static Type Empty() noexcept { return nullptr; }
    static bool IsSet(Type menu) noexcept { return menu != nullptr; }
    static void Free(Type menu) noexcept { EXPECT_TRUE(DestroyMenu(menu)); }
};
using Menu = platform::Scoped<MenuTraits>;

// "a b - (c d) e": one letter a command of its own number, a dash a separator, parentheses a menu.
HMENU Make(const char*& text) {
    const HMENU menu = CreatePopupMenu();
    for (; *text && *text != ')'; ++text) {
        if (*text == '(') {
            const HMENU below = Make(++text);
            EXPECT_TRUE(AppendMenuW(menu, MF_POPUP, reinterpret_cast<ULONG_PTR>(below), W("menu")));
        } else if (*text == '-') {
            EXPECT_TRUE(AppendMenuW(menu, MF_SEPARATOR, 0, nullptr));
        } else {
            const WCHAR name[] = {static_cast<WCHAR>(*text), 0};
            EXPECT_TRUE(AppendMenuW(menu, MF_STRING, static_cast<ULONG_PTR>(*text), name));
        }
    }
    return menu;
}

Menu Make(std::string_view text) {
    const char* at = text.data();
    return Menu(Make(at));
}

std::string TextAt(HMENU menu, UINT position) {
    WCHAR text[120];
    GetMenuStringW(menu, position, text, 120, MF_BYPOSITION);
    return platform::Utf8(text);
}

std::string Shape(HMENU menu) {
    std::string shape;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        const auto item = static_cast<UINT>(i);
        if (const HMENU below = GetSubMenu(menu, i)) {
            shape += '(' + Shape(below) + ')';
        } else if (GetMenuState(menu, item, MF_BYPOSITION) & MF_SEPARATOR) {
            shape += '-';
        } else {
            const bool gray = (GetMenuState(menu, item, MF_BYPOSITION) & MF_GRAYED) != 0;
            shape += (gray ? "!" : "") + TextAt(menu, item);
        }
    }
    return shape;
}

TEST(Menus, AreCleanedOfSeparatorsThatPartNothing) {
    const std::pair<const char*, const char*> kRows[] = {
        {"---", ""}, {"ab", "ab"},   {"-a--b-", "a-b"},  {"--a---b--", "a-b"}, {"a(b(-)-)", "a(b)"},
        {"", ""},    {"(())a", "a"}, {"a-(-)-b", "a-b"}, {"(--)(-c-)", "(c)"}, {"-(abcdefgh)-(i)", "(abcdefgh)-(i)"},
    };
    for (const auto& [shape, cleaned] : kRows) {
        const Menu menu = Make(shape);
        EXPECT_EQ(KtCleanMenu(menu.Get(), nullptr, 0), 0);
        EXPECT_EQ(Shape(menu.Get()), cleaned) << shape;
    }
    const Menu menu = Make("a(-)b(c)");
    EXPECT_EQ(KtCleanMenu(GetSubMenu(menu.Get(), 3), menu.Get(), 3), 0);
    EXPECT_EQ(KtCleanMenu(GetSubMenu(menu.Get(), 1), menu.Get(), 1), 1);
    EXPECT_EQ(Shape(menu.Get()), "ab(c)");
}

TEST(Menus, LoseAndGrayTheCommandsOfAList) {
    const std::tuple<std::vector<uint32_t>, int32_t, int32_t, const char*, const char*> kRows[] = {
        {{'b', 'd'}, 2, 1, "a-(c)e", "a!b-(c-!d)e"}, {{'b', 'd'}, 2, 0, "a-(c-)e", "a!b-(c-!d)e"},
        {{'z'}, 1, 0, "ab-(c-d)e", "ab-(c-d)e"},     {{'c', 'd', 0, 'a'}, -1, 1, "ab-e", "ab-(!c-!d)e"},
        {{'a'}, 0, 0, "ab-(c-d)e", "ab-(c-d)e"},     {{'a', 'b'}, 1, 0, "b-(c-d)e", "!ab-(c-d)e"},
    };
    for (const auto& [ids, count, clean, culled, grayed] : kRows) {
        const Menu to_cull = Make("ab-(c-d)e"), to_gray = Make("ab-(c-d)e");
        KtCullMenu(to_cull.Get(), ids.data(), count, clean);
        EXPECT_EQ(Shape(to_cull.Get()), culled);
        KtGrayMenu(to_gray.Get(), ids.data(), count);
        EXPECT_EQ(Shape(to_gray.Get()), grayed);
    }
    const Menu menu = Make("ab(c)");
    KtCullMenu(menu.Get(), nullptr, -1, 0);
    KtGrayAllMenuItems(menu.Get());
    EXPECT_EQ(Shape(menu.Get()), "!a!b(c)");
    EXPECT_NE(GetMenuState(menu.Get(), 2, MF_BYPOSITION) & MF_GRAYED, 0u);
    KtEnableAllMenuItems(menu.Get());
    EXPECT_EQ(Shape(menu.Get()), "ab(c)");
}

TEST(Menus, TellWhereACommandIs) {
    const Menu menu = Make("a(b(cd)-)e");
    const std::tuple<char, int32_t, const char*> kRows[] = {
        {'a', 0, "a(b(cd)-)e"}, {'d', 1, "cd"}, {'b', 0, "b(cd)-"}, {'e', 2, "a(b(cd)-)e"}};
    for (const auto& [id, place, holder] : kRows) {
        HMENU found = nullptr;
        int32_t position = -5;
        EXPECT_EQ(KtFindSubMenu(menu.Get(), static_cast<uint32_t>(id), &found, &position), 1);
        EXPECT_EQ(position, place);
        EXPECT_EQ(Shape(found), holder);
        position = -5;
        EXPECT_EQ(KtGetSubmenuByID(menu.Get(), static_cast<uint32_t>(id), &position), found);
        EXPECT_EQ(position, place);
    }
    for (const uint32_t id : {uint32_t{'z'}, 0u, 0xFFFFFFFFu}) {
        HMENU found = menu.Get();
        int32_t position = 5;
        EXPECT_EQ(KtFindSubMenu(menu.Get(), id, &found, &position), 0) << id;
        EXPECT_EQ(found, nullptr);
        EXPECT_EQ(position, -1);
        EXPECT_EQ(KtFindSubMenu(menu.Get(), id, nullptr, nullptr), 0);
    }
}

TEST(Menus, ThatAreNoneHaveNoItems) {
    for (const uintptr_t value : {0, 1, 0x1000}) {
        const auto wrong = reinterpret_cast<HMENU>(value);
        const uint32_t id = 'a';
        EXPECT_EQ(KtCleanMenu(wrong, nullptr, 0), 0);
        KtCullMenu(wrong, &id, 1, 1);
        KtGrayMenu(wrong, &id, 1);
        KtGrayAllMenuItems(wrong);
        KtEnableAllMenuItems(wrong);
        KtMenuReplaceTokens(wrong);
        EXPECT_EQ(KtGetSubmenuByID(wrong, id, nullptr), nullptr);
    }
}

TEST(Menus, HaveTheirTextsFormattedWithoutArguments) {
    const Menu menu(CreatePopupMenu());
    const HMENU below = CreatePopupMenu();
    const WString longest(90, W('x'));
    for (const WString& text : {WString(W("100%% of $$5")), WString(W("%s[%d]%s%c%I64d%.1f")), longest}) {
        AppendMenuW(menu.Get(), MF_STRING, 5, text.c_str());
        AppendMenuW(below, MF_STRING | MF_GRAYED, 6, text.c_str());
    }
    AppendMenuW(menu.Get(), MF_SEPARATOR, 0, nullptr);
    AppendMenuW(menu.Get(), MF_POPUP, reinterpret_cast<ULONG_PTR>(below), W("%%"));
    KtMenuReplaceTokens(menu.Get());
    const std::string all = "100% of $5[0]00.0" + platform::Utf8(longest);
    EXPECT_EQ(Shape(menu.Get()), all + "-(!100% of $5![0]00.0!" + platform::Utf8(longest) + ')');
    EXPECT_EQ(TextAt(menu.Get(), 4), "%");
    EXPECT_EQ(GetSubMenu(menu.Get(), 4), below);
    EXPECT_EQ(GetMenuItemID(below, 0), 6u);
}

using LoadedMenu = WithBaseModule;

TEST_F(LoadedMenu, HasNoMarksAndComesFromTheLanguage) {
    const WCHAR* const name = MAKEINTRESOURCEW(20);
    const Menu base(KtLoadMenu(handle_, name));
    EXPECT_EQ(Shape(base.Get()), "(Open-Save(Below))Help");
    EXPECT_EQ(TextAt(base.Get(), 0), "File");
    const uint32_t ids[] = {101, 102, 0};
    const Menu culled(KtLoadCulledMenu(handle_, name, ids, -1, 1));
    EXPECT_EQ(Shape(culled.Get()), "(Open)Help");
    ASSERT_EQ(KtLang_UpdateKernelLCID(handle_, 0x0411, 0), 1);
    const Menu japanese(KtLoadMenu(handle_, name));
    EXPECT_EQ(Shape(japanese.Get()), "開く");
    EXPECT_EQ(KtLoadMenu(handle_, MAKEINTRESOURCEW(21)), nullptr);
    EXPECT_EQ(KtLoadCulledMenu(handle_, MAKEINTRESOURCEW(21), ids, -1, 1), nullptr);
    EXPECT_EQ(KtLoadMenu(nullptr, name), nullptr);
}

}  // namespace
