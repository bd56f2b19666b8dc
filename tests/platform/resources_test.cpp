#include "platform/resources.h"

#include <gtest/gtest.h>

#include <tuple>

#include "platform/dialogs.h"
#include "platform/linux/resources.h"
#include "support/dialog_template.h"
#include "support/scoped_variable.h"

namespace {

constexpr WORD kString = 6;
constexpr WORD kData = 10;

WString Number(WORD id) { return WString{0xFFFF, id}; }

void PutId(support::Template& out, const WString& id) {
    if (id[0] == 0xFFFF) {
        out.Word(id[0]).Word(id[1]);
    } else {
        out.Text(id.c_str());
    }
}

// One entry as the resource compiler writes it.
std::string MakeEntry(const WString& type, const WString& name, WORD language, const std::string& data) {
    support::Template ids;
    PutId(ids, type);
    PutId(ids, name);
    ids.Align();
    support::Template out;
    out.Double(static_cast<std::uint32_t>(data.size()));
    out.Double(static_cast<std::uint32_t>(8 + ids.Bytes().size() + 16));
    const support::Template rest = support::Template().Double(0).Word(0x1030).Word(language).Double(0).Double(0);
    const std::string entry = out.Bytes() + ids.Bytes() + rest.Bytes() + data;
    return entry + std::string(-entry.size() % 4, '\0');
}

std::string MakeImage() {
    const auto text = [](WORD name, WORD language, const char* data) {
        return MakeEntry(Number(kString), Number(name), language, data);
    };
    return MakeEntry(Number(0), Number(0), 0, "") + text(7, 0x0409, "english") + text(7, 0x0407, "deutsch") +
           text(7, 0x000C, "francais") + text(8, 0x0411, "nihongo") + text(9, 0, "neutral") +
           MakeEntry(Number(kData), W("PICTURE"), 0x0409, std::string(1000, 'p')) +
           MakeEntry(W("CUSTOM"), Number(1), 0x0809, "x") + MakeEntry(W("CUSTOM"), W("EMPTY"), 0x0409, "");
}

// No module of this process: the program's own resources stay as they are.
const HMODULE kModule = reinterpret_cast<HMODULE>(uintptr_t{0x1000});

class Resources : public testing::Test {
  protected:
    ~Resources() override { platform::UnregisterResources(kModule); }

