#include "platform/com.h"

#include <cstdlib>
#include <cstring>
#include <limits>

#include "fault_point.h"

// A text block is a malloc block with the length in bytes right before the text, so that either side of the module
// boundary can free what the other made.
namespace {

constexpr std::size_t kBefore = 8;  // keeps the text aligned; the length is the second half
constexpr UINT kMaxLength = (std::numeric_limits<std::uint32_t>::max() - sizeof(WCHAR)) / sizeof(WCHAR);

char* BlockOf(BSTR text) noexcept { return reinterpret_cast<char*>(text) - kBefore; }

}  // namespace

extern "C" BSTR SysAllocStringLen(const WCHAR* text, UINT length) noexcept {
    if (length > kMaxLength || platform::FaultHere()) return nullptr;
    const auto bytes = static_cast<std::uint32_t>(length * sizeof(WCHAR));
    // Without a text to copy the block is zero, which Win32 leaves open.
    auto* const block = static_cast<char*>(std::calloc(1, kBefore + bytes + sizeof(WCHAR)));
    if (!block) return nullptr;
    std::memcpy(block + kBefore - sizeof bytes, &bytes, sizeof bytes);
    if (text) std::memcpy(block + kBefore, text, bytes);
    return reinterpret_cast<BSTR>(block + kBefore);
}

extern "C" BSTR SysAllocString(const WCHAR* text) noexcept {
    if (!text) return nullptr;
    const std::size_t length = WStringView(text).size();
    return length > kMaxLength ? nullptr : SysAllocStringLen(text, static_cast<UINT>(length));
}

extern "C" void SysFreeString(BSTR text) noexcept {
    if (text) std::free(BlockOf(text));
}

extern "C" UINT SysStringLen(BSTR text) noexcept {
    if (!text) return 0;
    std::uint32_t bytes = 0;
    std::memcpy(&bytes, BlockOf(text) + kBefore - sizeof bytes, sizeof bytes);
    return static_cast<UINT>(bytes / sizeof(WCHAR));
}

extern "C" void CoTaskMemFree(void* block) noexcept { std::free(block); }
