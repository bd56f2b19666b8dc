// One hive of the registry: a SQLite database in WAL mode, with the keys as a tree of rows.
//
// Each copy of this library in a process has its own connection to each hive, opened at the first use and used under
// one lock. Everything here throws RegistryError or std::bad_alloc.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/base.h"

struct sqlite3;
struct sqlite3_stmt;

namespace platform {

struct RegistryError {
    DWORD code;  // Win32
};

// How long a call waits for other processes before it gives up, in milliseconds. For tests.
extern std::atomic<int> g_registry_patience;

// KT_REGISTRY, else clipfio below XDG_CONFIG_HOME or ~/.config.
std::string RegistryFolder();

class RegistryFile {
  public:
    using KeyId = std::int64_t;
    static constexpr KeyId kRoot = 0;

    using Path = std::vector<WStringView>;  // the names of keys, one below the other

    struct Value {
        DWORD type;
        std::string_view data;
    };
    using Visit = std::function<void(const Value&)>;  // the data lives as long as the call
    struct Facts {                                    // lengths in characters, data in bytes
        DWORD keys, longest_key, values, longest_value, longest_data;
    };
    struct Opened {
        KeyId id;
        bool is_new;
    };

    explicit RegistryFile(const char* name) noexcept : name_(name) {}
    ~RegistryFile() { Close(); }
    RegistryFile(const RegistryFile&) = delete;
    RegistryFile& operator=(const RegistryFile&) = delete;

    // Nothing when a key on the way is missing.
    std::optional<KeyId> Find(const std::string& folder, KeyId from, const Path& path);
    Opened Create(const std::string& folder, KeyId from, const Path& path);
    void Delete(const std::string& folder, KeyId from, const Path& path);

    void ReadValue(const std::string& folder, KeyId key, WStringView name, const Visit& visit);
    void SetValue(const std::string& folder, KeyId key, WStringView name, const Value& value);
    void DeleteValue(const std::string& folder, KeyId key, WStringView name);

    // Nothing behind the last one.
    std::optional<WString> KeyName(const std::string& folder, KeyId parent, DWORD index);
    Facts Describe(const std::string& folder, KeyId key);

  private:
    enum Sql {
        kFindKey,
        kKeyExists,
        kAddKey,
        kDropKey,
        kDropValues,
        kHasKeys,
        kEnumKeys,
        kCountKeys,
        kCountValues,
        kGetValue,
        kPutValue,
        kDropValue,
        kSqlCount
    };
    class Query;
    class Transaction;
    enum class Use { kRead, kWrite };

    // False when there is no file and the use needs none.
    bool Open(const std::string& folder, Use use);
    void Connect(Use use);
    void MakeTables();
    void Prepare();
    void Close() noexcept;

    [[noreturn]] void Fail(int result);
    void Check(int result);
    void Run(const char* sql);
    std::int64_t Pragma(const char* sql);

    void RequireKey(KeyId key);
    std::optional<KeyId> FindChild(KeyId parent, WStringView name);
    std::optional<KeyId> FindPath(KeyId from, const Path& path);
    KeyId AddKey(KeyId parent, WStringView name);

    const char* const name_;
    std::mutex lock_;
    std::string path_;
    sqlite3* database_ = nullptr;
    sqlite3_stmt* statements_[kSqlCount] = {};
    bool is_read_only_ = false;
    bool is_broken_ = false;  // closed at the next use
};

}  // namespace platform
