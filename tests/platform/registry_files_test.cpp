// The native registry's files: missing, damaged, locked, not to be written, somebody else's.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "platform/linux/registry_file.h"
#include "platform/scoped.h"
#include "support/test_registry.h"

namespace {

namespace fs = std::filesystem;
using platform::ScopedKey;
using support::Status;

LSTATUS Write(DWORD number) {
    ScopedKey key;
    const LSTATUS result = RegCreateKeyW(HKEY_CURRENT_USER, u"Software\\Test", key.Out());
    if (result != 0) return result;
    return RegSetValueExW(key.Get(), u"v", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
}

LSTATUS Read(DWORD* number = nullptr) {
    ScopedKey key;
    const LSTATUS result = RegOpenKeyExW(HKEY_CURRENT_USER, u"Software\\Test", 0, KEY_READ, key.Out());
    if (result != 0) return result;
    DWORD value = 0, bytes = sizeof value;
    const LSTATUS got = RegQueryValueExW(key.Get(), u"v", nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &bytes);
    if (number) *number = value;
    return got;
}

class RegistryFiles : public testing::Test {
  protected:
    [[nodiscard]] fs::path File() const { return registry_.Folder() / "current_user.db"; }
    void PutFile(const std::string& bytes) const {
        fs::create_directories(registry_.Folder());
        std::ofstream(File(), std::ios::binary) << bytes;
    }
    void Sql(const char* text) const {
        sqlite3* database = nullptr;
        ASSERT_EQ(sqlite3_open(File().c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database, text, nullptr, nullptr, nullptr), SQLITE_OK) << text;
        sqlite3_close(database);
    }

    support::TestRegistry registry_;
};

TEST_F(RegistryFiles, ReadingMakesNone) {
    EXPECT_EQ(Read(), Status(ERROR_FILE_NOT_FOUND));
    WCHAR name[9];
    DWORD length = 9;
    EXPECT_EQ(RegEnumKeyExW(HKEY_CURRENT_USER, 0, name, &length, nullptr, nullptr, nullptr, nullptr),
              Status(ERROR_NO_MORE_ITEMS));
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, u"Software"), Status(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(RegDeleteValueW(HKEY_CURRENT_USER, u"v"), Status(ERROR_FILE_NOT_FOUND));
    EXPECT_FALSE(fs::exists(registry_.Folder()));
    EXPECT_EQ(Write(1), 0);
    EXPECT_TRUE(fs::exists(File()));
    EXPECT_FALSE(fs::exists(registry_.Folder() / "local_machine.db"));
}

TEST_F(RegistryFiles, LieWhereTheEnvironmentSays) {
    const support::ScopedVariable none(u"KT_REGISTRY", nullptr);
    const WString folder = platform::Wide(registry_.Folder().string());
    {
        const support::ScopedVariable config(u"XDG_CONFIG_HOME", folder.c_str());
        EXPECT_EQ(Write(1), 0);
        EXPECT_TRUE(fs::exists(registry_.Folder() / "clipfio/current_user.db"));
    }
    for (const WCHAR* config : {static_cast<const WCHAR*>(nullptr), u"not/absolute"}) {
        const support::ScopedVariable no_config(u"XDG_CONFIG_HOME", config);
        const support::ScopedVariable home(u"HOME", folder.c_str());
        EXPECT_EQ(Write(2), 0);
    }
    EXPECT_TRUE(fs::exists(registry_.Folder() / ".config/clipfio/current_user.db"));
    {
        const support::ScopedVariable no_config(u"XDG_CONFIG_HOME", nullptr);
        const support::ScopedVariable no_home(u"HOME", nullptr);
        EXPECT_EQ(Write(3), Status(ERROR_CANTOPEN));
    }
}

TEST_F(RegistryFiles, KeepToTheLimitsOfNamesAndRights) {
    ScopedKey key, none;
    EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, WString(256, u'n').c_str(), key.Out()), Status(ERROR_INVALID_PARAMETER));
    WString deep = u"d";
    for (int i = 0; i < 512; ++i) deep += u"\\d";
    EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, deep.c_str(), key.Out()), Status(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(RegSetValueExW(HKEY_CURRENT_USER, WString(16384, u'n').c_str(), 0, REG_NONE, nullptr, 0),
              Status(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(RegSetValueExW(HKEY_CURRENT_USER, u"v", 0, REG_NONE, nullptr, 1), Status(ERROR_NOACCESS));
    ASSERT_EQ(Write(1), 0);
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"Software", 0, KEY_READ, key.Out()), 0);
    EXPECT_EQ(RegCreateKeyW(key.Get(), u"new", none.Out()), Status(ERROR_ACCESS_DENIED));
}

