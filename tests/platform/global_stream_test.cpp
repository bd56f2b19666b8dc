// Streams over blocks of the global heap.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/scoped.h"
#include "support/fail_each.h"
#include "support/streams.h"
#include "support/temp_file.h"

namespace {

using namespace support;

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

}  // namespace
