#include "registry_file.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "errors.h"
#include "paths.h"
#include "platform/text.h"

namespace platform {

std::atomic<int> g_registry_patience{3000};

namespace {

constexpr int kApplication = 0x4B545247;
constexpr int kForm = 1;
constexpr DWORD ERROR_NO_SYSTEM_RESOURCES = 1450;

// Names are kept as they were given, and once more without case, big-endian so that they sort by character.
constexpr const char* kCreateTables =
    "CREATE TABLE key(id INTEGER PRIMARY KEY AUTOINCREMENT, parent INTEGER NOT NULL, name BLOB NOT NULL,"
    " folded BLOB NOT NULL, UNIQUE(parent, folded));"
    "CREATE TABLE value(key INTEGER NOT NULL, name BLOB NOT NULL, folded BLOB NOT NULL, type INTEGER NOT NULL,"
    " data BLOB NOT NULL, PRIMARY KEY(key, folded)) WITHOUT ROWID;";

DWORD Win32FromSqlite(int result) noexcept {
    switch (result & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return ERROR_BUSY;
        case SQLITE_READONLY:
        case SQLITE_PERM:
        case SQLITE_AUTH:
            return ERROR_ACCESS_DENIED;
        case SQLITE_NOMEM:
            return ERROR_NOT_ENOUGH_MEMORY;
        case SQLITE_FULL:
            return ERROR_DISK_FULL;
        case SQLITE_TOOBIG:
            return ERROR_NO_SYSTEM_RESOURCES;
        case SQLITE_CANTOPEN:
            return ERROR_CANTOPEN;
        case SQLITE_IOERR:
            return ERROR_REGISTRY_IO_FAILED;
        default:
            return ERROR_REGISTRY_CORRUPT;  // among others a database with other tables
    }
}

// With every folder on the way to it, for the user alone.
void MakeFolder(const std::string& folder) {
    struct stat facts {};
    if (stat(folder.c_str(), &facts) == 0) return;
    for (std::size_t end = 0; end != std::string::npos;) {
        end = folder.find('/', end + 1);
        const std::string part = folder.substr(0, end);
        if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) throw RegistryError{Win32FromErrno(errno)};
    }
}

std::string FolderOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

std::string ImmutableUri(const std::string& path) {
    std::string uri = "file:";
    for (const char c : path) {
        if (c == '%' || c == '?' || c == '#') {
            constexpr char kDigits[] = "0123456789ABCDEF";
            uri += {'%', kDigits[c >> 4], kDigits[c & 15]};
        } else {
            uri += c;
        }
    }
    return uri + "?immutable=1";
}

WString Folded(WStringView name) {
    WString folded(name);
    for (WCHAR& c : folded) {
        const WCHAR upper = UpperCase(c);
        c = static_cast<WCHAR>(upper << 8 | upper >> 8);
    }
    return folded;
}

// Waits out another process that has the file in its hands just then.
template <class Step>
int WithPatience(Step step) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(g_registry_patience.load());
    for (;;) {
        const int result = step();
        if ((result & 0xFF) != SQLITE_BUSY || Clock::now() >= end) return result;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

}  // namespace

std::string RegistryFolder() {
    if (const auto folder = Environment("KT_REGISTRY"); folder && !folder->empty()) return *folder;
    if (const auto config = Environment("XDG_CONFIG_HOME"); config && config->starts_with('/')) {
        return *config + "/clipfio";
    }
    if (const auto home = Environment("HOME"); home && !home->empty()) return *home + "/.config/clipfio";
    throw RegistryError{ERROR_CANTOPEN};
}

// One run of a prepared statement.
class RegistryFile::Query {
  public:
    Query(RegistryFile& file, Sql sql) : file_(file), statement_(file.statements_[sql]) {}
    ~Query() {
        sqlite3_reset(statement_);
        sqlite3_clear_bindings(statement_);
    }
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;

    Query& Bind(std::int64_t number) {
        file_.Check(sqlite3_bind_int64(statement_, ++bound_, number));
        return *this;
    }
    // The bytes must stay until the query has gone.
    Query& Bind(const void* data, std::size_t bytes) {
        file_.Check(sqlite3_bind_blob64(statement_, ++bound_, bytes ? data : "", bytes, SQLITE_STATIC));
        return *this;
    }
    Query& Bind(WStringView text) { return Bind(text.data(), text.size() * sizeof(WCHAR)); }

