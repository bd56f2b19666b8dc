// The registry's keys and values, by one process and by several.
#include "platform/registry.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "platform/scoped.h"
#include "support/child_roles.h"
#include "support/fail_each.h"
#include "support/test_registry.h"

namespace {

using platform::ScopedKey;
using support::Status;

const BYTE* Bytes(const void* data) { return static_cast<const BYTE*>(data); }

class Registry : public testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, registry_.Root().c_str(), key_.Out()), 0); }

    LSTATUS Set(const WCHAR* name, DWORD type, const std::string& data, HKEY key = nullptr) {
        return RegSetValueExW(key ? key : key_.Get(), name, 0, type, Bytes(data.data()),
                              static_cast<DWORD>(data.size()));
    }
    struct Value {
        LSTATUS result;
        DWORD type;
        std::string data;
        bool operator==(const Value&) const = default;
    };
    Value Get(const WCHAR* name, HKEY key = nullptr) {
        Value value{0, 99, std::string(1000, 'x')};
        DWORD bytes = 1000;
        value.result = RegQueryValueExW(key ? key : key_.Get(), name, nullptr, &value.type,
                                        reinterpret_cast<BYTE*>(value.data.data()), &bytes);
        value.data.resize(value.result == ERROR_SUCCESS ? bytes : 0);
        return value;
    }
    static void Info(HKEY key, DWORD* keys, DWORD* longest_key, DWORD* values, DWORD* longest_name, DWORD* most_data) {
        EXPECT_EQ(RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, keys, longest_key, nullptr, values, longest_name,
                                   most_data, nullptr, nullptr),
                  0);
    }
    std::vector<std::string> Names(HKEY key) {
        std::vector<std::string> names;
        WCHAR name[256];
        DWORD length = 256;
        for (DWORD i = 0; RegEnumKeyExW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) == 0; ++i) {
            EXPECT_EQ(WStringView(name).size(), length);
            names.push_back(platform::Utf8(name));
            length = 256;
        }
        return names;
    }

    support::TestRegistry registry_;
    ScopedKey key_;
};

