#include "r3dsdk/sdk_loader.h"

#include <algorithm>
#include <new>
#include <string>
#include <vector>

#include "platform/modules.h"
#include "platform/text.h"
#include "r3dsdk/sdk_import_list.h"
#include "r3dsdk/sdk_key_values.h"
#include "r3dsdk/sdk_library_set.h"
#include "r3dsdk/sdk_log.h"
#include "r3dsdk/sdk_test_values.h"

namespace clipfio {
namespace {

constexpr char kClientText[] = "LEIDUP 7.0.3-35I46 (20171005 W64S)";
constexpr char kClientBuild[] = "35I46";
constexpr char kClientDate[] = "20171005";
constexpr char kClientKind[] = "S";
constexpr size_t kMostPaths = 10;
constexpr int32_t kNotTried = 1;
constexpr uint32_t kIgnoreRedirects = 2;

struct SdkPathEntry {
    uint32_t index = 0;
    int32_t status = kNotTried;
    SdkVersion version;
    SdkVersion minimumVersion;
    std::string path;  // ends in a separator
};
using SdkPathOrder = std::vector<SdkPathEntry*>;

void LogPaths(const SdkPathOrder& order) noexcept {
    SdkLog("----------------------\n");
    int place = 0;
    for (const SdkPathEntry* entry : order) {
        SdkLog("%d: idx = %u, status = %d, version = ", place++, entry->index, entry->status);
        SdkLog("%u.%u.%u", entry->version.major, entry->version.minor, entry->version.patch);
        SdkLog(": %s\n", entry->path.c_str());
    }
    SdkLog("----------------------\n");
}

std::string EnvironmentPath() {
    WString value(MAX_PATH, 0);
    for (;;) {
        const DWORD length = GetEnvironmentVariableW(W("R3DSDKPATH"), value.data(), static_cast<DWORD>(value.size()));
        const bool complete = length < value.size();
        value.resize(length);
        if (complete) return platform::Utf8(value);
    }
}

// The state of the loader. Constructing one allocates nothing. Operations may throw std::bad_alloc.
class SdkLoader {
  public:
    explicit SdkLoader(SdkKeyValues* foreign_values = nullptr) noexcept { ShareValues(foreign_values); }

    // Null stands for a table of its own.
    void ShareValues(SdkKeyValues* foreign_values) noexcept {
        values_ = foreign_values ? foreign_values : &own_values_;
        libraries.ShareValues(values_);
    }
    SdkKeyValues& Values() noexcept { return *values_; }
    SdkKeyValueTable& OwnValues() noexcept { return own_values_; }

    // The whole search; on success the best library is running.
    [[nodiscard]] int32_t Search(const char* folder);
    // The folder in use, or null.
    const char* CurrentFolder() const noexcept {
        return current_path_ < 0 ? nullptr : paths_[static_cast<size_t>(current_path_)].path.c_str();
    }

    SdkLibrarySet libraries;

  private:
    int32_t AddPath(const std::string& path);
    int32_t Probe(const std::string& path);
    int32_t Start(const SdkPathEntry& entry);
    int32_t ImportAll(const std::string& folder);
    SdkPathOrder BestFirst();