    static std::string Find(const WCHAR* type, const WCHAR* name, WORD language) {
        SetLastError(0);
        const HRSRC found = FindResourceExW(kModule, type, name, language);
        if (!found) return "error " + std::to_string(GetLastError());
        const void* const data = LockResource(LoadResource(kModule, found));
        return std::string(static_cast<const char*>(data), SizeofResource(kModule, found));
    }
};

TEST_F(Resources, AreFoundByTypeNameAndLanguage) {
    const std::string image = MakeImage();
    EXPECT_EQ(Find(RT_STRING, MAKEINTRESOURCEW(7), 0), "error 1812");
    ASSERT_TRUE(platform::RegisterResources(kModule, image.data(), image.size()));
    // For each user.
    const std::tuple<const WCHAR*, const WCHAR*, const WCHAR*, WORD, std::string> rows[] = {
        {W("0x409"), RT_STRING, MAKEINTRESOURCEW(7), 0x0407, "deutsch"},
        {W("0x409"), RT_STRING, MAKEINTRESOURCEW(7), 0x040C, "francais"},
        {W("0x409"), RT_STRING, MAKEINTRESOURCEW(7), 0x0807, "error 1815"},
        {W("0x409"), RT_STRING, MAKEINTRESOURCEW(9), 0x0807, "neutral"},
        {W("0x409"), RT_STRING, MAKEINTRESOURCEW(7), 0, "english"},
        {W("0x407"), RT_STRING, MAKEINTRESOURCEW(7), 0, "deutsch"},
        {W("0x807"), RT_STRING, MAKEINTRESOURCEW(7), 0, "deutsch"},
        {W("0xC0C"), RT_STRING, MAKEINTRESOURCEW(7), 0, "francais"},
        {W("0x410"), RT_STRING, MAKEINTRESOURCEW(7), 0, "english"},
        {W("0x410"), RT_STRING, MAKEINTRESOURCEW(8), 0, "nihongo"},
        {W("0x410"), RT_STRING, W("#8"), 0, "nihongo"},
        {W("0x409"), RT_STRING, MAKEINTRESOURCEW(99), 0, "error 1814"},
        {W("0x409"), RT_BITMAP, MAKEINTRESOURCEW(7), 0, "error 1813"},
        {W("0x409"), W("custom"), MAKEINTRESOURCEW(1), 0, "x"},
        {W("0x409"), W("custom"), MAKEINTRESOURCEW(1), 0x0409, "error 1815"},
        {W("0x409"), W("Custom"), W("Empty"), 0, ""},
        {W("0x409"), W("CUSTO"), W("EMPTY"), 0, "error 1813"},
        {W("0x409"), MAKEINTRESOURCEW(kData), W("picture"), 0, std::string(1000, 'p')},
        {W("0x409"), nullptr, nullptr, 0, ""},
    };
    for (const auto& [lcid, type, name, language, expected] : rows) {
        const support::ScopedVariable user(W("KT_LCID"), lcid);
        EXPECT_EQ(Find(type, name, language), expected);
    }
}

// Looks every resource up in an image that is not what it should be, in a block of exactly its size, so that the
// sanitizer sees each byte read too far.
void WalkWholly(const std::string& image) {
    const std::vector<char> exact(image.begin(), image.end());
    platform::RegisterResources(kModule, exact.empty() ? "" : exact.data(), exact.size());
    for (const WORD language : {WORD{0}, WORD{0x0409}}) {
        for (const WCHAR* const type : {RT_STRING, MAKEINTRESOURCEW(kData), W("CUSTOM")}) {
            for (const WCHAR* const name : {MAKEINTRESOURCEW(7), W("PICTURE"), W("EMPTY")}) {
                const HRSRC found = FindResourceExW(kModule, type, name, language);
                if (!found) continue;
                const auto* const data = static_cast<const char*>(LoadResource(kModule, found));
                const DWORD size = SizeofResource(kModule, found);
                ASSERT_GE(data, exact.data());
                ASSERT_LE(data + size, exact.data() + exact.size());
            }
        }
    }
}

TEST_F(Resources, HoldDialogsThatAreWhole) {
    support::Template source = support::Plain(DS_SETFONT, 20, 10, 2);
    source.Word(0).Text(W("#32770")).Text(W("t")).Word(9).Text(W("Sans"));
    for (int i = 0; i < 2; ++i) {
        source.Align().Double(WS_CHILD).Double(0).Double(0).Double(0).Word(7).Word(0xFFFF).Word(0x82).Text(W("a"));
        source.Word(4).Word(9);
    }
    const std::string whole = source.Bytes();
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const std::string image =
            MakeEntry(Number(0), Number(0), 0, "") + MakeEntry(Number(5), Number(7), 0x0409, whole.substr(0, size));
        const std::vector<char> exact(image.begin(), image.end());
        ASSERT_TRUE(platform::RegisterResources(kModule, exact.data(), exact.size()));
        const HWND dialog = CreateDialogParamW(kModule, MAKEINTRESOURCEW(7), nullptr, nullptr, 0);
        EXPECT_EQ(dialog != nullptr, size == whole.size()) << size;
        EXPECT_TRUE(dialog ? DestroyWindow(dialog) : GetLastError() == 13) << size;
    }
}

TEST_F(Resources, TruncatedAtEveryLengthAndWithEachBitOfTheHeadersTurned) {
    const std::string image = MakeImage();
    for (std::size_t size = 0; size <= image.size(); ++size) WalkWholly(image.substr(0, size));
    for (std::size_t at = 0; at < image.size(); ++at) {
        if (image[at] == 'p') continue;
        for (int bit = 0; bit < 8; ++bit) {
            std::string turned = image;
            turned[at] = static_cast<char>(turned[at] ^ (1 << bit));
            WalkWholly(turned);
        }
    }
}

}  // namespace
