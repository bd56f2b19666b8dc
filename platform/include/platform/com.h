// The COM interfaces and helpers that the module speaks: IUnknown, IClassFactory, IStream, BSTR, file streams.
#pragma once

#include "platform/base.h"

#ifdef _WIN32

#include <objbase.h>
#include <objidl.h>
#include <oleauto.h>
#include <shlwapi.h>

#else

using BSTR = WCHAR*;

struct IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;
};

struct IClassFactory : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** out) = 0;
    virtual HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) = 0;
};

struct ISequentialStream : IUnknown {
    // Reads up to `bytes`; the end of the stream is S_FALSE (or S_OK) with fewer bytes than asked for.
    virtual HRESULT STDMETHODCALLTYPE Read(void* data, ULONG bytes, ULONG* read) = 0;
    virtual HRESULT STDMETHODCALLTYPE Write(const void* data, ULONG bytes, ULONG* written) = 0;
};

struct STATSTG {
    WCHAR* pwcsName;
    DWORD type;
    ULARGE_INTEGER cbSize;
    FILETIME mtime;
    FILETIME ctime;
    FILETIME atime;
    DWORD grfMode;
    DWORD grfLocksSupported;
    CLSID clsid;
    DWORD grfStateBits;
    DWORD reserved;
};

struct IStream : ISequentialStream {
    virtual HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER size) = 0;
    virtual HRESULT STDMETHODCALLTYPE CopyTo(IStream* target, ULARGE_INTEGER bytes, ULARGE_INTEGER* read,
                                             ULARGE_INTEGER* written) = 0;
    virtual HRESULT STDMETHODCALLTYPE Commit(DWORD flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE Revert() = 0;
    virtual HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER bytes, DWORD type) = 0;
    virtual HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER bytes, DWORD type) = 0;
    virtual HRESULT STDMETHODCALLTYPE Stat(STATSTG* stat, DWORD flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE Clone(IStream** out) = 0;
};

inline constexpr IID IID_IUnknown = {0x00000000, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IClassFactory = {0x00000001, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_ISequentialStream = {
    0x0C733A30, 0x2A1C, 0x11CE, {0xAD, 0xE5, 0x00, 0xAA, 0x00, 0x44, 0x77, 0x3D}};
inline constexpr IID IID_IStream = {0x0000000C, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

inline constexpr DWORD STGM_READ = 0;
inline constexpr DWORD STGM_WRITE = 1;
inline constexpr DWORD STGM_READWRITE = 2;
inline constexpr DWORD STGM_CREATE = 0x1000;
inline constexpr DWORD STREAM_SEEK_SET = 0;
inline constexpr DWORD STREAM_SEEK_CUR = 1;
inline constexpr DWORD STREAM_SEEK_END = 2;
inline constexpr DWORD CLSCTX_INPROC_SERVER = 1;
inline constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110u);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = static_cast<HRESULT>(0x80040154u);
inline constexpr HRESULT STG_E_INVALIDFUNCTION = static_cast<HRESULT>(0x80030001u);
inline constexpr HRESULT STG_E_INVALIDPOINTER = static_cast<HRESULT>(0x80030009u);
inline constexpr HRESULT STG_E_ACCESSDENIED = static_cast<HRESULT>(0x80030005u);
inline constexpr HRESULT STG_E_MEDIUMFULL = static_cast<HRESULT>(0x80030070u);

// A text block of the automation allocator; null when out of memory. Freed with SysFreeString, by either side of the
// module boundary.
extern "C" BSTR SysAllocString(const WCHAR* text) noexcept;
extern "C" BSTR SysAllocStringLen(const WCHAR* text, UINT length) noexcept;
extern "C" void SysFreeString(BSTR text) noexcept;
extern "C" UINT SysStringLen(BSTR text) noexcept;

// An object of a class of the system; REGDB_E_CLASSNOTREG for all but CLSID_CMultiLanguage.
extern "C" HRESULT CoCreateInstance(REFCLSID id, IUnknown* outer, DWORD context, REFIID interface_id,
                                    void** out) noexcept;

// Frees the name that IStream::Stat gives.
extern "C" void CoTaskMemFree(void* block) noexcept;

// A buffered stream over a file, used by one thread at a time; `mode` as STGM_*. STGM_CREATE replaces an older file.
// What was written reaches the file at the latest with Commit, Seek or the last Release; a Commit that fails keeps what
// is left and may be tried again. The end on Read is S_FALSE. Clone, Revert and the locks are E_NOTIMPL.
extern "C" HRESULT SHCreateStreamOnFileW(const WCHAR* path, DWORD mode, IStream** out) noexcept;

// A stream over a block of the global heap, used by one thread at a time; null makes a new block. With `free_block` the
// last Release frees the block. A stream that outgrows its block moves to another: only GetHGlobalFromStream knows the
// block of a stream that was written to. Reading at the end is S_OK. Clone, Revert and the locks are E_NOTIMPL.
extern "C" HRESULT CreateStreamOnHGlobal(HGLOBAL block, BOOL free_block, IStream** out) noexcept;
// E_INVALIDARG for any other stream. The block stays the stream's, and may be longer than what the stream holds.
extern "C" HRESULT GetHGlobalFromStream(IStream* stream, HGLOBAL* out) noexcept;

#endif
