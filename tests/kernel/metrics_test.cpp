// The metrics store through the module's exports: handles and paths, values of every type, deletion.
#include "kernel/metrics.h"

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

#include "platform/scoped.h"
#include "support/test_registry.h"

namespace {

using platform::ScopedKey;
using platform::Utf8;

constexpr auto kTooSmall = static_cast<HRESULT>(0x8004E03Cu);
constexpr auto kOtherType = static_cast<HRESULT>(0x8004E00Au);
const auto kDefault = reinterpret_cast<HKTMETRIC>(UINTPTR_MAX);

struct MetricTraits {
    using Type = HKTMETRIC;
    static Type Empty() noexcept { return nullptr; }
    static bool IsSet(Type handle) noexcept { return handle != nullptr; }
    static void Free(Type handle) noexcept { KtMetric_Close(handle); }
};
using ScopedMetric = platform::Scoped<MetricTraits>;

bool KeyExists(HKEY hive, const WString& path) {
    ScopedKey key;
    return RegOpenKeyExW(hive, path.c_str(), 0, KEY_READ, key.Out()) == ERROR_SUCCESS;
}

platform::ComPtr<IStream> StreamOf(const std::string& content) {
    platform::ComPtr<IStream> stream;
    EXPECT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, stream.Out()), S_OK);
    EXPECT_EQ(stream->Write(content.data(), static_cast<ULONG>(content.size()), nullptr), S_OK);
    return stream;
}

std::string ContentOf(IStream* stream) {
    std::string content(5000, '\0');
    ULONG read = 0;
    stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
    stream->Read(content.data(), 5000, &read);
    return content.substr(0, read);
}

// A company of this test's own, so that the real registry keeps what it has.
class Metrics : public testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(Open(metrics_.Out()), S_OK); }

    HRESULT Open(HKTMETRIC* out, uint32_t version = 0x0E020000, const WCHAR* sub_key = nullptr) const {
        return KtMetric_OpenRegHiveAndVersion(out, W("Tester"), version, company_.c_str(), sub_key);
    }
    [[nodiscard]] WString Path(const WCHAR* rest) const { return root_ + W("\\Tester") + rest; }
    [[nodiscard]] HKTMETRIC Handle() const { return metrics_.Get(); }
    // The key behind the handle, by its path.
    [[nodiscard]] ScopedKey Key() const {
        ScopedKey key;
        EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, Path(W("\\14.2\\Metrics")).c_str(), key.Out()), 0);
        return key;
    }
    void Put(const WCHAR* name, DWORD type, const void* data, size_t bytes) const {
        EXPECT_EQ(RegSetValueExW(Key().Get(), name, 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(bytes)),
                  0);
    }

    support::TestRegistry registry_;
    const WString root_ = registry_.Root();
    const WString company_ = root_.substr(WStringView(W("Software\\")).size());
    ScopedMetric metrics_;
};

TEST_F(Metrics, LieWhereCompanyApplicationAndVersionSay) {
    const std::tuple<uint32_t, const WCHAR*, const WCHAR*> kRows[] = {
        {0x0E02FFFF, nullptr, W("\\14.2\\Metrics")},
        {0xFFFF0000, W(""), W("\\255.255\\Metrics")},
        {0x01000000, W("Audio"), W("\\1.0\\Metrics\\Audio")},
        {0x00030000, nullptr, W("\\Metrics")},
        {0, W("a\\b"), W("\\Metrics\\a\\b")},
    };
    for (const auto& [version, sub_key, path] : kRows) {
        ScopedMetric metrics;
        EXPECT_EQ(Open(metrics.Out(), version, sub_key), S_OK);
        EXPECT_EQ(KtSetMetric(metrics.Get(), 1, version + 1), S_OK);
        ScopedKey key;
        ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, Path(path).c_str(), 0, KEY_READ, key.Out()), 0) << Utf8(path);
        DWORD value = 0, bytes = sizeof value;
        EXPECT_EQ(RegQueryValueExW(key.Get(), W("1"), nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &bytes), 0);
        EXPECT_EQ(value, version + 1);
    }
}