    bool Row() {
        const int result = sqlite3_step(statement_);
        if (result != SQLITE_ROW && result != SQLITE_DONE) file_.Fail(result);
        return result == SQLITE_ROW;
    }
    [[nodiscard]] std::int64_t Number(int column) const { return sqlite3_column_int64(statement_, column); }
    [[nodiscard]] std::string_view Bytes(int column) const {
        const auto* const data = static_cast<const char*>(sqlite3_column_blob(statement_, column));
        return {data ? data : "", static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
    }

  private:
    RegistryFile& file_;
    sqlite3_stmt* const statement_;
    int bound_ = 0;
};

// Takes the one right to write at once: a transaction that reads first and then wants to write fails where another
// process wrote in between, however long it waits.
class RegistryFile::Transaction {
  public:
    explicit Transaction(RegistryFile& file) : file_(file) { file_.Run("BEGIN IMMEDIATE"); }
    ~Transaction() {
        if (!is_done_) sqlite3_exec(file_.database_, "ROLLBACK", nullptr, nullptr, nullptr);
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void Commit() {
        file_.Run("COMMIT");
        is_done_ = true;
    }

  private:
    RegistryFile& file_;
    bool is_done_ = false;
};

void RegistryFile::Fail(int result) {
    switch (result & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_FULL:
        case SQLITE_NOMEM:
        case SQLITE_TOOBIG:
            break;
        default:
            is_broken_ = true;
    }
    throw RegistryError{Win32FromSqlite(result)};
}

void RegistryFile::Check(int result) {
    if (result != SQLITE_OK) Fail(result);
}

void RegistryFile::Run(const char* sql) {
    Check(WithPatience([&] { return sqlite3_exec(database_, sql, nullptr, nullptr, nullptr); }));
}

std::int64_t RegistryFile::Pragma(const char* sql) {
    sqlite3_stmt* statement = nullptr;
    int result = sqlite3_prepare_v2(database_, sql, -1, &statement, nullptr);
    if (result == SQLITE_OK) result = sqlite3_step(statement);
    const std::int64_t number = result == SQLITE_ROW ? sqlite3_column_int64(statement, 0) : 0;
    sqlite3_finalize(statement);
    if (result != SQLITE_ROW) Fail(result);
    return number;
}

void RegistryFile::Close() noexcept {
    for (sqlite3_stmt*& statement : statements_) {
        sqlite3_finalize(statement);
        statement = nullptr;
    }
    sqlite3_close(database_);
    database_ = nullptr;
    is_broken_ = false;
}

bool RegistryFile::Open(const std::string& folder, Use use) {
    const std::string path = folder + "/" + name_;
    if (database_) {
        int has_moved = 0;
        sqlite3_file_control(database_, "main", SQLITE_FCNTL_HAS_MOVED, &has_moved);
        // One that may only be read does not see what others write, and so is opened for each call.
        if (path == path_ && !has_moved && !is_broken_ && !is_read_only_) return true;
        Close();
    }
    struct stat facts {};
    if (use == Use::kRead && stat(path.c_str(), &facts) != 0 && (errno == ENOENT || errno == ENOTDIR)) return false;
    if (use == Use::kWrite) MakeFolder(folder);
    path_ = path;
    try {
        Connect(use);
        return true;
    } catch (...) {
        Close();
        throw;
    }
}

void RegistryFile::Connect(Use use) {
    const int create = use == Use::kWrite ? SQLITE_OPEN_CREATE : 0;
    Check(sqlite3_open_v2(path_.c_str(), &database_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | create, nullptr));
    is_read_only_ = sqlite3_db_readonly(database_, "main") != 0;
    if (is_read_only_ && use == Use::kRead && access(FolderOf(path_).c_str(), W_OK) != 0) {
        // Nobody can write there, and so the files that go with a database in use can neither be nor be needed.
        Close();
        is_read_only_ = true;
        Check(sqlite3_open_v2(ImmutableUri(path_).c_str(), &database_,
                              SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr));
    }
    sqlite3_busy_timeout(database_, g_registry_patience.load());
    if (!is_read_only_) {
        // Unlike other statements this one does not always wait for its turn by itself.
        Run("PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL");
        if (Pragma("PRAGMA user_version") == 0) MakeTables();
    }
    if (Pragma("PRAGMA application_id") != kApplication || Pragma("PRAGMA user_version") != kForm) Fail(SQLITE_NOTADB);
    Prepare();
}

void RegistryFile::MakeTables() {
    Transaction transaction(*this);
    // Another process may have been quicker; and another's database is left alone.
    if (Pragma("PRAGMA user_version") == 0 && Pragma("PRAGMA application_id") == 0 &&
        Pragma("SELECT count(*) FROM sqlite_schema") == 0) {
        Run(kCreateTables);
        Run(("PRAGMA application_id=" + std::to_string(kApplication)).c_str());
        Run(("PRAGMA user_version=" + std::to_string(kForm)).c_str());
    }
    transaction.Commit();
}

void RegistryFile::Prepare() {
    static constexpr const char* kStatements[kSqlCount] = {
        /* kFindKey */ "SELECT id FROM key WHERE parent=? AND folded=?",
        /* kKeyExists */ "SELECT 1 FROM key WHERE id=?",
        /* kAddKey */ "INSERT INTO key(parent, name, folded) VALUES(?, ?, ?)",
        /* kDropKey */ "DELETE FROM key WHERE id=?",
        /* kDropValues */ "DELETE FROM value WHERE key=?",
        /* kHasKeys */ "SELECT 1 FROM key WHERE parent=? LIMIT 1",
        /* kEnumKeys */ "SELECT name FROM key WHERE parent=? ORDER BY folded LIMIT 1 OFFSET ?",
        /* kCountKeys */ "SELECT count(*), max(length(name)) FROM key WHERE parent=?",
        /* kCountValues */ "SELECT count(*), max(length(name)), max(length(data)) FROM value WHERE key=?",
        /* kGetValue */ "SELECT type, data FROM value WHERE key=? AND folded=?",
        /* kPutValue */
        "INSERT INTO value(key, folded, name, type, data) VALUES(?1, ?2, ?3, ?4, ?5)"
        " ON CONFLICT(key, folded) DO UPDATE SET type=?4, data=?5",
        /* kDropValue */ "DELETE FROM value WHERE key=? AND folded=? RETURNING 1",
    };
    for (int i = 0; i < kSqlCount; ++i) {
        Check(sqlite3_prepare_v3(database_, kStatements[i], -1, SQLITE_PREPARE_PERSISTENT, &statements_[i], nullptr));
    }
}

void RegistryFile::RequireKey(KeyId key) {
    if (key != kRoot && !Query(*this, kKeyExists).Bind(key).Row()) throw RegistryError{ERROR_KEY_DELETED};
}

std::optional<RegistryFile::KeyId> RegistryFile::FindChild(KeyId parent, WStringView name) {
    const WString folded = Folded(name);
    Query query(*this, kFindKey);
    if (!query.Bind(parent).Bind(folded).Row()) return std::nullopt;
    return query.Number(0);
}

std::optional<RegistryFile::KeyId> RegistryFile::FindPath(KeyId from, const Path& path) {
    RequireKey(from);
    std::optional<KeyId> key = from;
    for (const WStringView part : path) {
        key = FindChild(*key, part);
        if (!key) break;
    }
    return key;
}

std::optional<RegistryFile::KeyId> RegistryFile::Find(const std::string& folder, KeyId from, const Path& path) {
    const std::lock_guard hold(lock_);
    if (Open(folder, Use::kRead)) return FindPath(from, path);
    if (from != kRoot) throw RegistryError{ERROR_KEY_DELETED};
    return path.empty() ? std::optional<KeyId>(kRoot) : std::nullopt;
}

RegistryFile::Opened RegistryFile::Create(const std::string& folder, KeyId from, const Path& path) {
    const std::lock_guard hold(lock_);
    Open(folder, Use::kWrite);
    Transaction transaction(*this);
    RequireKey(from);
    Opened opened{from, false};
    for (const WStringView part : path) {
        const auto found = FindChild(opened.id, part);
        opened = found ? Opened{*found, false} : Opened{AddKey(opened.id, part), true};
    }
    transaction.Commit();
    return opened;
}

RegistryFile::KeyId RegistryFile::AddKey(KeyId parent, WStringView name) {
    const WString folded = Folded(name);
    Query(*this, kAddKey).Bind(parent).Bind(name).Bind(folded).Row();
    return sqlite3_last_insert_rowid(database_);
}

void RegistryFile::Delete(const std::string& folder, KeyId from, const Path& path) {
    const std::lock_guard hold(lock_);
    if (!Open(folder, Use::kRead)) throw RegistryError{ERROR_FILE_NOT_FOUND};
    Open(folder, Use::kWrite);
    Transaction transaction(*this);
    const auto key = FindPath(from, path);
    if (!key) throw RegistryError{ERROR_FILE_NOT_FOUND};
    if (*key == kRoot || Query(*this, kHasKeys).Bind(*key).Row()) throw RegistryError{ERROR_ACCESS_DENIED};
    Query(*this, kDropValues).Bind(*key).Row();
    Query(*this, kDropKey).Bind(*key).Row();
    transaction.Commit();
}

void RegistryFile::ReadValue(const std::string& folder, KeyId key, WStringView name, const Visit& visit) {
    const std::lock_guard hold(lock_);
    if (!Open(folder, Use::kRead)) throw RegistryError{key == kRoot ? ERROR_FILE_NOT_FOUND : ERROR_KEY_DELETED};
    const WString folded = Folded(name);
    Query query(*this, kGetValue);
    if (!query.Bind(key).Bind(folded).Row()) {
        RequireKey(key);
        throw RegistryError{ERROR_FILE_NOT_FOUND};
    }
    visit({static_cast<DWORD>(query.Number(0)), query.Bytes(1)});
}

void RegistryFile::SetValue(const std::string& folder, KeyId key, WStringView name, const Value& value) {
    const std::lock_guard hold(lock_);
    Open(folder, Use::kWrite);
    Transaction transaction(*this);
    RequireKey(key);
    const WString folded = Folded(name);
    Query(*this, kPutValue)
        .Bind(key)
        .Bind(folded)
        .Bind(name)
        .Bind(value.type)
        .Bind(value.data.data(), value.data.size())
        .Row();
    transaction.Commit();
}

void RegistryFile::DeleteValue(const std::string& folder, KeyId key, WStringView name) {
    const std::lock_guard hold(lock_);
    if (!Open(folder, Use::kRead)) throw RegistryError{key == kRoot ? ERROR_FILE_NOT_FOUND : ERROR_KEY_DELETED};
    Open(folder, Use::kWrite);
    Transaction transaction(*this);
    RequireKey(key);
    const WString folded = Folded(name);
    if (!Query(*this, kDropValue).Bind(key).Bind(folded).Row()) throw RegistryError{ERROR_FILE_NOT_FOUND};
    transaction.Commit();
}

std::optional<WString> RegistryFile::KeyName(const std::string& folder, KeyId parent, DWORD index) {
    const std::lock_guard hold(lock_);
    if (!Open(folder, Use::kRead)) return std::nullopt;
    Query query(*this, kEnumKeys);
    if (!query.Bind(parent).Bind(std::int64_t{index}).Row()) {
        RequireKey(parent);
        return std::nullopt;
    }
    const std::string_view bytes = query.Bytes(0);
    WString name(bytes.size() / sizeof(WCHAR), u'\0');
    bytes.copy(reinterpret_cast<char*>(name.data()), name.size() * sizeof(WCHAR));
    return name;
}

RegistryFile::Facts RegistryFile::Describe(const std::string& folder, KeyId key) {
    const std::lock_guard hold(lock_);
    if (!Open(folder, Use::kRead)) return {};
    RequireKey(key);
    Query keys(*this, kCountKeys);
    Query values(*this, kCountValues);
    keys.Bind(key).Row();
    values.Bind(key).Row();
    const auto number = [](const Query& query, int column) { return static_cast<DWORD>(query.Number(column)); };
    const auto characters = [&](const Query& query, int column) {
        return static_cast<DWORD>(query.Number(column) / static_cast<std::int64_t>(sizeof(WCHAR)));
    };
    return {number(keys, 0), characters(keys, 1), number(values, 0), characters(values, 1), number(values, 2)};
}

}  // namespace platform
