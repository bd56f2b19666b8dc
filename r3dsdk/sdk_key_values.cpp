#include "r3dsdk/sdk_key_values.h"

#include <charconv>
#include <new>

#include "r3dsdk/sdk_log.h"

namespace clipfio {
namespace {

// 64-bit numbers as text: the C runtimes do not agree on a conversion for them.
struct Digits {
    char text[24] = {};

    Digits(uint64_t value, int base) noexcept {
        char* const end = std::to_chars(text, text + sizeof text - 1, value, base).ptr;
        for (char* digit = text; digit != end; ++digit) {
            if (*digit >= 'a') *digit = static_cast<char>(*digit - 'a' + 'A');
        }
    }
};

}  // namespace

void SdkKeyValueTable::SetPointer(uint64_t key, const void* value) noexcept {
    SetValue(key, reinterpret_cast<uintptr_t>(value));
}

void SdkKeyValueTable::SetValue(uint64_t key, uint64_t value) noexcept {
    try {
        values_[key] = value;
    } catch (const std::bad_alloc&) {
        lost_values_ = true;
    }
}

bool SdkKeyValueTable::Has(uint64_t key) noexcept { return values_.contains(key); }

uint64_t SdkKeyValueTable::GetValue(uint64_t key) noexcept {
    const auto found = values_.find(key);
    return found == values_.end() ? 0 : found->second;
}

void* SdkKeyValueTable::GetPointer(uint64_t key) noexcept {
    return reinterpret_cast<void*>(static_cast<uintptr_t>(GetValue(key)));
}

void SdkKeyValueTable::Dump() noexcept {
    for (const auto& [key, value] : values_) {
        SdkLog("\tkey = %s, value = 0x%s\n", Digits(key, 10).text, Digits(value, 16).text);
    }
}

void* SdkKeyValueTable::Destroy(uint32_t flags) noexcept {
    values_.clear();
    lost_values_ = false;
    if (!(flags & 1)) return this;
    delete this;
    return nullptr;
}

}  // namespace clipfio