TEST_F(Metrics, OpenSubKeysBesideEachOther) {
    ScopedMetric audio, video, outside, below;
    ASSERT_EQ(Open(audio.Out(), 0, W("Audio\\Deep")), S_OK);
    EXPECT_EQ(KtMetric_OpenSubKey(video.Out(), audio.Get(), W("Video")), S_OK);
    ASSERT_EQ(KtMetric_OpenAppVersion(outside.Out(), root_.c_str(), W("Plain")), S_OK);
    EXPECT_EQ(KtMetric_OpenSubKey(below.Out(), outside.Get(), nullptr), S_OK);
    for (const WCHAR* path : {W("\\Tester\\Metrics\\Video"), W("\\Plain"), W("\\Plain\\Metrics")}) {
        EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, root_ + path));
    }
}

TEST_F(Metrics, OpeningRefusesWhatNamesNothing) {
    const auto refused = [](HRESULT expected, auto open) {
        auto handle = kDefault;
        EXPECT_EQ(open(&handle), expected);
        EXPECT_EQ(handle, nullptr);
    };
    refused(E_FAIL, [](HKTMETRIC* out) { return KtMetric_OpenSubKey(out, nullptr, W("x")); });
    refused(E_FAIL, [](HKTMETRIC* out) { return KtMetric_OpenSubKey(out, kDefault, W("x")); });
    for (const WCHAR* nothing : {static_cast<const WCHAR*>(nullptr), W("")}) {
        refused(E_INVALIDARG, [=](HKTMETRIC* out) { return KtMetric_Open(out, nothing, 0, W("x")); });
        refused(E_INVALIDARG, [=](HKTMETRIC* out) { return KtMetric_OpenAppVersion(out, nothing, W("x")); });
        EXPECT_EQ(KtMetric_DeleteAll(nothing, 0), E_INVALIDARG);
        EXPECT_EQ(KtMetric_DeleteUserMetrics(nothing, 0), E_INVALIDARG);
        EXPECT_EQ(KtMetric_DeleteKey(nothing, 0, W("x")), E_INVALIDARG);
    }
    EXPECT_EQ(KtMetric_DeleteAllHiveAndVersion(W("x"), 0, W("")), E_INVALIDARG);
    EXPECT_EQ(KtMetric_Open(nullptr, W("x"), 0, nullptr), E_INVALIDARG);
}

