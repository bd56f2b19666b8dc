// Frames and sound for a host in another process, by each means that a token has.
#include <cstring>

#include "tests/module/shared_memory_roles.h"
#include "tests/reader/reader_scene.h"

namespace reader_tests {
namespace {

class HostProcess : public ReaderTest {};

std::vector<uint8_t> BytesOf(const std::vector<float>& samples) {
    std::vector<uint8_t> bytes(samples.size() * 4);
    std::memcpy(bytes.data(), samples.data(), bytes.size());
    return bytes;
}

TEST_F(HostProcess, GetsFrames) {
    const auto file = OpenFile();
    const auto video = VideoOf(file.Get());
    for (const uint32_t type : {kKtMemoryPlain, kKtMemoryMapping}) {
        for (const uint32_t bits : {32u, 128u}) {
            SCOPED_TRACE(testing::Message() << type << " " << bits);
            const std::size_t picture = 10 * 6 * bits / 8;
            MemoryOwner host(type, picture + 20);
            const auto request = Request(bits);
            _ktframeinfo info;
            uint32_t bytes = 0;
            std::vector<uint8_t> expected(picture);
            const auto here = TokenOf(expected.data(), expected.size());
            ASSERT_EQ(video->ReadFrame(4, &request, &here, &info, &bytes), S_OK);

            _ktmemorytoken small = host.Token();
            small.size = static_cast<uint32_t>(picture - 1);
            EXPECT_EQ(video->ReadFrame(4, &request, &small, &info, &bytes), E_INVALIDARG);
            Told().decode_status = 9;
            EXPECT_EQ(video->ReadFrame(4, &request, &host.Token(), &info, &bytes), E_FAIL);
            Told().decode_status = 0;
            EXPECT_EQ(host.Memory(), host.FirstMemory());

            bytes = 0;
            EXPECT_EQ(video->ReadFrame(4, &request, &host.Token(), &info, &bytes), S_OK);
            EXPECT_EQ(bytes, picture);
            for (std::size_t i = picture; i < picture + 20; ++i) expected.push_back(OwnersByte(i));
            EXPECT_EQ(host.Memory(), expected);
            host.Die();
            bytes = 7;
            const HRESULT late = video->ReadFrame(4, &request, &host.Token(), &info, &bytes);
            // Memory that is only written is not looked at before the end, which reports nothing.
            EXPECT_EQ(late, type == kKtMemoryPlain ? S_OK : E_INVALIDARG);
        }
    }
}

TEST_F(HostProcess, GetsSound) {
    const auto file = OpenFile();
    const auto audio = AudioOf(file.Get());
    for (const uint32_t type : {kKtMemoryPlain, kKtMemoryMapping}) {
        SCOPED_TRACE(type);
        MemoryOwner host(type, 400);
        int32_t read = -1;
        Told().audio = {{8, 0}};
        EXPECT_EQ(audio->ReadSamples(0, &host.Token(), 50, &read), E_FAIL);
        EXPECT_EQ(host.Memory(), host.FirstMemory());

        std::vector<float> samples(100);
        const auto here = TokenOf(samples.data(), 400);
        ASSERT_EQ(audio->ReadSamples(0, &here, 50, &read), S_OK);
        std::vector<uint8_t> expected = BytesOf(samples);
        Told().audio = {{0, 30}, {8, 0}};  // a part, and the rest stays the host's
        EXPECT_EQ(audio->ReadSamples(0, &host.Token(), 50, &read), S_FALSE);
        EXPECT_EQ(read, 30);
        const std::vector<uint8_t> whole = expected;
        for (std::size_t i = 240; i < 400; ++i) expected[i] = OwnersByte(i);
        EXPECT_EQ(host.Memory(), expected);
        EXPECT_EQ(audio->ReadSamples(0, &host.Token(), 50, &read), S_OK);
        EXPECT_EQ(host.Memory(), whole);

        _ktmemorytoken wild = host.Token();
        wild.type = 2;
        EXPECT_EQ(audio->ReadSamples(0, &wild, 50, &read), E_INVALIDARG);
        EXPECT_EQ(read, 0);
        host.Die();
        EXPECT_EQ(audio->ReadSamples(0, &host.Token(), 50, &read), type == kKtMemoryPlain ? S_OK : E_INVALIDARG);
    }
}

}  // namespace
}  // namespace reader_tests
