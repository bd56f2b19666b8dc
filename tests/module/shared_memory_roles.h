// Second processes for the tests of memory tokens, and tokens as lines of text between them.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "platform/process.h"
#include "reader/memory_token.h"
#include "support/child_roles.h"

namespace reader_tests {

inline std::string LineOf(const _ktmemorytoken& token) {
    std::ostringstream line;
    for (const uint8_t byte : std::bit_cast<std::array<uint8_t, sizeof token>>(token)) line << int{byte} << ' ';
    return line.str();
}

inline _ktmemorytoken TokenOfLine(const std::string& text) {
    std::istringstream line(text);
    std::array<uint8_t, sizeof(_ktmemorytoken)> bytes = {};
    int value = 0;
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(line >> value ? value : 0);
    return std::bit_cast<_ktmemorytoken>(bytes);
}

// What an owner's memory holds at first.
constexpr uint8_t OwnersByte(std::size_t place) noexcept { return static_cast<uint8_t>(place * 7 + 3); }

// A host in a process of its own, with `bytes` of memory and `margin` before and behind that no read may touch.
class MemoryOwner {
  public:
    static constexpr std::size_t kMargin = 64;

    MemoryOwner(uint32_t type, std::size_t bytes)
        : process_("memory_owner", {std::to_string(type), std::to_string(bytes)}), bytes_(bytes) {
        token_ = TokenOfLine(process_.ReadLine());
    }
    // Of the memory without its margins: type 1 has them inside the mapping, and the offset tells so.
    [[nodiscard]] const _ktmemorytoken& Token() const { return token_; }
    // The memory as the owner sees it, the margins left out; empty when they were touched.
    std::vector<uint8_t> Memory() {
        process_.WriteLine("tell");
        std::istringstream line(process_.ReadLine());
        std::vector<uint8_t> memory;
        for (unsigned value = 0; line >> value;) memory.push_back(static_cast<uint8_t>(value));
        return memory;
    }
    std::vector<uint8_t> FirstMemory() const {
        std::vector<uint8_t> memory(bytes_);
        for (std::size_t i = 0; i < bytes_; ++i) memory[i] = OwnersByte(i);
        return memory;
    }
    void Die() {
        TerminateProcess(process_.Process(), 1);
        WaitForSingleObject(process_.Process(), INFINITE);
    }
    DWORD End() { return process_.Wait(); }

  private:
    support::ChildProcess process_;
    std::size_t bytes_;
    _ktmemorytoken token_;
};

}  // namespace reader_tests
