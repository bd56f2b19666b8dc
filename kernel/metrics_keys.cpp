#include <new>

#include "kernel/metrics.h"
#include "kernel/metrics_record.h"
#include "platform/scoped.h"

namespace {

using clipfio::MetricPath;
using clipfio::MetricRecord;

constexpr WStringView kMetrics = W("\\Metrics");
constexpr DWORD kKeyNameSize = 256;

MetricPath ApplicationPath(const WCHAR* company, const WCHAR* application, uint32_t version) noexcept {
    return clipfio::ApplicationPath<MetricPath>(company ? company : clipfio::kKernelCompany, application, version);
}

HRESULT OpenPath(HKTMETRIC* out, const MetricPath& path) noexcept {
    auto* const record = new (std::nothrow) KtMetric;
    if (!record) return E_OUTOFMEMORY;
    WStringView(path.Text()).copy(record->path, MetricPath::kSize - 1);
    *out = record;
    return HRESULT_FROM_WIN32(static_cast<DWORD>(RegCreateKeyW(HKEY_CURRENT_USER, record->path, &record->key)));
}

bool NamesAnApplication(const WCHAR* application, const WCHAR* company) noexcept {
    return application && *application && (!company || *company);
}

enum class Hives { Both, User };

HRESULT Delete(const MetricPath& path, Hives hives) noexcept {
    if (path.IsCut()) return E_INVALIDARG;
    const bool machine = hives == Hives::User || KtRegDeleteKey(HKEY_LOCAL_MACHINE, path.Text());
    const bool user = KtRegDeleteKey(HKEY_CURRENT_USER, path.Text());
    return machine && user ? S_OK : E_FAIL;
}

HRESULT DeleteApplication(const WCHAR* application, uint32_t version, const WCHAR* company, Hives hives) noexcept {
    if (!NamesAnApplication(application, company)) return E_INVALIDARG;
    return Delete(ApplicationPath(company, application, version), hives);
}

// False when it could not be deleted.
bool DeleteFirstSubKey(HKEY key) noexcept {
    WCHAR name[kKeyNameSize];
    DWORD length = kKeyNameSize;
    return RegEnumKeyExW(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
           KtRegDeleteKey(key, name);
}

}  // namespace

HRESULT KtMetric_Open(HKTMETRIC* out, const WCHAR* application, uint32_t version, const WCHAR* sub_key) noexcept {
    return KtMetric_OpenRegHiveAndVersion(out, application, version, nullptr, sub_key);
}

HRESULT KtMetric_OpenRegHiveAndVersion(HKTMETRIC* out, const WCHAR* application, uint32_t version, const WCHAR* company,
                                       const WCHAR* sub_key) noexcept {
    if (!out) return E_INVALIDARG;
    *out = nullptr;
    if (!NamesAnApplication(application, company)) return E_INVALIDARG;
    return OpenPath(out, ApplicationPath(company, application, version).Add(kMetrics).AddSubKey(sub_key));
}

HRESULT KtMetric_OpenAppVersion(HKTMETRIC* out, const WCHAR* path, const WCHAR* sub_key) noexcept {
    if (!out) return E_INVALIDARG;
    *out = nullptr;
    if (!path || !*path) return E_INVALIDARG;
    return OpenPath(out, MetricPath().Add(path).AddSubKey(sub_key));
}

HRESULT KtMetric_OpenSubKey(HKTMETRIC* out, HKTMETRIC handle, const WCHAR* sub_key) noexcept {
    if (!out) return E_INVALIDARG;
    *out = nullptr;
    const KtMetric* const record = MetricRecord(handle);
    if (!record) return E_FAIL;
    const WStringView path = record->path;
    return OpenPath(out, MetricPath().Add(path.substr(0, path.find(kMetrics))).Add(kMetrics).AddSubKey(sub_key));
}

HRESULT KtMetric_Close(HKTMETRIC handle) noexcept {
    KtMetric* const record = MetricRecord(handle);
    if (!record) return S_OK;
    if (record->key) RegCloseKey(record->key);
    delete record;
    return S_OK;
}

HRESULT KtMetric_CloseAndDeleteKey(HKTMETRIC handle) noexcept {
    const KtMetric* const record = MetricRecord(handle);
    if (!record) return E_FAIL;
    const MetricPath path = MetricPath().Add(record->path);
    KtMetric_Close(handle);
    KtRegDeleteKey(HKEY_CURRENT_USER, path.Text());
    return S_OK;
}

HRESULT KtMetric_DeleteAll(const WCHAR* application, uint32_t version) noexcept {
    return DeleteApplication(application, version, nullptr, Hives::Both);
}

HRESULT KtMetric_DeleteAllHiveAndVersion(const WCHAR* application, uint32_t version, const WCHAR* company) noexcept {
    return DeleteApplication(application, version, company, Hives::Both);
}

HRESULT KtMetric_DeleteUserMetrics(const WCHAR* application, uint32_t version) noexcept {
    return DeleteApplication(application, version, nullptr, Hives::User);
}

HRESULT KtMetric_DeleteKey(const WCHAR* application, uint32_t version, const WCHAR* sub_key) noexcept {
    return KtMetric_DeleteKeyHiveAndVersion(application, version, nullptr, sub_key);
}

HRESULT KtMetric_DeleteKeyHiveAndVersion(const WCHAR* application, uint32_t version, const WCHAR* company,
                                         const WCHAR* sub_key) noexcept {
    if (!NamesAnApplication(application, company)) return E_INVALIDARG;
    return Delete(ApplicationPath(company, application, version).Add(kMetrics).AddSubKey(sub_key), Hives::Both);
}

int32_t KtRegDeleteKey(HKEY key, const WCHAR* sub_key) noexcept {
    if (!sub_key || !*sub_key) return 0;
    if (RegDeleteKeyW(key, sub_key) == ERROR_SUCCESS) return 1;
    {
        platform::ScopedKey opened;
        const LSTATUS result = RegOpenKeyExW(key, sub_key, 0, KEY_READ, opened.Out());
        if (result != ERROR_SUCCESS) return result == ERROR_FILE_NOT_FOUND ? 1 : 0;
        while (DeleteFirstSubKey(opened.Get())) {
        }
    }
    return RegDeleteKeyW(key, sub_key) == ERROR_SUCCESS ? 1 : 0;
}

uint32_t KtRegGetSubKeyCount(HKEY key, const WCHAR* sub_key, uint32_t* longest) noexcept {
    if (longest) *longest = 0;
    platform::ScopedKey opened;
    DWORD count = 0;
    DWORD length = 0;
    if (RegOpenKeyExW(key, sub_key, 0, KEY_READ, opened.Out()) != ERROR_SUCCESS ||
        RegQueryInfoKeyW(opened.Get(), nullptr, nullptr, nullptr, &count, &length, nullptr, nullptr, nullptr, nullptr,
                         nullptr, nullptr) != ERROR_SUCCESS) {
        return 0;
    }
    if (longest) *longest = length + 1;
    return count;
}
