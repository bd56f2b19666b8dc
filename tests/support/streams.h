// Streams used in few words.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/scoped.h"

namespace support {

using Stream = platform::ComPtr<IStream>;

inline Stream OpenStream(const WCHAR* path, DWORD mode) {
    Stream stream;
    SHCreateStreamOnFileW(path, mode, stream.Out());
    return stream;
}

inline ULARGE_INTEGER Size(ULONGLONG bytes) {
    ULARGE_INTEGER size{};
    size.QuadPart = bytes;
    return size;
}

inline HRESULT SeekTo(const Stream& stream, LONGLONG move, DWORD origin, ULONGLONG* at = nullptr) {
    LARGE_INTEGER by;
    by.QuadPart = move;
    ULARGE_INTEGER position{};
    const HRESULT hr = stream->Seek(by, origin, &position);
    if (at) *at = position.QuadPart;
    return hr;
}

inline std::string ReadText(const Stream& stream, ULONG bytes, HRESULT expected) {
    std::string text(bytes, '~');
    ULONG read = 0;
    EXPECT_EQ(stream->Read(text.data(), bytes, &read), expected);
    return text.substr(0, read);
}

inline void WriteText(const Stream& stream, const std::string& text) {
    ULONG written = 0;
    EXPECT_EQ(stream->Write(text.data(), static_cast<ULONG>(text.size()), &written), S_OK);
    EXPECT_EQ(written, text.size());
}

}  // namespace support
