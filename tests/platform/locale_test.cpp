#include <gtest/gtest.h>

#include "platform/locale.h"
#include "support/scoped_variable.h"

namespace {

TEST(Locale, ComesFromTheEnvironment) {
    const struct {
        const WCHAR* number;  // KT_LCID
        const WCHAR* all;     // LC_ALL
        const WCHAR* lang;    // LANG
        LCID expected;
    } rows[] = {
        {W("1031"), W("fr_FR"), nullptr, 0x0407},        {W("0x411"), W("fr_FR"), nullptr, 0x0411},
        {W("0X0C0A"), nullptr, nullptr, 0x0C0A},         {W("nonsense"), W("fr_FR"), nullptr, 0x040C},
        {W("0"), W("fr_FR"), nullptr, 0x040C},           {W("12ab"), nullptr, W("it_IT"), 0x0410},
        {W("0xFFFFFFFFF"), nullptr, W("it_IT"), 0x0410}, {W("0x3FF"), nullptr, W("it_IT"), 0x0410},
        {W("0x400"), nullptr, W("it_IT"), 0x0410},       {W(""), W(""), W("ko_KR.UTF-8"), 0x0412},
        {nullptr, W("tr_TR.UTF-8"), W("de_DE"), 0x041F}, {nullptr, W("de_DE.UTF-8@euro"), nullptr, 0x0407},
        {nullptr, W("de_AT"), nullptr, 0x0C07},          {nullptr, W("de_XX"), nullptr, 0x0407},
        {nullptr, W("pt_BR"), nullptr, 0x0416},          {nullptr, W("pt"), nullptr, 0x0416},
        {nullptr, W("zh_TW"), nullptr, 0x0404},          {nullptr, W("zh"), nullptr, 0x0804},
        {nullptr, W("C"), W("sv_SE"), 0x041D},           {nullptr, W("C.UTF-8"), W("POSIX"), 0x0409},
        {nullptr, W("tlh_QO"), W("nb_NO"), 0x0414},      {nullptr, nullptr, nullptr, 0x0409},
    };
    for (const auto& row : rows) {
        const support::ScopedVariable number(W("KT_LCID"), row.number);
        const support::ScopedVariable all(W("LC_ALL"), row.all);
        const support::ScopedVariable lang(W("LANG"), row.lang);
        EXPECT_EQ(GetUserDefaultLCID(), row.expected);
        EXPECT_EQ(GetSystemDefaultLCID(), row.expected);
    }
}

}  // namespace
