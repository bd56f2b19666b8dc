#include "kernel/lang_choice.h"

#include "kernel/guard.h"
#include "platform/registry.h"
#include "platform/scoped.h"

namespace {

constexpr WCHAR kCompany[] = W("Kestrel Creative Software");
constexpr WCHAR kValue[] = W("ULangID");

using platform::ScopedKey;

WString Decimal(uint32_t number) {
    const std::string digits = std::to_string(number);
    return WString(digits.begin(), digits.end());
}

// May throw std::bad_alloc. Empty without names.
WString KeyPath(const WCHAR* company, const WCHAR* application, uint32_t version) {
    if (!company || !application || !*company || !*application) return {};
    WString path = WString(W("Software\\")) + company + W("\\") + application;
    const uint32_t major = version >> 24;
    const uint32_t minor = version >> 16 & 0xFF;
    if (major != 0) path += W("\\") + Decimal(major) + W(".") + Decimal(minor);
    return path + W("\\Lang");
}

[[nodiscard]] HRESULT Load(const WString& path, LCID& lcid) noexcept {
    if (path.empty()) return E_INVALIDARG;
    ScopedKey key;
    for (const HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        if (RegOpenKeyExW(hive, path.c_str(), 0, KEY_READ, key.Out()) == ERROR_SUCCESS) break;
    }
    if (!key) return E_FAIL;
    DWORD value = 0;
    DWORD bytes = sizeof value;
    const LSTATUS result =
        RegQueryValueExW(key.Get(), kValue, nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &bytes);
    if (result != ERROR_SUCCESS || bytes != sizeof value) return E_FAIL;
    lcid = value;
    return S_OK;
}

[[nodiscard]] HRESULT Save(const WString& path, LCID lcid) noexcept {
    if (path.empty()) return E_INVALIDARG;
    ScopedKey key;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr,
                        key.Out(), nullptr) != ERROR_SUCCESS) {
        return E_FAIL;
    }
    const DWORD value = lcid & 0xFFFF;
    const LSTATUS result = RegSetValueExW(key.Get(), kValue, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value),
                                          static_cast<DWORD>(sizeof value));
    return result == ERROR_SUCCESS ? S_OK : E_FAIL;
}

}  // namespace

int32_t KtLang_LoadUserLCIDMetricAppReg(const WCHAR* application, uint32_t version, LCID* lcid,
                                        const WCHAR* company) noexcept {
    if (!lcid) return 0;
    *lcid = 0;
    return SUCCEEDED(clipfio::Guarded([&] { return Load(KeyPath(company, application, version), *lcid); }));
}

int32_t KtLang_LoadUserLCIDMetric(const WCHAR* application, uint32_t version, LCID* lcid,
                                  int32_t ignore_version) noexcept {
    return KtLang_LoadUserLCIDMetricAppReg(application, ignore_version ? 0 : version, lcid, kCompany);
}

int32_t KtLang_SaveUserLCIDMetricAppReg(const WCHAR* application, uint32_t version, LCID lcid,
                                        const WCHAR* company) noexcept {
    return SUCCEEDED(clipfio::Guarded([&] { return Save(KeyPath(company, application, version), lcid); }));
}

int32_t KtLang_SaveUserLCIDMetric(const WCHAR* application, uint32_t version, LCID lcid,
                                  int32_t ignore_version) noexcept {
    return KtLang_SaveUserLCIDMetricAppReg(application, ignore_version ? 0 : version, lcid, kCompany);
}