// Without a handle, and with one whose key could not be opened.
TEST_F(Metrics, WithoutAKeyThereIsNoStore) {
    ScopedMetric broken;
    EXPECT_EQ(KtMetric_OpenAppVersion(broken.Out(), W("\\leads nowhere"), nullptr),
              HRESULT_FROM_WIN32(ERROR_BAD_PATHNAME));
    ASSERT_NE(broken.Get(), nullptr);
    const auto stream = StreamOf("x");
    for (const HKTMETRIC none : {static_cast<HKTMETRIC>(nullptr), kDefault, broken.Get()}) {
        SCOPED_TRACE(none);
        uint32_t got = 9;
        char data[4] = {1, 2, 3, 4};
        WCHAR text[8] = W("old");
        EXPECT_EQ(KtGetMetric(none, 1), 0u);
        EXPECT_EQ(KtGetMetricEx(none, 1, 0, 10, 20), none == broken.Get() ? 10u : 20u) << "without a handle no limits";
        EXPECT_EQ(KtGetMetricBool(none, 1, 5), 1);
        EXPECT_EQ(KtGetMetricUsingName(none, W("x"), 7), 7u);
        EXPECT_EQ(KtSetMetric(none, 1, 1), E_FAIL);
        EXPECT_EQ(KtSetMetricUsingName(none, W("x"), 2), E_FAIL);
        EXPECT_EQ(KtSetMetricString(none, 1, W("x")), E_FAIL);
        EXPECT_EQ(KtSetMetricMultiString(none, 1, W("x\0"), 3), E_FAIL);
        EXPECT_EQ(KtSetMetricBinary(none, 1, data, 4), E_FAIL);
        EXPECT_EQ(KtGetMetricAny(none, 1, REG_BINARY, data, 4, &got), E_UNEXPECTED);
        EXPECT_EQ(got, 0u);
        EXPECT_EQ(KtGetMetricBinaryEx(none, 1, data, 4, &got), kOtherType);
        EXPECT_EQ(data[3], 0);
        EXPECT_EQ(KtGetMetricStringEx(none, 1, text, 8, nullptr, 0), 0);
        EXPECT_EQ(text[0], 0);
        EXPECT_EQ(KtGetMetricStringEx(none, 1, text, 8, W("none"), 1), 4);
        EXPECT_EQ(KtSetMetricStream(none, 1, stream.Get()), E_FAIL);
        EXPECT_EQ(KtGetMetricStream(none, 1, stream.Get()), E_UNEXPECTED);
        EXPECT_EQ(KtDoesMetricExist(none, 1, REG_DWORD), 1);
        EXPECT_EQ(KtDeleteMetric(none, 1, REG_DWORD), S_FALSE);
        EXPECT_EQ(KtDeleteMetricUsingName(none, W("x"), REG_DWORD), S_FALSE);
    }
    for (const HKTMETRIC none : {static_cast<HKTMETRIC>(nullptr), kDefault}) {
        EXPECT_EQ(KtMetric_Close(none), S_OK);
        EXPECT_EQ(KtMetric_CloseAndDeleteKey(none), E_FAIL);
    }
}

TEST_F(Metrics, NamesAreNumbersWithALetter) {
    const std::tuple<int32_t, uint32_t, const char*, const WCHAR*> kRows[] = {
        {5, REG_DWORD, "D5", W("5")},     {-12, REG_BINARY, "B12", W("B12")},
        {-5, REG_DWORD, "D5", W("5")},    {INT32_MAX, 99, "Z2147483647", W("Z2147483647")},
        {0, REG_SZ, "S0", W("S0")},       {INT32_MIN, REG_SZ, "S2147483648", W("S2147483648")},
        {7, REG_MULTI_SZ, "Z7", W("Z7")},
    };
    for (const auto& [metric, type, called, stored] : kRows) {
        WCHAR name[12];
        EXPECT_EQ(KtMetricGetName(metric, type, name), static_cast<int32_t>(std::strlen(called)));
        EXPECT_EQ(Utf8(name), called);
        Put(stored, type, "\0\0", 2);
        EXPECT_EQ(KtDoesMetricExist(Handle(), metric, type), 0) << called;
        EXPECT_EQ(KtDeleteMetric(Handle(), metric, type), S_OK);
        EXPECT_EQ(KtDoesMetricExist(Handle(), metric, type), 1);
        EXPECT_EQ(KtDeleteMetric(Handle(), metric, type), E_FAIL);
    }
    EXPECT_EQ(KtMetricGetName(1, REG_SZ, nullptr), 0);
}

