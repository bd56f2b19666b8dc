#include <gtest/gtest.h>

#include "platform/scoped.h"
#include "support/temp_file.h"

namespace {

using Stream = platform::ComPtr<IStream>;

Stream OpenStream(const WCHAR* path, DWORD mode) {
    Stream stream;
    SHCreateStreamOnFileW(path, mode, stream.Out());
    return stream;
}

HRESULT SeekTo(const Stream& stream, LONGLONG move, DWORD origin, ULONGLONG* at = nullptr) {
    LARGE_INTEGER by;
    by.QuadPart = move;
    ULARGE_INTEGER position{};
    const HRESULT hr = stream->Seek(by, origin, &position);
    if (at) *at = position.QuadPart;
    return hr;
}

std::string ReadText(const Stream& stream, ULONG bytes, HRESULT expected) {
    std::string text(bytes, '~');
    ULONG read = 0;
    EXPECT_EQ(stream->Read(text.data(), bytes, &read), expected);
    return text.substr(0, read);
}

void WriteText(const Stream& stream, const std::string& text) {
    ULONG written = 0;
    EXPECT_EQ(stream->Write(text.data(), static_cast<ULONG>(text.size()), &written), S_OK);
    EXPECT_EQ(written, text.size());
}

TEST(FileStream, WritesThenReadsInPiecesOfAnySize) {
    const support::TempFile name;
    std::string content;
    {
        const Stream stream = OpenStream(name.Path(), STGM_CREATE | STGM_WRITE);
        ASSERT_TRUE(stream);
        for (const std::size_t piece : {1u, 3u, 1000u, 65536u, 70000u, 1u, 200000u, 65535u}) {
            std::string text(piece, static_cast<char>('a' + piece % 26));
            content += text;
            WriteText(stream, text);
        }
    }
    for (const ULONG piece : {7u, 4096u, 65536u, 65537u, 1u << 20}) {
        const Stream stream = OpenStream(name.Path(), STGM_READ);
        ASSERT_TRUE(stream);
        std::string found;
        for (;;) {
            std::string text(piece, '~');
            ULONG read = 0;
            const HRESULT hr = stream->Read(text.data(), piece, &read);
            ASSERT_TRUE(SUCCEEDED(hr));
            found += text.substr(0, read);
            if (read < piece) {
                EXPECT_EQ(hr, S_FALSE);
                break;
            }
            EXPECT_EQ(hr, S_OK);
        }
        EXPECT_TRUE(found == content) << piece;
    }
}

TEST(FileStream, MixesReadingWritingAndSeeking) {
    const support::TempFile name;
    const Stream stream = OpenStream(name.Path(), STGM_CREATE | STGM_READWRITE);
    ASSERT_TRUE(stream);
    WriteText(stream, "0123456789");
    EXPECT_EQ(SeekTo(stream, 2, STREAM_SEEK_SET), S_OK);
    EXPECT_EQ(ReadText(stream, 3, S_OK), "234");
    WriteText(stream, "AB");
    EXPECT_EQ(ReadText(stream, 9, S_FALSE), "789");
    ULONGLONG at = 0;
    EXPECT_EQ(SeekTo(stream, -4, STREAM_SEEK_END, &at), S_OK);
    EXPECT_EQ(at, 6u);
    EXPECT_EQ(ReadText(stream, 4, S_OK), "B789");
    EXPECT_EQ(SeekTo(stream, -8, STREAM_SEEK_CUR, &at), S_OK);
    EXPECT_EQ(at, 2u);
    EXPECT_TRUE(FAILED(SeekTo(stream, -3, STREAM_SEEK_CUR)));
    EXPECT_TRUE(FAILED(SeekTo(stream, 0, 3)));
    EXPECT_EQ(ReadText(stream, 4, S_OK), "234A");

    ULARGE_INTEGER size;
    size.QuadPart = 8;
    EXPECT_EQ(stream->SetSize(size), S_OK);
    EXPECT_EQ(ReadText(stream, 9, S_FALSE), "B7");
    STATSTG stat{};
    constexpr DWORD kNoName = 1;
    EXPECT_EQ(stream->Stat(&stat, kNoName), S_OK);
    EXPECT_EQ(stat.cbSize.QuadPart, 8u);
    EXPECT_EQ(stat.pwcsName, nullptr);
}

TEST(FileStream, CommitMakesWhatWasWrittenVisible) {
    const support::TempFile name;
    const Stream writer = OpenStream(name.Path(), STGM_CREATE | STGM_WRITE);
    WriteText(writer, "abc");
    EXPECT_EQ(writer->Commit(0), S_OK);
    EXPECT_EQ(ReadText(OpenStream(name.Path(), STGM_READ), 9, S_FALSE), "abc");
}

TEST(FileStream, CopiesToAnother) {
    const support::TempFile from_name;
    const support::TempFile to_name;
    const Stream from = OpenStream(from_name.Path(), STGM_CREATE | STGM_READWRITE);
    const Stream to = OpenStream(to_name.Path(), STGM_CREATE | STGM_READWRITE);
    const std::string content(10000, 'x');
    WriteText(from, content + "end");
    SeekTo(from, 1, STREAM_SEEK_SET);
    ULARGE_INTEGER bytes;
    ULARGE_INTEGER read{};
    ULARGE_INTEGER written{};
    bytes.QuadPart = 9000;
    EXPECT_EQ(from->CopyTo(to.Get(), bytes, &read, &written), S_OK);
    EXPECT_EQ(read.QuadPart, 9000u);
    EXPECT_EQ(written.QuadPart, 9000u);
    EXPECT_EQ(from->CopyTo(to.Get(), bytes, &read, &written), S_OK);
    EXPECT_EQ(read.QuadPart, 1002u);
    SeekTo(to, 0, STREAM_SEEK_SET);
    EXPECT_TRUE(ReadText(to, 20000, S_FALSE) == content.substr(1) + "end");
}

TEST(FileStream, Failures) {
    const support::TempFile name;
    IStream* none = reinterpret_cast<IStream*>(1);
    EXPECT_EQ(SHCreateStreamOnFileW(name.Path(), STGM_READ, &none), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(none, nullptr);
    const Stream writer = OpenStream(name.Path(), STGM_CREATE | STGM_WRITE);
    const Stream reader = OpenStream(name.Path(), STGM_READ);
    char c = 0;
    ULONG count = 9;
    EXPECT_NE(writer->Read(&c, 1, &count), S_OK);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(reader->Write(&c, 1, &count), STG_E_ACCESSDENIED);
    IStream* clone = nullptr;
    EXPECT_EQ(reader->Clone(&clone), E_NOTIMPL);
    EXPECT_EQ(clone, nullptr);
    void* other = reinterpret_cast<void*>(1);
    EXPECT_EQ(reader->QueryInterface(IID_IClassFactory, &other), E_NOINTERFACE);
    EXPECT_EQ(other, nullptr);
    ASSERT_EQ(reader->QueryInterface(IID_IStream, &other), S_OK);
    static_cast<IStream*>(other)->Release();
}

TEST(TextBlocks, HoldTheirLength) {
    const BSTR text = SysAllocString(W("abc"));
    EXPECT_EQ(SysStringLen(text), 3u);
    const BSTR with_zero = SysAllocStringLen(W("a\0c"), 3);
    EXPECT_EQ(SysStringLen(with_zero), 3u);
    EXPECT_EQ(with_zero[2], 'c');
    EXPECT_EQ(with_zero[3], 0);
    const BSTR empty = SysAllocString(W(""));
    EXPECT_EQ(SysStringLen(empty), 0u);
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysAllocStringLen(nullptr, 0xFFFFFFFF), nullptr);
    EXPECT_EQ(SysStringLen(nullptr), 0u);
    for (const BSTR block : {text, with_zero, empty, BSTR{}}) SysFreeString(block);
}

}  // namespace
