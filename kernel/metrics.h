// Metrics: an application's small settings, kept in the registry by number and type.
//
// They lie under HKEY_CURRENT_USER in "Software\COMPANY\APPLICATION\MAJOR.MINOR\Metrics", without the version where
// MAJOR is 0. A version word has the major number in bits 24 to 31 and the minor one in bits 16 to 23. The company is
// "Kestrel Creative Software" where none is given. Every get and set goes to the registry. A key path is limited to 260
// characters, terminator included.
//
// Metric numbers count without their sign. A type is the registry's: REG_DWORD, REG_SZ, REG_BINARY, REG_MULTI_SZ. A
// value of another type than the one asked for counts as absent.
//
// A null handle stands for no store; the handle with all bits set for the process's default one, which there is none
// of. A handle serves one thread at a time; the store is safe for any number of threads and processes.
#pragma once

#include "platform/base.h"
#include "platform/com.h"
#include "platform/registry.h"

using HKTMETRIC = struct KtMetric*;

// Open the key, and make it where it is missing. A null or empty `sub_key` means the Metrics key itself. What the
// system reports comes as 0x8007xxxx, and leaves a handle all the same, which has to be closed and has no values.
// E_INVALIDARG for a null `out`, `application` or `path`, or an empty `path`; E_OUTOFMEMORY. Without a handle `*out` is
// null.
KT_API HRESULT KtMetric_Open(HKTMETRIC* out, const WCHAR* application, uint32_t version, const WCHAR* sub_key) noexcept;
KT_API HRESULT KtMetric_OpenRegHiveAndVersion(HKTMETRIC* out, const WCHAR* application, uint32_t version,
                                              const WCHAR* company, const WCHAR* sub_key) noexcept;
// `path` is the whole path below the hive.
KT_API HRESULT KtMetric_OpenAppVersion(HKTMETRIC* out, const WCHAR* path, const WCHAR* sub_key) noexcept;
// A sub key of the Metrics key that `handle` lies at or below. E_FAIL for a null handle.
KT_API HRESULT KtMetric_OpenSubKey(HKTMETRIC* out, HKTMETRIC handle, const WCHAR* sub_key) noexcept;
KT_API HRESULT KtMetric_Close(HKTMETRIC handle) noexcept;  // always 0
// Deletes the handle's key with all below it, as far as it can. 0; E_FAIL for a null handle.
KT_API HRESULT KtMetric_CloseAndDeleteKey(HKTMETRIC handle) noexcept;

// Delete with all below: the application's key (All, UserMetrics), or the Metrics key or a sub key of it (Key); in
// HKEY_LOCAL_MACHINE and then HKEY_CURRENT_USER, UserMetrics in the latter only. A key that is not there counts as
// deleted. 0; E_FAIL when something is left; E_INVALIDARG, with nothing deleted, for a null or empty `application`, an
// empty `company`, or a path that is too long.
KT_API HRESULT KtMetric_DeleteAll(const WCHAR* application, uint32_t version) noexcept;
KT_API HRESULT KtMetric_DeleteAllHiveAndVersion(const WCHAR* application, uint32_t version,
                                                const WCHAR* company) noexcept;
KT_API HRESULT KtMetric_DeleteUserMetrics(const WCHAR* application, uint32_t version) noexcept;
KT_API HRESULT KtMetric_DeleteKey(const WCHAR* application, uint32_t version, const WCHAR* sub_key) noexcept;
KT_API HRESULT KtMetric_DeleteKeyHiveAndVersion(const WCHAR* application, uint32_t version, const WCHAR* company,
                                                const WCHAR* sub_key) noexcept;

// Numbers. An absent one is 0, or `fallback`.
KT_API uint32_t KtGetMetric(HKTMETRIC handle, int32_t metric) noexcept;
// Limited to `lowest`..`highest`, the fallback as well, unless the two are equal. Without a handle the fallback comes
// as it is.
KT_API uint32_t KtGetMetricEx(HKTMETRIC handle, int32_t metric, int32_t lowest, int32_t highest,
                              int32_t fallback) noexcept;
KT_API int32_t KtGetMetricBool(HKTMETRIC handle, int32_t metric, int32_t fallback) noexcept;  // 0 or 1
KT_API HRESULT KtSetMetric(HKTMETRIC handle, int32_t metric, uint32_t value) noexcept;        // 0 or E_FAIL
KT_API uint32_t KtGetMetricUsingName(HKTMETRIC handle, const WCHAR* name, uint32_t fallback) noexcept;
// 0; the system's code as 0x8007xxxx; E_FAIL without a handle or key.
KT_API HRESULT KtSetMetricUsingName(HKTMETRIC handle, const WCHAR* name, uint32_t value) noexcept;