TEST_F(Metrics, NumbersAreLimited) {
    ASSERT_EQ(KtSetMetric(Handle(), -5, 20), S_OK);
    const std::tuple<int32_t, int32_t, int32_t, uint32_t, uint32_t> kRows[] = {
        {0, 10, 3, 10, 3}, {0, 0, 77, 20, 77},      {30, 40, 3, 30, 30}, {-10, 10, -20, 10, 0xFFFFFFF6},
        {7, 7, 1, 20, 1},  {0, INT32_MAX, 5, 20, 5}};
    for (const auto& [lowest, highest, fallback, stored, absent] : kRows) {
        EXPECT_EQ(KtGetMetricEx(Handle(), 5, lowest, highest, fallback), stored);
        EXPECT_EQ(KtGetMetricEx(Handle(), 6, lowest, highest, fallback), absent);
    }
    KtSetMetric(Handle(), 8, 0xFFFFFFFF);
    EXPECT_EQ(KtGetMetric(Handle(), 8), 0xFFFFFFFFu);
    EXPECT_EQ(KtGetMetricEx(Handle(), 8, 0, 10, 5), 0u) << "as a signed number";
    EXPECT_EQ(KtGetMetricBool(Handle(), 8, 0), 1);
    EXPECT_EQ(KtGetMetricBool(Handle(), 9, 1), 1);
    EXPECT_EQ(KtGetMetricBool(Handle(), 9, 0), 0);

    // What is no number of four bytes is no number.
    for (const auto& [type, bytes] : {std::pair<DWORD, size_t>{REG_SZ, 4}, {REG_DWORD, 2}, {REG_DWORD, 8}}) {
        Put(W("5"), type, "\1\0\0\0\0\0\0\0", bytes);
        EXPECT_EQ(KtGetMetric(Handle(), 5), 0u) << type << ", " << bytes;
    }
    EXPECT_EQ(KtSetMetricUsingName(Handle(), W("Some name"), 44), S_OK);
    EXPECT_EQ(KtGetMetricUsingName(Handle(), W("SOME NAME"), 1), 44u);
    EXPECT_EQ(KtGetMetricUsingName(Handle(), W("another"), 1), 1u);
    EXPECT_EQ(KtDeleteMetricUsingName(Handle(), W("Some name"), REG_DWORD), S_OK);
    EXPECT_EQ(KtDeleteMetricUsingName(Handle(), W("Some name"), REG_DWORD), E_FAIL);
}

TEST_F(Metrics, AnyTypeIntoABuffer) {
    const char bytes[] = "\1\2\3\4\5";
    Put(W("B1"), REG_BINARY, bytes, 5);
    Put(W("B2"), REG_SZ, bytes, 5);
    KtSetMetricString(Handle(), 1, W("abc"));  // 8 bytes
    Put(W("S2"), REG_SZ, W("abcd"), 6);        // without its terminator
    Put(W("S3"), REG_SZ, "a\0b\0cd", 5);       // and without half a character
    KtSetMetric(Handle(), 1, 7);
    // The last of a text only.
    const std::tuple<int32_t, uint32_t, uint32_t, HRESULT, uint32_t, const char*> kRows[] = {
        {1, REG_SZ, 16, S_OK, 8, "abc"},    {1, REG_BINARY, 16, S_OK, 5, nullptr},
        {1, REG_SZ, 8, S_OK, 8, "abc"},     {1, REG_BINARY, 5, S_OK, 5, nullptr},
        {1, REG_SZ, 6, kTooSmall, 8, "ab"}, {1, REG_BINARY, 4, kTooSmall, 5, nullptr},
        {1, REG_SZ, 5, kTooSmall, 8, "a"},  {2, REG_BINARY, 16, kOtherType, 0, nullptr},
        {1, REG_SZ, 2, kTooSmall, 8, ""},   {9, REG_BINARY, 16, S_OK, 0, nullptr},
        {2, REG_SZ, 16, S_OK, 6, "abc"},    {1, REG_DWORD, 4, S_OK, 4, nullptr},
        {2, REG_SZ, 7, kTooSmall, 8, "ab"}, {1, REG_SZ, 1, kTooSmall, 8, nullptr},
        {3, REG_SZ, 16, S_OK, 5, "ab"},     {2, REG_SZ, 6, kTooSmall, 8, "ab"},
        {9, REG_SZ, 16, S_OK, 0, ""},
    };
    for (const auto& [metric, type, size, result, bytes_told, expected] : kRows) {
        SCOPED_TRACE(std::to_string(type) + ", " + std::to_string(metric) + ", " + std::to_string(size));
        WCHAR data[10];
        std::memset(data, '#', sizeof data);
        uint32_t got = 99;
        EXPECT_EQ(KtGetMetricAny(Handle(), metric, type, data, size, &got), result);
        EXPECT_EQ(got, bytes_told);
        EXPECT_EQ(reinterpret_cast<const char*>(data)[size], '#');
        EXPECT_TRUE(!expected || Utf8(data) == expected) << Utf8(data);
        const bool is_whole = type == REG_BINARY && got == 5 && result == S_OK;
        EXPECT_TRUE(!is_whole || std::memcmp(data, bytes, 5) == 0);
    }
    uint32_t got = 0;
    EXPECT_EQ(KtGetMetricAny(Handle(), 1, REG_SZ, nullptr, 0, &got), S_OK) << "its size only";
    EXPECT_EQ(got, 8u);
    WCHAR text[8];
    EXPECT_EQ(KtGetMetricAny(Handle(), 1, REG_SZ, text, sizeof text, nullptr), S_OK);
}

