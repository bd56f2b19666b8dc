// Memory tokens, in this process and between real ones.
#include "reader/memory_token.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "support/open_files.h"
#include "tests/module/shared_memory_roles.h"
#include "tests/reader/reader_scene.h"

namespace reader_tests {
namespace {

using support::OpenFiles;

constexpr std::size_t kBytes = 300;

_ktmemorytoken OwnToken(std::vector<uint8_t>& memory) { return TokenOf(memory.data(), memory.size()); }

// Memory of this process whose address does not fit in 32 bits, wherever the heap lies.
class HighMemory {
  public:
    HighMemory() {
        const uint64_t address = reinterpret_cast<uintptr_t>(view_.Get());
        if (view_) bytes_ = reinterpret_cast<uint8_t*>(std::max(address, uint64_t{1} << 32));
    }
    [[nodiscard]] uint8_t* Bytes() const { return bytes_; }
    [[nodiscard]] _ktmemorytoken Token() const { return TokenOf(bytes_, kBytes); }
    void Fill(uint8_t value) const { std::fill_n(bytes_, kBytes, value); }
    [[nodiscard]] std::vector<uint8_t> Content() const { return {bytes_, bytes_ + kBytes}; }

  private:
    // 4 GiB and some more, of which only what is touched is there.
    platform::ScopedHandle mapping_{
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 1, 65536, nullptr)};
    platform::ScopedView view_{MapViewOfFile(mapping_.Get(), FILE_MAP_READ | FILE_MAP_WRITE, 0, 0, 0)};
    uint8_t* bytes_ = nullptr;
};

void ExpectFailed(CMappingOfKtMemoryToken& mapping) {
    EXPECT_EQ(mapping.Pointer(), nullptr);
    EXPECT_EQ(mapping.DataSize(), -1);
    void* pointer = &mapping;
    EXPECT_EQ(mapping.GetPointer(&pointer), E_FAIL);
    EXPECT_EQ(pointer, nullptr);
    mapping.Dispose();
    mapping.Close();
    EXPECT_EQ(mapping.DataSize(), -1);
}

TEST(MemoryToken, OfThisProcessIsUsedInPlace) {
    std::vector<uint8_t> memory(kBytes, 9);
    for (const uint32_t type : {0u, 1u, 2u}) {
        for (const int32_t offset : {0, 20, -20}) {
            _ktmemorytoken token = OwnToken(memory);
            token.address += 50, token.offset = offset, token.type = type;
            CMappingOfKtMemoryToken mapping(token, kKtTokenWrite);
            EXPECT_EQ(mapping.Pointer(), memory.data() + 50 + offset);
            EXPECT_EQ(mapping.DataSize(), static_cast<int32_t>(kBytes));
            void* pointer = nullptr;
            EXPECT_EQ(mapping.GetPointer(&pointer), S_OK);
            EXPECT_EQ(pointer, mapping.Pointer());
            mapping.Dispose();
            EXPECT_EQ(mapping.Pointer(), nullptr);
            mapping.Close();
        }
    }
    EXPECT_EQ(memory, std::vector<uint8_t>(kBytes, 9));
}

TEST(MemoryToken, OfAnotherProcessCarriesBothWays) {
    const struct {
        uint32_t type, access;
        bool reads;   // the owner's data is there at first
        bool writes;  // the owner finds what was written
    } kRows[] = {{0, 2, false, true}, {0, 4, true, false},   {0, 6, true, true},
                 {0, 0, true, true},  {0, 0xF8, true, true}, {1, 2, true, true},
                 {1, 6, true, true},  {1, 0, true, true},    {1, 4, true, false}};
    for (const auto& row : kRows) {
        SCOPED_TRACE(testing::Message() << row.type << " " << row.access);
        MemoryOwner owner(row.type, kBytes);
        const auto open_files = OpenFiles();
        std::vector<uint8_t> expected = owner.FirstMemory();
        CMappingOfKtMemoryToken mapping(owner.Token(), row.access);
        auto* const data = static_cast<uint8_t*>(mapping.Pointer());
        ASSERT_NE(data, nullptr);
        EXPECT_EQ(mapping.DataSize(), static_cast<int32_t>(kBytes));
        if (row.reads) {
            EXPECT_EQ(std::memcmp(data, expected.data(), kBytes), 0);
        } else {
            EXPECT_EQ(std::count(data, data + kBytes, 0), static_cast<int>(kBytes));
        }
        if (row.writes || row.type == kKtMemoryPlain) std::memset(data, 0x3C, kBytes);
        if (row.writes) std::fill(expected.begin(), expected.end(), 0x3C);
        EXPECT_EQ(owner.Memory(), row.type == kKtMemoryPlain ? owner.FirstMemory() : expected);
        mapping.Dispose();
        EXPECT_EQ(mapping.Pointer(), nullptr);
        EXPECT_EQ(owner.Memory(), expected);
        mapping.Close();
        EXPECT_EQ(OpenFiles(), open_files);
        EXPECT_EQ(owner.End(), 0u);
    }
}

TEST(MemoryToken, KeepsWhatWasNotFilled) {
    MemoryOwner owner(kKtMemoryPlain, kBytes);
    std::vector<uint8_t> expected = owner.FirstMemory();
    for (const uint32_t kept : {0u, 10u, 1000u}) {
        CMappingOfKtMemoryToken mapping(owner.Token(), kKtTokenWrite);
        std::memset(mapping.Pointer(), 0x77, kBytes);
        mapping.KeepFirst(kept);
        mapping.Dispose();
        std::fill_n(expected.begin(), std::min<std::size_t>(kept, kBytes), 0x77);
        EXPECT_EQ(owner.Memory(), expected);
    }
}

TEST(MemoryToken, ThatCannotBeUsedLeavesNothingBehind) {
    MemoryOwner plain(kKtMemoryPlain, kBytes);
    MemoryOwner mapped(kKtMemoryMapping, kBytes);
    _ktmemorytoken wild[10] = {plain.Token(),  plain.Token(),  plain.Token(),  plain.Token(),  mapped.Token(),
                               mapped.Token(), mapped.Token(), mapped.Token(), mapped.Token(), mapped.Token()};
    wild[0].type = 2;
    wild[1].address = 0;
    // Where nothing is. (Behind the owner's memory a platform may find gigabytes that it only reserved.)
    wild[2].address = 0x7FFF00000000, wild[2].size = 0x0FFFFFFF;
    wild[3].processId = 0x7FFFFFF0;
    wild[4].size = 0x7FFFFFFF;
    wild[5].offset = -1;
    wild[6].offset = 0x7FFFFFFF;
    wild[7].mapping = reinterpret_cast<HANDLE>(uintptr_t{0x123456789});
    wild[8].mapping = INVALID_HANDLE_VALUE;
    wild[9].processId = 0;
    const auto open_files = OpenFiles();
    for (const auto& token : wild) {
        SCOPED_TRACE(&token - wild);
        CMappingOfKtMemoryToken mapping(token, kKtTokenWrite | kKtTokenRead);
        ExpectFailed(mapping);
        EXPECT_EQ(OpenFiles(), open_files);
    }
    EXPECT_EQ(plain.Memory(), plain.FirstMemory());
    EXPECT_EQ(mapped.Memory(), mapped.FirstMemory());
}

TEST(MemoryToken, StandsAnOwnerThatDies) {
    for (const uint32_t type : {kKtMemoryPlain, kKtMemoryMapping}) {
        MemoryOwner owner(type, kBytes);
        const auto open_files = OpenFiles();
        CMappingOfKtMemoryToken held(owner.Token(), kKtTokenWrite);
        ASSERT_NE(held.Pointer(), nullptr);
        owner.Die();
        std::memset(held.Pointer(), 1, kBytes);  // still ours
        held.Dispose();                          // where it went nobody can tell
        CMappingOfKtMemoryToken late(owner.Token(), kKtTokenWrite | kKtTokenRead);
        ExpectFailed(late);
        EXPECT_EQ(OpenFiles(), open_files);
    }
}

TEST(MemoryToken, AssignmentIsAPlainCopy) {
    MemoryOwner owner(kKtMemoryPlain, kBytes);
    std::vector<uint8_t> memory(kBytes);
    CMappingOfKtMemoryToken own(OwnToken(memory), kKtTokenWrite);
    {
        CMappingOfKtMemoryToken foreign(owner.Token(), kKtTokenWrite);
        own = foreign;
        EXPECT_EQ(own.Pointer(), foreign.Pointer());
        std::memset(own.Pointer(), 0x11, kBytes);
        // Only one of the two may end it.
        CMappingOfKtMemoryToken nothing(OwnToken(memory), kKtTokenWrite);
        foreign = nothing;
    }
    own.Dispose();
    EXPECT_EQ(owner.Memory(), std::vector<uint8_t>(kBytes, 0x11));
}

TEST(OutOfProcessToken, HandsOnWhatCanBeReached) {
    std::vector<uint8_t> memory(kBytes);
    const struct {
        uint32_t type;
        int32_t direct;
        uint64_t address;
        int32_t offset;
    } kRows[] = {{1, 0, 0x7FFF00000000, 0}, {1, 1, 0, 0},         {0, 1, 0x7FFF00000000, 0}, {0, 0, 0x10000, 0},
                 {0, 0, 0x100000001, -2},   {0, 0, 0xFFFFFFFF, 0}};
    for (const auto& row : kRows) {
        _ktmemorytoken token = OwnToken(memory);
        token.type = row.type, token.address = row.address, token.offset = row.offset;
        token.mapping = reinterpret_cast<HANDLE>(uintptr_t{0x1234});
        _ktmemorytoken out = {};
        {
            COutOfProcessMemoryToken shared(token, 6, row.direct);
            EXPECT_EQ(shared.GetMemoryToken(out), S_OK);
            EXPECT_EQ(std::memcmp(&out, &token, sizeof token), 0) << &row - kRows;
        }
    }
}

TEST(OutOfProcessToken, CarriesMemoryToAProcessAndBack) {
    for (const uint32_t access : {0u, 2u, 4u, 6u}) {
        SCOPED_TRACE(access);
        support::ChildProcess user("token_user", {std::to_string(access)});
        const HighMemory memory;
        ASSERT_NE(memory.Bytes(), nullptr);
        memory.Fill(5);
        const auto open_files = OpenFiles();
        _ktmemorytoken token = memory.Token();
        token.size -= 10;
        token.offset = 10;
        {
            COutOfProcessMemoryToken shared(token, access, 0);
            _ktmemorytoken out = {};
            ASSERT_EQ(shared.GetMemoryToken(out), S_OK);
            EXPECT_EQ(out.type, kKtMemoryMapping);
            EXPECT_EQ(out.size, kBytes - 10);
            EXPECT_EQ(out.mappedSize, kBytes - 10);
            EXPECT_EQ(out.offset, 0);
            user.WriteLine(LineOf(out));
            const unsigned there = access == 2 ? 0 : 5 * (kBytes - 10);
            EXPECT_EQ(user.ReadLine(), std::to_string(there));
            EXPECT_EQ(memory.Content(), std::vector<uint8_t>(kBytes, 5));  // not before the end
        }
        std::vector<uint8_t> expected(kBytes, 5);
        const uint8_t back = access == 2 ? 1 : access == 4 ? 5 : 6;
        std::fill(expected.begin() + 10, expected.end(), back);
        EXPECT_EQ(memory.Content(), expected);
        EXPECT_EQ(OpenFiles(), open_files);
        EXPECT_EQ(user.Wait(), 0u);
    }
}

TEST(OutOfProcessToken, FailsWithoutMemoryToShare) {
    const HighMemory memory;
    ASSERT_NE(memory.Bytes(), nullptr);
    _ktmemorytoken tokens[3] = {memory.Token(), memory.Token(), memory.Token()};
    tokens[0].size = 0;
    tokens[1].type = 2, tokens[1].processId = 0x7FFFFFF0;
    tokens[2].processId = 0x7FFFFFF0;
    const auto open_files = OpenFiles();
    for (_ktmemorytoken& token : tokens) {
        _ktmemorytoken out = {};
        out.size = 77;
        COutOfProcessMemoryToken shared(token, 6, 0);
        EXPECT_EQ(shared.GetMemoryToken(out), E_FAIL);
        EXPECT_EQ(out.size, 77u);
    }
    EXPECT_EQ(OpenFiles(), open_files);
}

TEST(MappedToken, IsMadeAndFreed) {
    _ktmemorytoken token;
    std::memset(static_cast<void*>(&token), 0x55, sizeof token);
    ASSERT_EQ(CreateMappedToken(token, 5000, 1), S_OK);
    EXPECT_EQ(token.size, 5000u);
    EXPECT_EQ(token.mappedSize, 5000u);
    EXPECT_EQ(token.offset, 0);
    EXPECT_EQ(token.type, 1u);
    EXPECT_EQ(token.processId, GetCurrentProcessId());
    auto* const data = reinterpret_cast<uint8_t*>(token.address);
    EXPECT_EQ(std::count(data, data + 5000, 0), 5000);
    data[4999] = 7;
    support::ChildProcess user("token_user", {"6"});
    user.WriteLine(LineOf(token));
    EXPECT_EQ(user.ReadLine(), "7");
    EXPECT_EQ(data[4999], 8);
    EXPECT_EQ(data[0], 1);
    user.Wait();
    EXPECT_EQ(FreeMappedToken(token), S_OK);
    const _ktmemorytoken zero = {};
    EXPECT_EQ(std::memcmp(&token, &zero, sizeof zero), 0);
    token.size = 9;
    EXPECT_EQ(FreeMappedToken(token), E_INVALIDARG);
    EXPECT_EQ(std::memcmp(&token, &zero, sizeof zero), 0);
    EXPECT_EQ(CreateMappedToken(token, 0, 1), E_OUTOFMEMORY);
    EXPECT_EQ(token.address, 0u);
    EXPECT_EQ(FreeMappedToken(token), S_OK);
}

}  // namespace
}  // namespace reader_tests
