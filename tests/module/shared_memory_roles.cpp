#include "tests/module/shared_memory_roles.h"

#include <algorithm>
#include <iostream>
#include <vector>

using namespace reader_tests;

namespace {

constexpr uint8_t kMarginByte = 0xA5;

}  // namespace

// Owns memory and tells its token; then tells the memory each time it is asked.
CHILD_ROLE(memory_owner) {
    const auto type = static_cast<uint32_t>(std::stoul(arguments[0]));
    const std::size_t bytes = std::stoul(arguments[1]);
    const std::size_t all = bytes + 2 * MemoryOwner::kMargin;
    std::vector<uint8_t> plain(type == kKtMemoryPlain ? all : 0);
    _ktmemorytoken token = {};
    uint8_t* memory = plain.data();
    if (type == kKtMemoryMapping) {
        if (FAILED(CreateMappedToken(token, static_cast<uint32_t>(all), 1))) return 2;
        memory = reinterpret_cast<uint8_t*>(token.address);
    } else {
        token.address = reinterpret_cast<uintptr_t>(memory);
        token.type = type;
        token.processId = GetCurrentProcessId();
    }
    std::fill_n(memory, all, kMarginByte);
    uint8_t* const data = memory + MemoryOwner::kMargin;
    for (std::size_t i = 0; i < bytes; ++i) data[i] = OwnersByte(i);
    token.offset = static_cast<int32_t>(MemoryOwner::kMargin);
    token.size = static_cast<uint32_t>(bytes);
    std::cout << LineOf(token) << std::endl;

    for (std::string line; std::getline(std::cin, line);) {
        const auto is_margin = [](uint8_t byte) { return byte == kMarginByte; };
        const bool good = std::all_of(memory, data, is_margin) && std::all_of(data + bytes, memory + all, is_margin);
        for (std::size_t i = 0; good && i < bytes; ++i) std::cout << static_cast<unsigned>(data[i]) << ' ';
        std::cout << std::endl;
    }
    return type == kKtMemoryMapping && FAILED(FreeMappedToken(token)) ? 3 : 0;
}

// A plug-in in a process of its own: for each token it tells the sum of the bytes and adds one to each.
CHILD_ROLE(token_user) {
    const auto access = static_cast<uint32_t>(std::stoul(arguments[0]));
    for (std::string line; std::getline(std::cin, line);) {
        CMappingOfKtMemoryToken mapping(TokenOfLine(line), access);
        auto* const bytes = static_cast<uint8_t*>(mapping.Pointer());
        if (!bytes) {
            std::cout << "failed" << std::endl;
            continue;
        }
        unsigned sum = 0;
        for (int32_t i = 0; i < mapping.DataSize(); ++i) sum += bytes[i];
        for (int32_t i = 0; access != kKtTokenRead && i < mapping.DataSize(); ++i) ++bytes[i];
        mapping.Dispose();
        std::cout << sum << std::endl;
    }
    return 0;
}