TEST_F(RegistryFiles, DamagedAreToldAndLeftAlone) {
    ASSERT_EQ(Write(1), 0);
    Sql("PRAGMA wal_checkpoint(TRUNCATE)");
    std::ifstream in(File(), std::ios::binary);
    const std::string whole((std::istreambuf_iterator<char>(in)), {});
    fs::remove_all(registry_.Folder());
    EXPECT_EQ(Read(), Status(ERROR_FILE_NOT_FOUND)) << "gone";
    ASSERT_GT(whole.size(), 8192u);
    std::string no_pages = whole;
    std::fill(no_pages.begin() + 4096, no_pages.end(), '\xAA');
    // No database, the first page alone, a part of its header, and other pages overwritten.
    for (const std::string& bytes : {"This is a letter to my aunt. " + std::string(5000, '.'), whole.substr(0, 4096),
                                     whole.substr(0, 60), no_pages}) {
        SCOPED_TRACE(bytes.size());
        fs::remove_all(registry_.Folder());
        PutFile(bytes);
        EXPECT_EQ(Read(), Status(ERROR_REGISTRY_CORRUPT));
        EXPECT_EQ(Write(2), Status(ERROR_REGISTRY_CORRUPT));
        std::ifstream after(File(), std::ios::binary);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(after), {}), bytes);
    }
    fs::remove_all(registry_.Folder());
    PutFile(whole);
    EXPECT_EQ(Read(), 0) << "whole again, and found without a new start";
    fs::remove_all(registry_.Folder());
    PutFile("");
    EXPECT_EQ(Write(3), 0) << "an empty file is a new one";
    // Another's.
    for (const char* sql : {"CREATE TABLE other(x)", "PRAGMA user_version=1", "PRAGMA application_id=77"}) {
        fs::remove_all(registry_.Folder());
        PutFile("");
        Sql(sql);
        EXPECT_EQ(Write(1), Status(ERROR_REGISTRY_CORRUPT)) << sql;
    }
}

TEST_F(RegistryFiles, ThatCannotBeMade) {
    fs::create_directories(registry_.Folder());
    fs::create_directory(File());
    EXPECT_EQ(Write(1), Status(ERROR_CANTOPEN)) << "a folder of that name";
    const support::ScopedVariable below(u"KT_REGISTRY", u"/dev/null/registry");
    EXPECT_NE(Write(1), 0);
    EXPECT_EQ(Read(), Status(ERROR_FILE_NOT_FOUND)) << "nothing is there";
}

TEST_F(RegistryFiles, LockedByAnotherGiveUpAfterAWhile) {
    ASSERT_EQ(Write(1), 0);
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(File().c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    platform::g_registry_patience = 20;
    const support::ScopedVariable again(u"KT_REGISTRY",  // opened anew, by another way to the same place
                                        platform::Wide((registry_.Folder() / ".").string()).c_str());
    EXPECT_EQ(Read(), 0);
    ScopedKey key;
    EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, u"Software\\Other", key.Out()), Status(ERROR_BUSY));
    EXPECT_EQ(Write(2), Status(ERROR_BUSY));
    sqlite3_close(other);
    EXPECT_EQ(Write(2), 0);
    platform::g_registry_patience = 3000;
}

TEST_F(RegistryFiles, ThatMayOnlyBeReadAreRead) {
    ASSERT_EQ(Write(7), 0);
    {
        const support::TestRegistry elsewhere;  // closes the file
        EXPECT_EQ(Write(1), 0);
    }
    chmod(File().c_str(), 0444);
    chmod(registry_.Folder().c_str(), 0555);
    const bool may_write_all_the_same = access(File().c_str(), W_OK) == 0;
    DWORD number = 0;
    EXPECT_EQ(Read(&number), 0);
    EXPECT_EQ(number, 7u);
    if (!may_write_all_the_same) {
        EXPECT_EQ(Write(8), Status(ERROR_ACCESS_DENIED));
        ScopedKey key;
        EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, u"Software\\Test", key.Out()), 0) << "it is there";
        EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, u"Software\\Test"), Status(ERROR_ACCESS_DENIED));
    }
    chmod(registry_.Folder().c_str(), 0755);
}

}  // namespace