TEST_F(Metrics, BinaryData) {
    ASSERT_EQ(KtSetMetricBinary(Handle(), 1, "12345", 5), S_OK);
    ASSERT_EQ(KtSetMetricBinary(Handle(), 2, nullptr, 0), S_OK);
    Put(W("B3"), REG_SZ, "1234", 4);
    EXPECT_EQ(KtSetMetricBinary(Handle(), 1, nullptr, 5), E_FAIL);
    const std::tuple<int32_t, uint32_t, HRESULT, uint32_t, std::string> kRows[] = {
        {1, 8, S_OK, 5, std::string("12345\0\0\0", 8)}, {1, 5, S_OK, 5, "12345"},
        {1, 4, kTooSmall, 5, std::string(4, '\0')},     {2, 3, S_OK, 0, std::string(3, '\0')},
        {3, 8, S_FALSE, 0, std::string(8, '\0')},       {4, 8, S_FALSE, 0, std::string(8, '\0')},
    };
    for (const auto& [metric, size, result, stored, expected] : kRows) {
        std::string data(size + 1, '#');
        uint32_t got = 99;
        EXPECT_EQ(KtGetMetricBinaryEx(Handle(), metric, data.data(), size, &got), result) << metric;
        EXPECT_EQ(got, stored);
        EXPECT_EQ(data, expected + '#');
        data.assign(size + 1, '#');
        EXPECT_EQ(KtGetMetricBinary(Handle(), metric, data.data(), size), result == S_OK ? stored : 0);
        EXPECT_EQ(data, expected + '#');
    }
    uint32_t got = 0;
    EXPECT_EQ(KtGetMetricBinaryEx(Handle(), 1, nullptr, 0, &got), S_OK);
    EXPECT_EQ(got, 5u);
    EXPECT_EQ(KtGetMetricBinaryEx(Handle(), 1, nullptr, 0, nullptr), E_INVALIDARG);
}

