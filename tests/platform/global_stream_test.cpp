// Streams over blocks of the global heap.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/scoped.h"
#include "support/fail_each.h"
#include "support/temp_file.h"

namespace {

using Stream = platform::ComPtr<IStream>;

Stream NewStream(HGLOBAL block = nullptr) {
    Stream stream;
    EXPECT_EQ(CreateStreamOnHGlobal(block, TRUE, stream.Out()), S_OK);
    return stream;
}

HRESULT Seek(const Stream& stream, LONGLONG to, DWORD origin, ULONGLONG* position = nullptr) {
    LARGE_INTEGER move{};
    move.QuadPart = to;
    ULARGE_INTEGER at{};
    const HRESULT hr = stream->Seek(move, origin, &at);
    if (position) *position = at.QuadPart;
    return hr;
}

std::string Whole(const Stream& stream) {
    EXPECT_EQ(Seek(stream, 0, STREAM_SEEK_SET), S_OK);
    std::string text(200'000, '#');
    ULONG read = 0;
    EXPECT_EQ(stream->Read(text.data(), 200'000, &read), S_OK);
    return text.substr(0, read);
}

TEST(GlobalStream, ReadsAndWritesAtItsPosition) {
    const Stream stream = NewStream();
    EXPECT_EQ(Whole(stream), "");
    ULONG count = 9;
    EXPECT_EQ(stream->Write("hello", 5, &count), S_OK);
    EXPECT_EQ(count, 5u);
    EXPECT_EQ(Seek(stream, -3, STREAM_SEEK_CUR), S_OK);
    EXPECT_EQ(stream->Write("LP", 2, nullptr), S_OK);
    EXPECT_EQ(Whole(stream), "heLPo");
    EXPECT_EQ(Seek(stream, 3, STREAM_SEEK_END), S_OK);
    char byte = 0;
    EXPECT_EQ(stream->Read(&byte, 1, &count), S_OK);
    EXPECT_EQ(count, 0u) << "behind the end";
    EXPECT_EQ(stream->Write("x", 1, nullptr), S_OK);
    EXPECT_EQ(Whole(stream), std::string("heLPo\0\0\0x", 9)) << "a gap is zero";
    ULARGE_INTEGER size{};
    size.QuadPart = 2;
    EXPECT_EQ(stream->SetSize(size), S_OK);
    size.QuadPart = 4;
    EXPECT_EQ(stream->SetSize(size), S_OK);
    EXPECT_EQ(Whole(stream), std::string("he\0\0", 4)) << "nothing old comes back";
    STATSTG facts{};
    EXPECT_EQ(stream->Stat(&facts, 1), S_OK);
    EXPECT_EQ(facts.cbSize.QuadPart, 4u);

    ULONGLONG at = 0;
    EXPECT_NE(Seek(stream, -1, STREAM_SEEK_SET), S_OK);
    EXPECT_NE(Seek(stream, -5, STREAM_SEEK_END), S_OK);
    EXPECT_NE(Seek(stream, 0, 7), S_OK);
    EXPECT_EQ(Seek(stream, 0, STREAM_SEEK_CUR, &at), S_OK);
    EXPECT_EQ(at, 4u);
}

TEST(GlobalStream, GrowsWithItsBlock) {
    const HGLOBAL block = GlobalAlloc(GHND, 3);
    std::memcpy(GlobalLock(block), "abc", 3);
    GlobalUnlock(block);
    const Stream stream = NewStream(block);
    EXPECT_EQ(Whole(stream).substr(0, 3), "abc");
    std::string expected = Whole(stream);
    for (int i = 0; i < 3000; ++i) {
        const std::string part = std::to_string(i);
        ASSERT_EQ(stream->Write(part.data(), static_cast<ULONG>(part.size()), nullptr), S_OK);
        expected += part;
    }
    EXPECT_EQ(Whole(stream), expected);
    HGLOBAL used = nullptr;
    ASSERT_EQ(GetHGlobalFromStream(stream.Get(), &used), S_OK);
    ASSERT_GE(GlobalSize(used), expected.size());
    EXPECT_EQ(std::memcmp(GlobalLock(used), expected.data(), expected.size()), 0);
    GlobalUnlock(used);
}

TEST(GlobalStream, CopiesToAnother) {
    const Stream from = NewStream();
    const Stream to = NewStream();
    const std::string content(10'000, 'c');
    from->Write(content.data(), 10'000, nullptr);
    Seek(from, 0, STREAM_SEEK_SET);
    ULARGE_INTEGER all{}, read{}, written{};
    all.QuadPart = 50'000;
    EXPECT_EQ(from->CopyTo(to.Get(), all, &read, &written), S_OK);
    EXPECT_EQ(read.QuadPart, 10'000u);
    EXPECT_EQ(written.QuadPart, 10'000u);
    EXPECT_EQ(Whole(to), content);
}

TEST(GlobalStream, OnlyItsOwnBlockIsGiven) {
    const support::TempFile file;
    Stream other;
    ASSERT_EQ(SHCreateStreamOnFileW(file.Path(), STGM_CREATE | STGM_READWRITE, other.Out()), S_OK);
    HGLOBAL block = nullptr;
    EXPECT_EQ(GetHGlobalFromStream(other.Get(), &block), E_INVALIDARG);
    EXPECT_EQ(GetHGlobalFromStream(nullptr, &block), E_INVALIDARG);
    EXPECT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, nullptr), E_INVALIDARG);
    Stream none;
    EXPECT_NE(CreateStreamOnHGlobal(reinterpret_cast<HGLOBAL>(uintptr_t{0x1238}), TRUE, none.Out()), S_OK);
    EXPECT_EQ(none.Get(), nullptr);

    const HGLOBAL kept = GlobalAlloc(GHND, 8);
    Stream stream;
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

}  // namespace
