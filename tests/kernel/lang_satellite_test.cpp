// Texts and resources of a base module and of its satellite.
#include <tuple>

#include "kernel/lang_facts.h"
#include "kernel/lang_resources.h"
#include "lang_fixture.h"
#include "platform/locale.h"
#include "platform/modules.h"
#include "platform/resources.h"
#include "platform/scoped.h"
#include "platform/window_layout.h"
#include "support/fail_each.h"

namespace {

class Satellite : public WithBaseModule {
  protected:
    void Use(LCID lcid) { ASSERT_EQ(KtLang_UpdateKernelLCID(handle_, lcid, 0), 1); }
    std::string Text(uint32_t id) const { return platform::Utf8(KtGetString(handle_, id)); }
    std::string Data(uint32_t id) const {
        uint32_t size = 0;
        const HGLOBAL block = KtLoadResourceCustom(handle_, MAKEINTRESOURCEW(id), MAKEINTRESOURCEW(10), &size);
        return block ? std::string(static_cast<const char*>(LockResource(block)), size) : "none";
    }
};

TEST_F(Satellite, ComesFirstForItsLanguages) {
    const std::tuple<LCID, const char*, const char*, const char*> kRows[] = {
        {0, "base text", "Save", "base"},      {0x0411, "日本語", "保存", "satellite"},
        {0x0407, "deutsch", "Save", "base"},   {0x0409, "base text", "Save", "base"},
        {0x0809, "base text", "Save", "base"}, {0x040C, "base text", "Save", "base"},
    };
    EXPECT_EQ(KtLang_InstFromLang(handle_), base_.Get());
    for (const auto& [lcid, text, save, data] : kRows) {
        if (lcid) Use(lcid);
        EXPECT_EQ(Text(16), text) << std::hex << lcid;
        EXPECT_EQ(Text(17), save) << std::hex << lcid;
        EXPECT_EQ(Text(18), "only in the base");
        EXPECT_EQ(Text(19), "");
        EXPECT_EQ(Data(40), data);
        EXPECT_EQ(Data(41), "more");
        EXPECT_EQ(Data(42), "none");
        WCHAR copy[16] = {};
        const auto length = KtLoadString(handle_, 17, copy, 16);
        EXPECT_EQ(platform::Utf8(copy), save);
        EXPECT_EQ(WStringView(copy).size(), static_cast<std::size_t>(length));
        EXPECT_EQ(KtLang_InstFromLang(handle_) != base_.Get(), lcid != 0 && (lcid & 0x3FF) != 9);
    }
}

TEST_F(Satellite, ResolvesTheIdsOfRows) {
    struct alignas(8) Row {
        uint16_t signature = 0xFFFE, count = 3;
        uint32_t reserved = 0;
        const WCHAR* entries[4] = {W("english"), nullptr, nullptr, nullptr};
    };
    const std::tuple<uint32_t, LCID, const char*> kRows[] = {
        {32, 0x0411, "行の文字"}, {32, 0x0407, "Zeile"},    {33, 0x0411, "english"},  // it does not end in a NUL
        {36, 0x0411, "english"},  {900, 0x0407, "english"}, {0, 0x0407, "english"},
    };
    for (const auto& [number, lcid, text] : kRows) {
        Row record;
        record.entries[1] = record.entries[2] = reinterpret_cast<const WCHAR*>(uintptr_t{number});
        Use(lcid);
        const auto id = reinterpret_cast<KTLANGSTRINGID>(&record);
        const WCHAR* const first = KtGetString(handle_, id);
        EXPECT_EQ(platform::Utf8(first), text) << number;
        EXPECT_EQ(KtGetString(handle_, id), first);
        EXPECT_EQ(record.entries[lcid == 0x0411 ? 1 : 2], first);
    }
}

TEST_F(Satellite, FindsResourcesInBothModules) {
    const WCHAR* const data = MAKEINTRESOURCEW(10);
    const auto text = [this](HRSRC found) {
        const void* const bytes = LockResource(KtLoadResource(handle_, found));
        return bytes ? std::string(static_cast<const char*>(bytes), 4) : "none";
    };
    Use(0x0411);
    const HMODULE satellite = KtLang_InstFromLang(handle_);
    const HRSRC ours = KtFindResource(handle_, MAKEINTRESOURCEW(40), data);
    const HRSRC theirs = KtFindResource(handle_, MAKEINTRESOURCEW(41), data);
    EXPECT_EQ(text(ours), "sate");
    EXPECT_EQ(text(theirs), "more");
    EXPECT_EQ(KtSizeofResource(handle_, ours), 9u);
    EXPECT_EQ(KtSizeofResource(handle_, theirs), 0u);
    EXPECT_EQ(KtFindResInstance(handle_, MAKEINTRESOURCEW(40), data), satellite);
    EXPECT_EQ(KtFindResInstance(handle_, MAKEINTRESOURCEW(41), data), base_.Get());
    EXPECT_EQ(KtFindResInstance(handle_, MAKEINTRESOURCEW(999), data), base_.Get());

    const WCHAR* const types[] = {RT_BITMAP, RT_MENU, data};
    int32_t index = 9;
    EXPECT_EQ(KtFindResourceMulti(handle_, MAKEINTRESOURCEW(40), types, 3, &index), ours);
    EXPECT_EQ(index, 2);
    EXPECT_NE(KtFindResourceMulti(handle_, MAKEINTRESOURCEW(20), types, 3, &index), nullptr);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(KtFindResourceMulti(handle_, MAKEINTRESOURCEW(41), types, 2, &index), nullptr);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(KtFindResourceMulti(handle_, MAKEINTRESOURCEW(41), types, INT32_MIN, nullptr), nullptr);

    Use(0x0409);
    EXPECT_EQ(text(ours), "none");  // of a module that is not in use any more
    EXPECT_EQ(KtSizeofResource(handle_, theirs), 4u);
    EXPECT_EQ(KtFindResource(nullptr, MAKEINTRESOURCEW(40), data), nullptr);
    EXPECT_EQ(KtLoadResource(nullptr, theirs), nullptr);
    EXPECT_EQ(KtSizeofResource(nullptr, theirs), 0u);
    EXPECT_EQ(KtFindResInstance(nullptr, MAKEINTRESOURCEW(40), data), nullptr);
}

TEST_F(Satellite, NamesItsLanguages) {
    WCHAR text[32];
    EXPECT_EQ(KtEnumResourceLanguages(handle_, 1, text, 32), 0);
    Use(0x0411);
    EXPECT_EQ(KtEnumResourceLanguages(handle_, 1, text, 32), 7);
    const std::string names = platform::Utf8(text);
    EXPECT_TRUE(names == "JPN,DEU" || names == "DEU,JPN") << names;
    EXPECT_EQ(KtEnumResourceLanguages(handle_, 1, text, 5), 4);
    EXPECT_EQ(KtEnumResourceLanguages(handle_, 2, text, 32), 0);
    EXPECT_EQ(text[0], 0);
    EXPECT_EQ(KtEnumResourceLanguages(nullptr, 1, text, 32), 0);
}

TEST_F(Satellite, CanBeReplaced) {
    Use(0x0407);
    EXPECT_EQ(Text(16), "deutsch");
    EXPECT_EQ(KtLang_ChangeLangInst(handle_, nullptr), 1);
    EXPECT_EQ(Text(16), "deutsch");
    // Both handles free what they are given; the old satellite stays the caller's to free.
    const platform::ScopedLibrary old(KtLang_InstFromLang(handle_));
    WCHAR path[300];
    ASSERT_GT(GetModuleFileNameW(base_.Get(), path, 300), 0u);
    const HMODULE replacement = LoadLibraryW(path);
    ASSERT_EQ(LoadLibraryW(path), replacement);
    EXPECT_EQ(KtLang_ChangeLangInst(handle_, replacement), 1);
    Use(0x0411);
    EXPECT_EQ(Text(16), "base text");
    EXPECT_EQ(KtLang_InstFromLang(clipfio::KernelLanguage()), replacement);
    EXPECT_EQ(KtLang_ChangeLangInst(nullptr, replacement), 0);
    FreeLibrary(replacement);  // the base module is not freed by the handle that has it as its base
}

TEST_F(Satellite, SetsTheThreadsLocaleAndLaysWindowsOutAsTheLanguageIsWritten) {
    for (const LCID lcid : {0x0401u, 0x0411u, 0x040Du, 0x0420u, 0x0429u, 0x0409u}) {
        Use(lcid);
        DWORD layout = 9;
        ASSERT_TRUE(GetProcessDefaultLayout(&layout));
        EXPECT_EQ(layout, lcid == 0x0411 || lcid == 0x0409 ? 0u : 1u) << std::hex << lcid;
        EXPECT_EQ(KtLang_UseRTL(handle_), static_cast<int32_t>(layout));
        const LCID before = GetThreadLocale();
        KtLang_UpdateThreadLocale(handle_);
        EXPECT_EQ(GetThreadLocale(), lcid);
        SetThreadLocale(before);
    }
    for (const DWORD mirrored : {1u, 0u}) {
        mirrored ? KtLang_EnableProcessMirroring() : KtLang_DisableProcessMirroring();
        DWORD layout = 9;
        EXPECT_TRUE(GetProcessDefaultLayout(&layout) && layout == mirrored);
    }
}

// Each allocation and each call of the platform fails once.
TEST_F(Satellite, OpensWholeOrNotAtAll) {
    HKTLANG opened = nullptr;
    const auto open = [&] { return KtLang_Open(&opened, base_.Get(), 0x0407, 3); };
    const auto check = [&](HRESULT result, bool) {
        EXPECT_EQ(result, opened ? S_OK : E_OUTOFMEMORY);  // a satellite that cannot be loaded is no failure
        EXPECT_TRUE(!opened || WStringView(KtGetString(opened, 18)) == W("only in the base"));
        KtLang_Close(std::exchange(opened, nullptr));
    };
    support::FailEach<support::FailingCall>(open, check);
    // A text that cannot be kept is none.
    support::FailEach<support::FailingCall>(
        [&] { return Text(16); }, [](const std::string& text, bool hit) { EXPECT_EQ(text, hit ? "" : "base text"); });
    const FailingNew fail(0);
    HKTLANG lang = nullptr;
    EXPECT_EQ(KtLang_Open(&lang, base_.Get(), 0, 0), E_OUTOFMEMORY);
    EXPECT_EQ(lang, nullptr);
}

}  // namespace
