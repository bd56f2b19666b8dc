// The language that the user chose for an application, kept in the registry.
//
// `version` carries the major version in its highest byte and the minor one in the next. A choice belongs to a version,
// or to all of them where the major version is 0 or the version is ignored. Any thread.
#pragma once

#include <cstdint>

#include "platform/base.h"

// The choice of this user, else, where this user has none at all, that of the machine. 1, or 0 with `*lcid` 0.
KT_API int32_t KtLang_LoadUserLCIDMetric(const WCHAR* application, uint32_t version, LCID* lcid,
                                         int32_t ignore_version) noexcept;
// Under another company's key than the system's own.
KT_API int32_t KtLang_LoadUserLCIDMetricAppReg(const WCHAR* application, uint32_t version, LCID* lcid,
                                               const WCHAR* company) noexcept;
// Keep the low 16 bits of `lcid` for this user. 1, or 0 when they could not be written.
KT_API int32_t KtLang_SaveUserLCIDMetric(const WCHAR* application, uint32_t version, LCID lcid,
                                         int32_t ignore_version) noexcept;
KT_API int32_t KtLang_SaveUserLCIDMetricAppReg(const WCHAR* application, uint32_t version, LCID lcid,
                                               const WCHAR* company) noexcept;
