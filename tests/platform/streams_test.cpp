// Streams over files and over blocks of the global heap.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/scoped.h"
#include "support/fail_each.h"
#include "support/temp_file.h"

namespace {

using Stream = platform::ComPtr<IStream>;

Stream OpenStream(const WCHAR* path, DWORD mode) {
    Stream stream;
    SHCreateStreamOnFileW(path, mode, stream.Out());
    return stream;
}

ULARGE_INTEGER Size(ULONGLONG bytes) {
    ULARGE_INTEGER size{};
    size.QuadPart = bytes;
    return size;
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
        for (const std::size_t piece : {1u, 3u, 1000u, 65536u, 70000u, 1u, 200000u, 65535u}) {
            content += std::string(piece, static_cast<char>('a' + piece % 26));
            WriteText(stream, content.substr(content.size() - piece));
        }
    }
    for (const ULONG piece : {7u, 4096u, 65536u, 65537u, 1u << 20}) {
        const Stream stream = OpenStream(name.Path(), STGM_READ);
        std::string found;
        while (found.size() + piece <= content.size()) found += ReadText(stream, piece, S_OK);
        found += ReadText(stream, piece, S_FALSE);
        EXPECT_TRUE(found == content) << piece;
    }
}

TEST(FileStream, MixesReadingWritingAndSeeking) {
    const support::TempFile name;
    const Stream stream = OpenStream(name.Path(), STGM_CREATE | STGM_READWRITE);
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
    EXPECT_EQ(stream->SetSize(Size(8)), S_OK);
    EXPECT_EQ(ReadText(stream, 9, S_FALSE), "B7");
    STATSTG stat{};
    EXPECT_EQ(stream->Stat(&stat, 1), S_OK);  // without a name
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
    void* other = reinterpret_cast<void*>(1);
    EXPECT_EQ(reader->QueryInterface(IID_IClassFactory, &other), E_NOINTERFACE);
    EXPECT_EQ(other, nullptr);
    ASSERT_EQ(reader->QueryInterface(IID_IStream, &other), S_OK);
    static_cast<IStream*>(other)->Release();
}

TEST(TextBlocks, HoldTheirLength) {
    const BSTR with_zero = SysAllocStringLen(W("a\0c"), 3);
    EXPECT_EQ(WStringView(with_zero, 4), WStringView(W("a\0c"), 4));
    for (const auto& [block, length] : {std::pair{SysAllocString(W("abc")), 3u}, {with_zero, 3u}, {BSTR{}, 0u}}) {
        EXPECT_EQ(SysStringLen(block), length);
        SysFreeString(block);
    }
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysAllocStringLen(nullptr, 0xFFFFFFFF), nullptr);
}

#ifndef _WIN32

Stream NewStream(HGLOBAL block = nullptr) {
    Stream stream;
    EXPECT_EQ(CreateStreamOnHGlobal(block, TRUE, stream.Out()), S_OK);
    return stream;
}

std::string Whole(const Stream& stream) {
    EXPECT_EQ(SeekTo(stream, 0, STREAM_SEEK_SET), S_OK);
    return ReadText(stream, 200'000, S_OK);
}

TEST(GlobalStream, ReadsAndWritesAtItsPosition) {
    const Stream stream = NewStream();
    WriteText(stream, "hello");
    EXPECT_EQ(SeekTo(stream, -3, STREAM_SEEK_CUR), S_OK);
    WriteText(stream, "LP");
    EXPECT_EQ(Whole(stream), "heLPo");
    EXPECT_EQ(SeekTo(stream, 3, STREAM_SEEK_END), S_OK);
    EXPECT_EQ(ReadText(stream, 1, S_OK), "") << "behind the end";
    WriteText(stream, "x");
    EXPECT_EQ(Whole(stream), std::string("heLPo\0\0\0x", 9)) << "a gap is zero";
    for (const ULONGLONG size : {2, 4}) EXPECT_EQ(stream->SetSize(Size(size)), S_OK);
    EXPECT_EQ(Whole(stream), std::string("he\0\0", 4)) << "nothing old comes back";
    WriteText(stream, "old");
    EXPECT_EQ(stream->SetSize(Size(2)), S_OK);
    WriteText(stream, "y");
    EXPECT_EQ(Whole(stream), std::string("he\0\0\0\0\0y", 8)) << "in a gap as little";
    STATSTG facts{};
    EXPECT_EQ(stream->Stat(&facts, 1), S_OK);
    EXPECT_EQ(facts.cbSize.QuadPart, 8u);
    ULONGLONG at = 0;
    EXPECT_NE(SeekTo(stream, -1, STREAM_SEEK_SET), S_OK);
    EXPECT_NE(SeekTo(stream, -9, STREAM_SEEK_END), S_OK);
    EXPECT_NE(SeekTo(stream, 0, 7), S_OK);
    EXPECT_EQ(SeekTo(stream, 0, STREAM_SEEK_CUR, &at), S_OK);
    EXPECT_EQ(at, 8u);
}

TEST(GlobalStream, GrowsWithItsBlock) {
    const HGLOBAL block = GlobalAlloc(GHND, 3);
    std::memcpy(GlobalLock(block), "abc", 3);
    GlobalUnlock(block);
    const Stream stream = NewStream(block);
    std::string expected = Whole(stream);
    EXPECT_EQ(expected.substr(0, 3), "abc");
    for (int i = 0; i < 3000; ++i) {
        WriteText(stream, std::to_string(i));
        expected += std::to_string(i);
    }
    EXPECT_EQ(Whole(stream), expected);
    HGLOBAL used = nullptr;
    ASSERT_EQ(GetHGlobalFromStream(stream.Get(), &used), S_OK);
    ASSERT_GE(GlobalSize(used), expected.size());
    EXPECT_EQ(std::memcmp(GlobalLock(used), expected.data(), expected.size()), 0);
    GlobalUnlock(used);
}

TEST(GlobalStream, OnlyItsOwnBlockIsGiven) {
    const support::TempFile file;
    const Stream other = OpenStream(file.Path(), STGM_CREATE | STGM_READWRITE);
    HGLOBAL block = nullptr;
    for (IStream* const none : {other.Get(), static_cast<IStream*>(nullptr)}) {
        EXPECT_EQ(GetHGlobalFromStream(none, &block), E_INVALIDARG);
    }
    EXPECT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, nullptr), E_INVALIDARG);
    Stream none, stream;
    EXPECT_NE(CreateStreamOnHGlobal(reinterpret_cast<HGLOBAL>(uintptr_t{0x1238}), TRUE, none.Out()), S_OK);
    EXPECT_EQ(none.Get(), nullptr);

    const HGLOBAL kept = GlobalAlloc(GHND, 8);
    ASSERT_EQ(CreateStreamOnHGlobal(kept, FALSE, stream.Out()), S_OK);
    ASSERT_EQ(GetHGlobalFromStream(stream.Get(), &block), S_OK);
    EXPECT_EQ(block, kept);
    stream = Stream();
    EXPECT_EQ(GlobalFree(kept), nullptr) << "the caller's to free";
}

TEST(GlobalStream, FailsCleanlyWithoutMemory) {
    const auto use = [] {
        Stream stream;
        return SUCCEEDED(CreateStreamOnHGlobal(nullptr, TRUE, stream.Out())) &&
               SUCCEEDED(stream->Write("12345", 5, nullptr)) && SUCCEEDED(stream->Write("6", 1, nullptr));
    };
    support::FailEach<support::FailingCall>(use, [](bool succeeded, bool hit) { EXPECT_EQ(succeeded, !hit); });
}

#endif

}  // namespace
