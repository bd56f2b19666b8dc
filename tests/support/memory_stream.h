// A stream in memory that misbehaves on demand.
#pragma once

#include <algorithm>
#include <climits>
#include <string>
#include <utility>

#include "platform/com.h"

namespace support {

// Lives on the stack; counts nothing.
class MemoryStream final : public IStream {
  public:
    MemoryStream() = default;
    explicit MemoryStream(std::string text) : content(std::move(text)) {}

    std::string content;
    size_t position = 0;
    HRESULT atEnd = S_FALSE;   // what Read reports there
    int failAtCall = INT_MAX;  // the call, counted from 0, that fails
    HRESULT failure = STG_E_ACCESSDENIED;
    ULONG mostBytesAsked = 0;
    ULONG shortWriteBy = 0;  // bytes that the call failAtCall leaves out instead of failing
    int calls = 0;

    HRESULT STDMETHODCALLTYPE Read(void* data, ULONG bytes, ULONG* read) override {
        *read = 0;
        mostBytesAsked = std::max(mostBytesAsked, bytes);
        if (calls++ == failAtCall) return failure;
        *read = static_cast<ULONG>(content.copy(static_cast<char*>(data), bytes, position));
        position += *read;
        return *read == bytes ? S_OK : atEnd;
    }
    HRESULT STDMETHODCALLTYPE Write(const void* data, ULONG bytes, ULONG* written) override {
        *written = 0;
        const bool isFailing = calls++ == failAtCall;
        if (isFailing && shortWriteBy == 0) return failure;
        *written = isFailing ? bytes - shortWriteBy : bytes;
        content.append(static_cast<const char*>(data), *written);
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }
};

}  // namespace support