    int32_t current_path_ = -1;
    SdkKeyValueTable own_values_;
    SdkKeyValues* values_ = nullptr;
    std::vector<SdkPathEntry> paths_;
};

// The new entry's index, or a negative number.
int32_t SdkLoader::AddPath(const std::string& path) {
    if (paths_.size() == kMostPaths) {
        SdkLog("[FAIL INT. ] too many paths\n");
        return -1;
    }
    std::string folder = path;
    if (!folder.ends_with('\\') && !folder.ends_with('/')) folder += '\\';
    for (const SdkPathEntry& entry : paths_) {
        if (entry.path != folder) continue;
        SdkLog("[FAIL INT. ] path '%s' already exists at index %u\n", path.c_str(), entry.index);
        return -2;
    }
    const auto index = static_cast<uint32_t>(paths_.size());
    SdkPathEntry& added = paths_.emplace_back();
    added.index = index;
    added.path = std::move(folder);
    return static_cast<int32_t>(index);
}

// Looks at a folder and at those that the libraries on the way redirect to; even a library that is too old may know of
// a newer one. The result is that of the last folder.
int32_t SdkLoader::Probe(const std::string& path) {
    std::string next = path;
    for (;;) {
        SdkLog("[LOAD PATH ] %s\n", next.c_str());
        const int32_t place = AddPath(next);
        if (place < 0) return kSdkTooMany;
        libraries.Unload();

        SdkPathEntry& entry = paths_[static_cast<size_t>(place)];
        entry.status = libraries.Load((entry.path + kMainLibraryFileName).c_str(), kMainLibraryId, 0);
        if (entry.status != kSdkGood) return entry.status;
        entry.version = libraries[0].version;
        entry.minimumVersion = libraries[0].minimumVersion;
        if (!libraries.CheckVersions(0)) entry.status = kSdkVersionMismatch;

        const auto redirect = reinterpret_cast<SdkTextFunction>(libraries[0].module.Find("RED_REDIRECT"));
        const char* const target = redirect ? redirect() : nullptr;
        if (!target || !*target) return entry.status;
        if (SdkGetTestValue(kSdkTestRedirectMode) == kIgnoreRedirects) {
            SdkLog("[TEST  TEST] IGNORING REDIRECT %s\n", target);
            return entry.status;
        }
        next = target;
    }
}

SdkPathOrder SdkLoader::BestFirst() {
    SdkPathOrder order;
    for (SdkPathEntry& entry : paths_) order.push_back(&entry);
    std::sort(order.begin(), order.end(), [](const SdkPathEntry* a, const SdkPathEntry* b) {
        return a->version != b->version ? a->version > b->version : a->index > b->index;
    });
    return order;
}

// Loads the main library of a folder with its imports, binds the tables and starts all of them.
int32_t SdkLoader::Start(const SdkPathEntry& entry) {
    libraries.Unload();
    int32_t status = libraries.Load((entry.path + kMainLibraryFileName).c_str(), kMainLibraryId, 0);
    if (status == kSdkGood) status = ImportAll(entry.path);
    if (status == kSdkGood) status = libraries.LoadTables();
    if (status == kSdkGood) status = libraries.Initialize();
    return status;
}

int32_t SdkLoader::ImportAll(const std::string& folder) {
    SdkImportRows list;
    if (const auto imports = reinterpret_cast<SdkImportsFunction>(libraries[0].module.Find("RED_IMPORTS"))) {
        const uint32_t unknown_options = imports(&list);
        if (unknown_options) SdkLog("[WARN INT. ] unknown options: %X\n", unknown_options);
    }
    const int32_t status = list.LostRows() ? kSdkTooMany : libraries.LoadImports(folder, list);
    if (status != kSdkGood) SdkLog("[FAIL LOAD ]\n");
    return status;
}

int32_t SdkLoader::Search(const char* folder) {
    int32_t error = Probe(folder);
    const std::string further = EnvironmentPath();
    if (!further.empty()) static_cast<void>(Probe(further));  // its result shows in its entries

    const SdkPathOrder order = BestFirst();
    LogPaths(order);
    for (SdkPathEntry* entry : order) {
        if (entry->status != kSdkGood) {
            if (error == kSdkGood) error = entry->status;
            continue;
        }
        entry->status = Start(*entry);
        if (entry->status == kSdkGood) {
            current_path_ = static_cast<int32_t>(entry->index);
            LogPaths(order);
            return kSdkGood;
        }
        error = entry->status;
    }
    LogPaths(order);
    return error;
}

SdkLoader* current;
// The embedded form must not allocate, and must not be taken down behind its client's back at the end of the process.
alignas(SdkLoader) unsigned char embedded_storage[sizeof(SdkLoader)];

bool IsEmbedded(const SdkLoader* loader) noexcept {
    return static_cast<const void*>(loader) == static_cast<const void*>(embedded_storage);
}

void Publish(SdkLoader* loader) noexcept {
    current = loader;
    SetActiveSdkTables(loader ? &loader->libraries.Tables() : nullptr);
    SetSdkLogValues(loader ? &loader->Values() : nullptr);
}

// False when memory ran out.
bool FillValues(SdkKeyValueTable& values, const char* folder, uint32_t options) {
    static const std::string first_folder = folder;
    values.SetValue(kSdkKeyLogLevel, SdkGetTestValue(kSdkTestLogLevel));
    values.SetValue(kSdkKeyMajor, kSdkClientVersion.major);
    values.SetValue(kSdkKeyMinor, kSdkClientVersion.minor);
    values.SetValue(kSdkKeyPatch, kSdkClientVersion.patch);
    values.SetPointer(kSdkKeyBuild, kClientBuild);
    values.SetPointer(kSdkKeyDate, kClientDate);
    values.SetPointer(kSdkKeyVersion, kClientText);
    values.SetPointer(kSdkKeyKind, kClientKind);
    values.SetValue(kSdkKeyOptions, options);
    values.SetPointer(kSdkKeyFirstPath, first_folder.c_str());
    values.SetValue(kSdkKeySkipMatch, SdkGetTestValue(kSdkTestSkipMatch) != 0);
    values.SetValue(kSdkKeyRedirectMode, SdkGetTestValue(kSdkTestRedirectMode));
    return !values.LostValues();
}

// Runs an operation of the loader; memory that runs out is a status like others.
template <class Operation>
int32_t Guard(Operation operation) noexcept {
    try {
        return operation();
    } catch (const std::bad_alloc&) {
        return kSdkTooMany;
    }
}

}  // namespace

int32_t SdkInitialize(const char* folder, uint32_t options) noexcept {
    SdkLog("[INIT LIB  ] 0x%X at %s\n-%s\n", options, folder ? folder : "(null)", SdkVersionText());
    if (!folder || !*folder) return kSdkEmptyPath;
    SdkFinalize();
    const int32_t status = Guard([&]() -> int32_t {
        Publish(new SdkLoader);
        if (!FillValues(current->OwnValues(), folder, options)) return kSdkTooMany;
        return current->Search(folder);
    });
    if (status == kSdkGood) {
        SdkLog("-%s\n[OK INIT   ]\n", SdkVersionText());
    } else {
        SdkFinalize();
        SdkLog("[FAIL INIT ] error %d\n", status);
    }
    return status;
}

void SdkFinalize() noexcept {
    if (!current) return;
    SdkLoader* const loader = current;
    loader->libraries.Unload();
    Publish(nullptr);
    if (IsEmbedded(loader)) {
        loader->~SdkLoader();
    } else {
        delete loader;
    }
}

const char* SdkVersionText() noexcept {
    static std::string text;
    try {
        text = kClientText;
        if (!current) return text.c_str();
        for (uint32_t i = 0; i < current->libraries.Count(); ++i) {
            text.append(" ").append(current->libraries[i].buildName);
        }
        if (const char* folder = current->CurrentFolder()) text.append(" [").append(folder).append("]");
    } catch (const std::bad_alloc&) {
        return kClientText;
    }
    return text.c_str();
}

int32_t SdkInitializeEmbedded(uint32_t phase, SdkKeyValues* values, const HMODULE* handles, uint32_t count) noexcept {
    if (!values) return kSdkNotOpened;
    if (!IsEmbedded(current)) {
        SdkFinalize();
        Publish(new (embedded_storage) SdkLoader(values));
    }
    current->ShareValues(values);
    Publish(current);

    SdkLog("[INIT INT%u ]\n", phase);
    if (phase == 1) {
        SdkLog("+%s\n", SdkVersionText());
        int32_t status = current->libraries.Borrow(handles, count);
        if (status != kSdkGood) {
            SdkLog("[FAIL LOAD ] %d\n", status);
            return status;
        }
        status = current->libraries.LoadTables();
        if (status != kSdkGood) return status;
        SdkLog("+%s\n", SdkVersionText());
    }
    SdkLog("[OK INT%u   ]\n", phase);
    return kSdkGood;
}

int32_t SdkLoadLate(const char* folder, SdkImportList* list) noexcept {
    if (!current) return kSdkNoMainLibrary;
    return Guard([&]() -> int32_t {
        SdkLibrarySet& libraries = current->libraries;
        int32_t status = list ? libraries.LoadImports(folder ? folder : "", *list) : kSdkGood;
        if (status != kSdkGood) {
            SdkLog("[FAIL LOAD ]\n");
            return status;
        }
        status = libraries.LoadTables();
        return status == kSdkGood ? libraries.Initialize() : status;
    });
}

}  // namespace clipfio
