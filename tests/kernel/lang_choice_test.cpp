// The user's choice of a language, in a registry of the test's own.
#include "kernel/lang_choice.h"

#include <gtest/gtest.h>

#include "platform/registry.h"
#include "platform/scoped.h"

namespace {

constexpr uint32_t kVersion = 0x0D020003;  // 13.2
constexpr WCHAR kApplication[] = W("clipfio language test");

class StoredLanguage : public testing::Test {
  protected:
    void SetUp() override { Clear(); }
    void TearDown() override { Clear(); }
    static void Clear() {
        for (const HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
            for (const WCHAR* const company : {W("Kestrel Creative Software"), W("Another Company")}) {
                const WString application = WString(W("Software\\")) + company + W("\\") + kApplication;
                for (const WCHAR* const path : {W("\\13.2\\Lang"), W("\\13.2"), W("\\Lang"), W("")}) {
                    RegDeleteKeyW(hive, (application + path).c_str());
                }
            }
        }
    }
    static void Put(HKEY hive, const WCHAR* path, DWORD type, const void* data, DWORD bytes) {
        platform::ScopedKey key;
        const WString whole = WString(W("Software\\Kestrel Creative Software\\")) + kApplication + path;
        ASSERT_EQ(RegCreateKeyExW(hive, whole.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, key.Out(), nullptr), 0);
        ASSERT_EQ(RegSetValueExW(key.Get(), W("ULangID"), 0, type, static_cast<const BYTE*>(data), bytes), 0);
    }
    static LCID Load(uint32_t version, int32_t ignore) {
        LCID lcid = 77;
        const int32_t result = KtLang_LoadUserLCIDMetric(kApplication, version, &lcid, ignore);
        EXPECT_EQ(result, lcid != 0);
        return lcid;
    }
};

TEST_F(StoredLanguage, BelongsToItsVersion) {
    EXPECT_EQ(Load(kVersion, 0), 0u);
    EXPECT_EQ(KtLang_SaveUserLCIDMetric(kApplication, kVersion, 0x12340411, 0), 1);
    EXPECT_EQ(Load(kVersion, 0), 0x0411u);
    EXPECT_EQ(Load(kVersion & 0xFFFF0000, 0), 0x0411u);
    EXPECT_EQ(Load(0x0D010000, 0), 0u);
    EXPECT_EQ(Load(kVersion, 1), 0u);
    EXPECT_EQ(KtLang_SaveUserLCIDMetric(kApplication, kVersion, 0x0407, 1), 1);
    for (const uint32_t without_major : {0u, 0x00FF0000u}) EXPECT_EQ(Load(without_major, 0), 0x0407u);
    EXPECT_EQ(Load(kVersion, 0), 0x0411u);

    LCID lcid = 0;
    EXPECT_EQ(KtLang_LoadUserLCIDMetricAppReg(kApplication, kVersion, &lcid, W("Another Company")), 0);
    EXPECT_EQ(KtLang_SaveUserLCIDMetricAppReg(kApplication, kVersion, 0x0415, W("Another Company")), 1);
    EXPECT_EQ(KtLang_LoadUserLCIDMetricAppReg(kApplication, kVersion, &lcid, W("Another Company")), 1);
    EXPECT_EQ(lcid, 0x0415u);
    EXPECT_EQ(Load(kVersion, 0), 0x0411u);
}

TEST_F(StoredLanguage, OfTheMachineServesAUserWithoutOne) {
    const DWORD machine = 0x0410;
    Put(HKEY_LOCAL_MACHINE, W("\\13.2\\Lang"), REG_DWORD, &machine, 4);
    EXPECT_EQ(Load(kVersion, 0), 0x0410u);
    EXPECT_EQ(KtLang_SaveUserLCIDMetric(kApplication, kVersion, 0x0413, 0), 1);
    EXPECT_EQ(Load(kVersion, 0), 0x0413u);
    // A user's key with a value that is none counts all the same.
    Put(HKEY_CURRENT_USER, W("\\13.2\\Lang"), REG_BINARY, "123456", 6);
    EXPECT_EQ(Load(kVersion, 0), 0u);
    Put(HKEY_CURRENT_USER, W("\\13.2\\Lang"), REG_BINARY, "12", 2);
    EXPECT_EQ(Load(kVersion, 0), 0u);
}

TEST_F(StoredLanguage, NeedsNames) {
    LCID lcid = 9;
    EXPECT_EQ(KtLang_LoadUserLCIDMetric(nullptr, kVersion, &lcid, 0), 0);
    EXPECT_EQ(lcid, 0u);
    EXPECT_EQ(KtLang_LoadUserLCIDMetric(kApplication, kVersion, nullptr, 0), 0);
    EXPECT_EQ(KtLang_LoadUserLCIDMetricAppReg(kApplication, kVersion, &lcid, nullptr), 0);
    EXPECT_EQ(KtLang_SaveUserLCIDMetric(W(""), kVersion, 0x0411, 0), 0);
    EXPECT_EQ(KtLang_SaveUserLCIDMetricAppReg(kApplication, kVersion, 0x0411, nullptr), 0);
    // A name that is too long for a key.
    const WString longest(300, W('n'));
    EXPECT_EQ(KtLang_SaveUserLCIDMetric(longest.c_str(), kVersion, 0x0411, 0), 0);
    EXPECT_EQ(KtLang_LoadUserLCIDMetric(longest.c_str(), kVersion, &lcid, 0), 0);
}

}  // namespace