TEST_F(Registry, KeepsValuesOfEveryTypeUnderNamesWithoutCase) {
    const struct {
        const WCHAR *name, *asked;
        DWORD type;
        std::string data;
    } kRows[] = {
        {W("Number"), W("NUMBER"), REG_DWORD, std::string("\1\0\0\0", 4)},
        {W("\u00E4\u03B1\u0434"), W("\u00C4\u0391\u0414"), REG_SZ, std::string("t\0\0\0", 4)},
        {W("binary"), W("Binary"), REG_BINARY, std::string("\0\1\0", 3)},
        {W("a\\b"), W("A\\B"), REG_MULTI_SZ, std::string(7, '\0')},
        {nullptr, W(""), REG_NONE, ""},
        {W("i"), W("I"), 0x12345678, "of no known type"},
        {W("\u0131"), W("\u0131"), REG_BINARY, "the dotless i is another letter"},
        {W(" "), W(" "), REG_BINARY, "a blank"},
    };
    for (const auto& row : kRows) EXPECT_EQ(Set(row.name, row.type, row.data), 0);
    for (const auto& row : kRows) EXPECT_EQ(Get(row.asked), (Value{0, row.type, row.data})) << row.data;

    EXPECT_EQ(Set(W("NUMBER"), REG_SZ, "new"), 0);
    EXPECT_EQ(Get(W("Number")), (Value{0, REG_SZ, "new"}));
    EXPECT_EQ(RegDeleteValueW(key_.Get(), W("nUmber")), 0);
    EXPECT_EQ(RegDeleteValueW(key_.Get(), W("number")), Status(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(Get(W("Number")).result, Status(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(Set(W("large"), REG_BINARY, std::string(300'000, 'l')), 0);

    DWORD values = 0, name_length = 0, data_bytes = 0, keys = 9;
    Info(key_.Get(), &keys, nullptr, &values, &name_length, &data_bytes);
    EXPECT_EQ(keys, 0u);
    EXPECT_EQ(values, 8u);
    EXPECT_EQ(name_length, 6u);
    EXPECT_EQ(data_bytes, 300'000u);
}

TEST_F(Registry, MakesAndFindsKeysByPath) {
    ScopedKey made, opened;
    DWORD disposition = 0;
    const auto create = [&](const WCHAR* path) {
        return RegCreateKeyExW(key_.Get(), path, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                               made.Out(), &disposition);
    };
    EXPECT_EQ(create(W("Beta\\Gamma\\Delta")), 0);
    EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
    EXPECT_EQ(Set(W("deep"), REG_SZ, "x", made.Get()), 0);
    EXPECT_EQ(create(W("alpha")), 0);
    EXPECT_EQ(create(W("BETA\\gamma")), 0);
    EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
    EXPECT_EQ(RegOpenKeyExW(made.Get(), W("delta\\"), 0, KEY_READ, opened.Out()), 0) << "from a key on the way";
    EXPECT_EQ(Get(W("deep"), opened.Get()), (Value{0, REG_SZ, "x"}));

    EXPECT_EQ(RegCreateKeyW(key_.Get(), W("Ab\u00E4"), made.Out()), 0);
    EXPECT_EQ(Names(key_.Get()), (std::vector<std::string>{"Ab\u00E4", "alpha", "Beta"})) << "as first written";
    WCHAR name[3];
    DWORD length = 3;
    EXPECT_EQ(RegEnumKeyExW(key_.Get(), 0, name, &length, nullptr, nullptr, nullptr, nullptr), Status(ERROR_MORE_DATA));
    DWORD keys = 0, longest = 0;
    Info(key_.Get(), &keys, &longest, nullptr, nullptr, nullptr);
    EXPECT_EQ(keys, 3u);
    EXPECT_EQ(longest, 5u);

    const std::pair<const WCHAR*, bool> kPaths[] = {
        {W("Beta\\Gamma\\Nothing"), false}, {W("Nothing"), false}, {W(""), true}, {nullptr, true}, {W("Beta"), true}};
    for (const auto& [path, exists] : kPaths) {
        EXPECT_EQ(RegOpenKeyExW(key_.Get(), path, 0, KEY_READ, opened.Out()),
                  exists ? 0 : Status(ERROR_FILE_NOT_FOUND));
        EXPECT_EQ(static_cast<bool>(opened), exists);
    }
    EXPECT_EQ(RegCreateKeyW(key_.Get(), WString(255, W('n')).c_str(), made.Out()), 0);
    EXPECT_EQ(RegCreateKeyW(key_.Get(), W("two\\\\parts\\"), made.Out()), 0);
    EXPECT_EQ(RegCreateKeyW(key_.Get(), W("\\leading"), made.Out()), Status(ERROR_BAD_PATHNAME));
    EXPECT_EQ(RegOpenKeyExW(key_.Get(), W("TWO\\Parts"), 0, KEY_READ, opened.Out()), 0);
}

TEST_F(Registry, DeletesOnlyKeysWithNothingBelow) {
    ScopedKey upper, lower;
    ASSERT_EQ(RegCreateKeyW(key_.Get(), W("upper"), upper.Out()), 0);
    ASSERT_EQ(RegCreateKeyW(upper.Get(), W("lower"), lower.Out()), 0);
    ASSERT_EQ(Set(W("v"), REG_SZ, "old", lower.Get()), 0);
    EXPECT_EQ(RegDeleteKeyW(key_.Get(), W("upper")), Status(ERROR_ACCESS_DENIED));
    EXPECT_EQ(RegDeleteKeyW(key_.Get(), W("UPPER\\Lower")), 0);
    EXPECT_EQ(RegDeleteKeyW(key_.Get(), W("upper\\lower")), Status(ERROR_FILE_NOT_FOUND));

    // The handle of a key that has gone is of no use, also when a new key has taken its name.
    ScopedKey again;
    ASSERT_EQ(RegCreateKeyW(upper.Get(), W("lower"), again.Out()), 0);
    EXPECT_EQ(Get(W("v"), again.Get()).result, Status(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(Set(W("v"), REG_SZ, "new", lower.Get()), Status(ERROR_KEY_DELETED));
    EXPECT_EQ(Get(W("v"), lower.Get()).result, Status(ERROR_KEY_DELETED));
    ScopedKey none;
    EXPECT_EQ(RegCreateKeyW(lower.Get(), W("x"), none.Out()), Status(ERROR_KEY_DELETED));
    EXPECT_EQ(RegOpenKeyExW(lower.Get(), W("x"), 0, KEY_READ, none.Out()), Status(ERROR_KEY_DELETED));
}

TEST_F(Registry, KnowsAKeyFromAnythingElse) {
    HKEY closed = nullptr;
    ASSERT_EQ(RegCreateKeyW(key_.Get(), W("x"), &closed), 0);
    EXPECT_EQ(RegCloseKey(closed), 0);
    const platform::ScopedHandle mutex(CreateMutexW(nullptr, FALSE, nullptr));
    for (const HKEY wild : {closed, static_cast<HKEY>(nullptr), static_cast<HKEY>(mutex.Get()),
                            reinterpret_cast<HKEY>(static_cast<uintptr_t>(0x12345678))}) {
        constexpr auto kInvalid = Status(ERROR_INVALID_HANDLE);
        HKEY out = key_.Get();
        DWORD length = 9;
        WCHAR name[9];
        EXPECT_EQ(RegOpenKeyExW(wild, W("x"), 0, KEY_READ, &out), kInvalid);
        EXPECT_EQ(RegCreateKeyW(wild, W("x"), &out), kInvalid);
        EXPECT_EQ(Get(W("x"), wild ? wild : closed).result, kInvalid);
        EXPECT_EQ(RegSetValueExW(wild, W("x"), 0, REG_SZ, nullptr, 0), kInvalid);
        EXPECT_EQ(RegDeleteKeyW(wild, W("x")), kInvalid);
        EXPECT_EQ(RegEnumKeyExW(wild, 0, name, &length, nullptr, nullptr, nullptr, nullptr), kInvalid);
        EXPECT_TRUE(wild == mutex.Get() || RegCloseKey(wild) == kInvalid);
    }
    for (const HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) EXPECT_EQ(RegCloseKey(hive), 0);
    EXPECT_NE(WaitForSingleObject(mutex.Get(), 0), WAIT_FAILED) << "nobody closed it";
    ReleaseMutex(mutex.Get());
}

// --- Several at once

CHILD_ROLE(registry_writer) {
    ScopedKey key;
    const WString root = platform::Wide(arguments[0]);
    for (int i = 0; i < 100; ++i) {
        const WString sub_key = root + W("\\") + platform::Wide(std::to_string(i % 10));
        if (RegCreateKeyW(HKEY_CURRENT_USER, sub_key.c_str(), key.Out()) != ERROR_SUCCESS) return 2;
        const WString name = platform::Wide(arguments[1] + "_" + std::to_string(i));
        if (RegSetValueExW(key.Get(), name.c_str(), 0, REG_DWORD, Bytes(&i), sizeof i) != ERROR_SUCCESS) return 3;
    }
    return 0;
}

TEST_F(Registry, LosesNothingBetweenProcesses) {
    const std::string root = platform::Utf8(registry_.Root());
    std::vector<std::unique_ptr<support::ChildProcess>> children;
    for (const char* name : {"a", "b", "c", "d"}) {
        children.push_back(
            std::make_unique<support::ChildProcess>("registry_writer", support::RoleArguments{root, name}));
    }
    for (const auto& child : children) EXPECT_EQ(child->Wait(), 0u);
    EXPECT_EQ(Names(key_.Get()).size(), 10u);
    for (int i = 0; i < 10; ++i) {
        ScopedKey key;
        DWORD values = 0;
        ASSERT_EQ(RegOpenKeyExW(key_.Get(), platform::Wide(std::to_string(i)).c_str(), 0, KEY_READ, key.Out()), 0);
        Info(key.Get(), nullptr, nullptr, &values, nullptr, nullptr);
        EXPECT_EQ(values, 40u);
    }
}

TEST_F(Registry, ServesThreadsThroughOneHandle) {
    std::vector<std::thread> threads;
    std::atomic<int> failures{0};
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            const WString name = platform::Wide("t" + std::to_string(t));
            for (int i = 0; i < 50; ++i) {
                const std::string text = std::to_string(t * 1000 + i);
                if (Set(name.c_str(), REG_BINARY, text) != 0 || Get(name.c_str()).data != text) ++failures;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failures, 0);
}

TEST_F(Registry, FailsCleanlyWhereMemoryOrACallFails) {
    const WString path = registry_.Root() + W("\\a\\b");
    const auto use_all = [&] {
        ScopedKey key;
        DWORD bytes = 0, index_length = 20;
        WCHAR name[20];
        return RegCreateKeyW(HKEY_CURRENT_USER, path.c_str(), key.Out()) == 0 &&
               RegSetValueExW(key.Get(), W("a value's name"), 0, REG_DWORD, Bytes("1234"), 4) == 0 &&
               RegQueryValueExW(key.Get(), W("a value's name"), nullptr, nullptr, nullptr, &bytes) == 0 &&
               RegEnumKeyExW(key_.Get(), 0, name, &index_length, nullptr, nullptr, nullptr, nullptr) == 0 &&
               RegDeleteValueW(key.Get(), W("a value's name")) == 0 && RegDeleteKeyW(key_.Get(), W("a\\b")) == 0 &&
               RegOpenKeyExW(key_.Get(), W("a"), 0, KEY_READ, key.Out()) == 0;
    };
    support::FailEach<FailingNew>(use_all, [](bool succeeded, bool hit) { EXPECT_TRUE(succeeded || hit); });
    support::FailEach<support::FailingCall>(use_all, [](bool succeeded, bool hit) { EXPECT_EQ(succeeded, !hit); });
}

}  // namespace