TEST_F(Metrics, Texts) {
    const WString two(W("a\0b\0\0"), 5);
    // The values from 1 on, as they stand, in both kinds.
    const WStringView kStored[] = {WStringView(W("abc"), 4), WStringView(W(""), 1), W("abc"), W(""), two};
    for (size_t i = 0; i < std::size(kStored); ++i) {
        WString name = W("S") + platform::Wide(std::to_string(i + 1));
        Put(name.c_str(), REG_SZ, kStored[i].data(), kStored[i].size() * sizeof(WCHAR));
        name[0] = W('Z');
        Put(name.c_str(), REG_MULTI_SZ, kStored[i].data(), kStored[i].size() * sizeof(WCHAR));
    }
    Put(W("S7"), REG_BINARY, "a\0b\0", 4);
    Put(W("Z7"), REG_SZ, "a\0b\0", 4);
    const std::tuple<int32_t, int32_t, const WCHAR*, int32_t, int32_t, WString> kRows[] = {
        {1, 10, W("none"), 0, 3, W("abc")},  {1, 4, W("none"), 0, 3, W("abc")},
        {1, 3, W("none"), 0, 2, W("no")},    {1, 3, nullptr, 0, 0, W("")},
        {2, 10, W("none"), 0, 4, W("none")}, {2, 10, W("none"), 1, 0, W("")},
        {2, 10, nullptr, 0, 0, W("")},       {3, 10, W("none"), 0, 3, W("abc")},
        {3, 3, W("none"), 0, 2, W("no")},    {4, 10, W("none"), 1, 0, W("")},
        {4, 10, W("none"), 0, 4, W("none")}, {5, 10, W("none"), 0, 4, two.substr(0, 4)},
        {6, 10, W("none"), 1, 4, W("none")}, {6, 10, nullptr, 1, 0, W("")},
        {7, 10, W("none"), 1, 4, W("none")}, {1, 1, W("none"), 0, 0, W("")},
    };
    for (const auto& [metric, size, fallback, allow_empty, result, text] : kRows) {
        SCOPED_TRACE(std::to_string(metric) + ", " + std::to_string(size));
        for (const auto read : {KtGetMetricStringEx, KtGetMetricMultiStringEx}) {
            WString buffer(11, W('#'));
            EXPECT_EQ(read(Handle(), metric, buffer.data(), size, fallback, allow_empty), result);
            WString expected = text;
            expected.resize(static_cast<size_t>(size));
            EXPECT_EQ(buffer, expected + WString(11 - expected.size(), W('#')));
        }
    }
    EXPECT_EQ(KtGetMetricStringEx(Handle(), 1, nullptr, 10, W("x"), 0), 0);
    EXPECT_EQ(KtSetMetricString(Handle(), 1, nullptr), E_FAIL);
    EXPECT_EQ(KtSetMetricMultiString(Handle(), 1, nullptr, 2), E_FAIL);
    EXPECT_EQ(KtSetMetricMultiString(Handle(), 1, W("x"), 0x80000000), E_FAIL);

    // What is set lies there with its terminators.
    uint32_t got = 0;
    EXPECT_EQ(KtSetMetricString(Handle(), 8, W("")), S_OK);
    EXPECT_EQ(KtGetMetricAny(Handle(), 8, REG_SZ, nullptr, 0, &got), S_OK);
    EXPECT_EQ(got, 2u);
    EXPECT_EQ(KtSetMetricMultiString(Handle(), 8, two.c_str(), 5), S_OK);
    EXPECT_EQ(KtGetMetricAny(Handle(), 8, REG_MULTI_SZ, nullptr, 0, &got), S_OK);
    EXPECT_EQ(got, 10u);
}

TEST_F(Metrics, Streams) {
    const std::pair<size_t, HRESULT> kRows[] = {{2049, E_INVALIDARG}, {0, E_UNEXPECTED}, {1, S_OK}, {2048, S_OK}};
    for (const auto& [size, result] : kRows) {
        const auto from = StreamOf(std::string(size, 's'));
        EXPECT_EQ(KtSetMetricStream(Handle(), 1, from.Get()), result) << size;
        const auto to = StreamOf("");
        EXPECT_EQ(KtGetMetricStream(Handle(), 1, to.Get()), result == S_OK ? S_OK : E_UNEXPECTED);
        EXPECT_EQ(ContentOf(to.Get()), std::string(result == S_OK ? size : 0, 's'));
    }
    const auto other = StreamOf("something longer");
    ASSERT_EQ(KtSetMetricBinary(Handle(), 2, "short", 5), S_OK);
    EXPECT_EQ(KtGetMetricStream(Handle(), 2, other.Get()), S_OK);
    EXPECT_EQ(ContentOf(other.Get()), "shorthing longer") << "from the start on";
    EXPECT_EQ(KtSetMetricStream(Handle(), 1, nullptr), E_INVALIDARG);
    EXPECT_EQ(KtGetMetricStream(Handle(), 1, nullptr), E_INVALIDARG);
}

