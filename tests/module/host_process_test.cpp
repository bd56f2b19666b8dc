// Frames and sound for a host in another process, by each means that a token has.
#include "tests/module/shared_memory_roles.h"
#include "tests/reader/reader_scene.h"

namespace reader_tests {
namespace {

class HostProcess : public ReaderTest {};

// What a call delivers into memory of this process.
template <class Read>
std::vector<uint8_t> DeliveredHere(std::size_t bytes, Read read) {
    std::vector<uint8_t> memory(bytes);
    const auto token = TokenOf(memory.data(), bytes);
    EXPECT_EQ(read(token), S_OK);
    return memory;
}

// Its first bytes are those of `delivered`, and the others the owner's.
std::vector<uint8_t> OwnersMemory(std::vector<uint8_t> delivered, std::size_t kept, std::size_t bytes) {
    delivered.resize(bytes);
    for (std::size_t i = kept; i < bytes; ++i) delivered[i] = OwnersByte(i);
    return delivered;
}

// Memory that is only written is not looked at before the end, which reports nothing.
HRESULT ResultForTheDead(uint32_t type) { return type == kKtMemoryPlain ? S_OK : E_INVALIDARG; }

TEST_F(HostProcess, GetsFrames) {
    constexpr std::size_t kPicture = 10 * 6 * 16;
    const auto file = OpenFile();
    const auto video = VideoOf(file.Get());
    const auto read = [&](const _ktmemorytoken& token) {
        const auto request = Request(128);
        _ktframeinfo info;
        uint32_t bytes = 0;
        return video->ReadFrame(4, &request, &token, &info, &bytes);
    };
    for (const uint32_t type : {kKtMemoryPlain, kKtMemoryMapping}) {
        SCOPED_TRACE(type);
        MemoryOwner host(type, kPicture + 20);
        Told().decode_status = 9;
        EXPECT_EQ(read(host.Token()), E_FAIL);
        Told().decode_status = 0;
        EXPECT_EQ(host.Memory(), host.FirstMemory());
        EXPECT_EQ(read(host.Token()), S_OK);
        EXPECT_EQ(host.Memory(), OwnersMemory(DeliveredHere(kPicture, read), kPicture, kPicture + 20));
        host.Die();
        EXPECT_EQ(read(host.Token()), ResultForTheDead(type));
    }
}

TEST_F(HostProcess, GetsSound) {
    const auto file = OpenFile();
    const auto audio = AudioOf(file.Get());
    int32_t samples = -1;
    const auto read = [&](const _ktmemorytoken& token) { return audio->ReadSamples(0, &token, 50, &samples); };
    const std::vector<uint8_t> sound = DeliveredHere(400, read);
    for (const uint32_t type : {kKtMemoryPlain, kKtMemoryMapping}) {
        SCOPED_TRACE(type);
        MemoryOwner host(type, 400);
        Told().audio = {{8, 0}};
        EXPECT_EQ(read(host.Token()), E_FAIL);
        EXPECT_EQ(host.Memory(), host.FirstMemory());
        Told().audio = {{0, 30}, {8, 0}};
        EXPECT_EQ(read(host.Token()), S_FALSE);
        EXPECT_EQ(samples, 30);
        EXPECT_EQ(host.Memory(), OwnersMemory(sound, 240, 400));
        EXPECT_EQ(read(host.Token()), S_OK);
        EXPECT_EQ(host.Memory(), sound);
        host.Die();
        EXPECT_EQ(read(host.Token()), ResultForTheDead(type));
    }
}

}  // namespace
}  // namespace reader_tests
