#include "kernel/lang_choice.h"

#include "kernel/key_path.h"
#include "platform/registry.h"
#include "platform/scoped.h"

namespace {

constexpr WCHAR kValue[] = W("ULangID");

using platform::ScopedKey;

// As long as the names of three keys may be: what is cut names none.
using LanguagePath = clipfio::KeyPath<1024>;

// Empty without names, and for names that no key has.
LanguagePath PathOf(const WCHAR* company, const WCHAR* application, uint32_t version) noexcept {
    if (!company || !application || !*company || !*application) return {};
    auto path = clipfio::ApplicationPath<LanguagePath>(company, application, version);
    path.Add(W("\\Lang"));
    return path.IsCut() ? LanguagePath() : path;
}

[[nodiscard]] HRESULT Load(const LanguagePath& path, LCID& lcid) noexcept {
    if (!*path.Text()) return E_INVALIDARG;
    ScopedKey key;
    for (const HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        if (RegOpenKeyExW(hive, path.Text(), 0, KEY_READ, key.Out()) == ERROR_SUCCESS) break;
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

[[nodiscard]] HRESULT Save(const LanguagePath& path, LCID lcid) noexcept {
    if (!*path.Text()) return E_INVALIDARG;
    ScopedKey key;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, path.Text(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr,
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
    return SUCCEEDED(Load(PathOf(company, application, version), *lcid));
}

int32_t KtLang_LoadUserLCIDMetric(const WCHAR* application, uint32_t version, LCID* lcid,
                                  int32_t ignore_version) noexcept {
    return KtLang_LoadUserLCIDMetricAppReg(application, ignore_version ? 0 : version, lcid, clipfio::kKernelCompany);
}

int32_t KtLang_SaveUserLCIDMetricAppReg(const WCHAR* application, uint32_t version, LCID lcid,
                                        const WCHAR* company) noexcept {
    return SUCCEEDED(Save(PathOf(company, application, version), lcid));
}

int32_t KtLang_SaveUserLCIDMetric(const WCHAR* application, uint32_t version, LCID lcid,
                                  int32_t ignore_version) noexcept {
    return KtLang_SaveUserLCIDMetricAppReg(application, ignore_version ? 0 : version, lcid, clipfio::kKernelCompany);
}