TEST_F(Metrics, DeletionTakesTheApplicationOrItsMetrics) {
    const auto make = [&](HKEY hive, const WCHAR* path) {
        ScopedKey key;
        return RegCreateKeyW(hive, Path(path).c_str(), key.Out()) == ERROR_SUCCESS;
    };
    const auto exists = [&](const WCHAR* path) { return KeyExists(HKEY_CURRENT_USER, Path(path)); };
    const bool has_machine = make(HKEY_LOCAL_MACHINE, W("\\14.2\\Metrics\\m"));
    const auto machine_has = [&](const WCHAR* path) {
        return has_machine && KeyExists(HKEY_LOCAL_MACHINE, Path(path));
    };
    for (const WCHAR* path :
         {W("\\14.2\\Metrics\\a\\b"), W("\\14.2\\Metrics\\c"), W("\\14.2\\Other"), W("\\15.0\\Metrics")}) {
        make(HKEY_CURRENT_USER, path);
    }
    const WCHAR* const company = company_.c_str();

    EXPECT_EQ(KtMetric_DeleteKeyHiveAndVersion(W("Tester"), 0x0E020000, company, W("a")), S_OK);
    EXPECT_FALSE(exists(W("\\14.2\\Metrics\\a")));
    EXPECT_TRUE(exists(W("\\14.2\\Metrics\\c")));
    EXPECT_EQ(KtMetric_DeleteKeyHiveAndVersion(W("Tester"), 0x0E020000, company, nullptr), S_OK);
    EXPECT_FALSE(exists(W("\\14.2\\Metrics")) || machine_has(W("\\14.2\\Metrics")));
    EXPECT_TRUE(exists(W("\\14.2\\Other")));
    EXPECT_EQ(KtMetric_DeleteAllHiveAndVersion(W("Tester"), 0x0E020000, company), S_OK);
    EXPECT_FALSE(exists(W("\\14.2")) || machine_has(W("\\14.2")));
    EXPECT_TRUE(exists(W("\\15.0\\Metrics")));
    EXPECT_EQ(KtMetric_DeleteAllHiveAndVersion(W("Tester"), 0x0E020000, company), S_OK) << "nothing is left to delete";
    EXPECT_EQ(KtMetric_DeleteAllHiveAndVersion(WString(300, W('n')).c_str(), 0, company), E_INVALIDARG);

    HKTMETRIC fifteen = nullptr;
    ASSERT_EQ(Open(&fifteen, 0x0F000000, W("x")), S_OK);
    EXPECT_EQ(KtMetric_CloseAndDeleteKey(fifteen), S_OK);
    EXPECT_FALSE(exists(W("\\15.0\\Metrics\\x")));
    EXPECT_TRUE(exists(W("\\15.0\\Metrics")));
}

TEST_F(Metrics, RegistryHelpers) {
    ScopedKey key;
    for (const WCHAR* path : {W("\\one"), W("\\three"), W("\\three\\x\\y")}) {
        ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, (root_ + W("\\Keys") + path).c_str(), key.Out()), 0);
    }
    const WString keys = root_ + W("\\Keys");
    uint32_t longest = 9;
    EXPECT_EQ(KtRegGetSubKeyCount(HKEY_CURRENT_USER, keys.c_str(), &longest), 2u);
    EXPECT_EQ(longest, 6u);
    EXPECT_EQ(KtRegGetSubKeyCount(HKEY_CURRENT_USER, keys.c_str(), nullptr), 2u);
    for (int i = 0; i < 2; ++i) EXPECT_EQ(KtRegDeleteKey(HKEY_CURRENT_USER, keys.c_str()), 1);  // not there is deleted
    EXPECT_EQ(KtRegGetSubKeyCount(HKEY_CURRENT_USER, keys.c_str(), &longest), 0u);
    EXPECT_EQ(longest, 0u);
    for (const WCHAR* none : {W(""), static_cast<const WCHAR*>(nullptr)}) {
        EXPECT_EQ(KtRegDeleteKey(HKEY_CURRENT_USER, none), 0);
    }
    EXPECT_EQ(KtRegDeleteKey(nullptr, W("x")), 0);
}

}  // namespace
