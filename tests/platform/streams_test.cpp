// Streams over files.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/scoped.h"
#include "support/streams.h"
#include "support/temp_file.h"

namespace {

using namespace support;

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

TEST(FileStream, CopiesToAnother) {
    const support::TempFile from_name, to_name;
    const Stream from = OpenStream(from_name.Path(), STGM_CREATE | STGM_READWRITE);
    const Stream to = OpenStream(to_name.Path(), STGM_CREATE | STGM_READWRITE);
    const std::string content(10000, 'x');
    WriteText(from, content + "end");
    SeekTo(from, 1, STREAM_SEEK_SET);
    for (const ULONGLONG copied : {9000u, 1002u}) {
        ULARGE_INTEGER read{}, written{};
        EXPECT_EQ(from->CopyTo(to.Get(), Size(9000), &read, &written), S_OK);
        EXPECT_TRUE(read.QuadPart == copied && written.QuadPart == copied) << copied;
    }
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

}  // namespace