// Any type, sizes in bytes; `data` null asks for the size only, and `got` may be null. 0; 0x8004E03C with the size
// needed when the buffer is too small; 0x8004E00A when the value has another type; E_UNEXPECTED without a handle or
// key. A value that is absent or cannot be read is 0 with a size of 0. A text (REG_SZ) is always terminated where the
// buffer has room for one character: cut for it, with 0x8004E03C, where it has to be. An absent one is an empty text,
// so that a buffer without room for a character gives 0x8004E03C and the size of one.
KT_API HRESULT KtGetMetricAny(HKTMETRIC handle, int32_t metric, uint32_t type, void* data, uint32_t size,
                              uint32_t* got) noexcept;

// Binary data, sizes in bytes. The buffer is zero behind what was read, and all of it when nothing was.
KT_API uint32_t KtGetMetricBinary(HKTMETRIC handle, int32_t metric, void* data, uint32_t size) noexcept;  // bytes read
// 0; 1 when absent; 0x8004E03C with the size needed; 0x8004E00A without a handle or key; E_INVALIDARG for a null `got`.
// `data` null asks for the size only.
KT_API HRESULT KtGetMetricBinaryEx(HKTMETRIC handle, int32_t metric, void* data, uint32_t size, uint32_t* got) noexcept;
KT_API HRESULT KtSetMetricBinary(HKTMETRIC handle, int32_t metric, const void* data, uint32_t size) noexcept;

// Binary data to the start of any stream, and from all of a stream on a global memory block, 1 to 2048 bytes, which
// stands at its end afterwards. E_UNEXPECTED when there is nothing, or not all of it could be moved; E_INVALIDARG for a
// null stream, one of another kind, or too many bytes; a failure of the stream as it is; E_FAIL when it cannot be
// stored.
KT_API HRESULT KtGetMetricStream(HKTMETRIC handle, int32_t metric, IStream* stream) noexcept;
KT_API HRESULT KtSetMetricStream(HKTMETRIC handle, int32_t metric, IStream* stream) noexcept;

// Texts into a buffer of `size` characters, zero behind the text. Return the length without the last terminator; for a
// multi-text those between its parts count. Where there is no text, or it is empty and `allow_empty` is 0, or the
// buffer is too small, the text is `fallback`, cut to fit, or empty when that is null.
KT_API int32_t KtGetMetricStringEx(HKTMETRIC handle, int32_t metric, WCHAR* buffer, int32_t size, const WCHAR* fallback,
                                   int32_t allow_empty) noexcept;
KT_API HRESULT KtSetMetricString(HKTMETRIC handle, int32_t metric, const WCHAR* text) noexcept;  // 0 or E_FAIL
KT_API int32_t KtGetMetricMultiStringEx(HKTMETRIC handle, int32_t metric, WCHAR* buffer, int32_t size,
                                        const WCHAR* fallback, int32_t allow_empty) noexcept;
// `size` in characters, all terminators included. 0 or E_FAIL.
KT_API HRESULT KtSetMetricMultiString(HKTMETRIC handle, int32_t metric, const WCHAR* data, uint32_t size) noexcept;

KT_API int32_t KtDoesMetricExist(HKTMETRIC handle, int32_t metric, uint32_t type) noexcept;  // 0 when it does, else 1
// 0; 1 without a handle or key; E_FAIL, also when there is no such value. The type of a named value is not read.
KT_API HRESULT KtDeleteMetric(HKTMETRIC handle, int32_t metric, uint32_t type) noexcept;
KT_API HRESULT KtDeleteMetricUsingName(HKTMETRIC handle, const WCHAR* name, uint32_t type) noexcept;
// A name for the value, of which `buffer` must hold 12 characters. Returns its length. For a number this is not the
// name that it is stored under, which has no letter.
KT_API int32_t KtMetricGetName(int32_t metric, uint32_t type, WCHAR* buffer) noexcept;

// Deletes a key with all below it. 1, also when it is not there; 0 on failure, and for a null or empty `sub_key`.
KT_API int32_t KtRegDeleteKey(HKEY key, const WCHAR* sub_key) noexcept;
// The number of keys below `sub_key`; 0 when it cannot be opened. `longest`, which may be null: characters that the
// longest of their names needs with its terminator, 0 when it cannot be opened.
KT_API uint32_t KtRegGetSubKeyCount(HKEY key, const WCHAR* sub_key, uint32_t* longest) noexcept;
