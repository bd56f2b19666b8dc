#include "kernel/print_tokens.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "kernel/kt_list.h"
#include "platform/scoped.h"
#include "platform/text.h"

namespace {

// An item of the list; its two texts lie behind it in the same block.
struct Token {
    uint32_t reserved;
    const WCHAR* name;
    uint32_t value_length;  // characters
    const WCHAR* value;
};
static_assert(sizeof(Token) == 32 && offsetof(Token, name) == 8 && offsetof(Token, value_length) == 16);
static_assert(offsetof(Token, value) == 24);

constinit tKTLIST* g_tokens = nullptr;

int32_t CompareNames(uintptr_t, const void* key, const void* item) noexcept {
    return lstrcmpiW(static_cast<const WCHAR*>(key), static_cast<const Token*>(item)->name);
}

// The index of a token, or -1. With the table locked.
int32_t Find(const WCHAR* name) noexcept { return KtList_FindSortedItemRange(g_tokens, name, 0, -1, CompareNames); }

bool Delete(const WCHAR* name) noexcept {
    const int32_t index = Find(name);
    return index >= 0 && SUCCEEDED(KtList_DeleteList(g_tokens, index, 1, 0));
}

void CopyWithEnd(WCHAR* out, WStringView text) noexcept {
    out = std::copy(text.begin(), text.end(), out);
    *out = 0;
}

bool Add(WStringView name, WStringView value) noexcept {
    constexpr std::size_t kValueAlignment = 4;
    const std::size_t name_bytes = ((name.size() + 1) * sizeof(WCHAR) + kValueAlignment - 1) & ~(kValueAlignment - 1);
    void* block = nullptr;
    if (value.size() > std::numeric_limits<uint32_t>::max() ||
        FAILED(KtList_AllocItem(g_tokens, sizeof(Token) + name_bytes + (value.size() + 1) * sizeof(WCHAR), &block))) {
        return false;
    }
    auto* const name_text = reinterpret_cast<WCHAR*>(static_cast<Token*>(block) + 1);
    WCHAR* const value_text = name_text + name_bytes / sizeof(WCHAR);
    CopyWithEnd(name_text, name);
    CopyWithEnd(value_text, value);
    *static_cast<Token*>(block) = {0, name_text, static_cast<uint32_t>(value.size()), value_text};

    const int32_t place = KtList_FindSortedInsertIndexRange(g_tokens, name_text, 0, -1, CompareNames);
    if (SUCCEEDED(KtList_InsertList(g_tokens, place, nullptr, -1))) return true;
    KtList_DeleteList(g_tokens, -1, -1, 0);
    return false;
}

}  // namespace

int32_t KtPrintF_AddToken(const WCHAR* name, const WCHAR* value) noexcept {
    if (!g_tokens || !name || !value) return 0;
    const platform::CriticalSectionLock hold(g_tokens->lock);
    Delete(name);
    return Add(name, value) ? 1 : 0;
}

int32_t KtPrintF_DeleteToken(const WCHAR* name) noexcept {
    if (!g_tokens || !name) return 0;
    const platform::CriticalSectionLock hold(g_tokens->lock);
    return Delete(name) ? 1 : 0;
}

namespace clipfio {

HRESULT CreatePrintTokens() noexcept {
    constexpr int32_t kSlots = 16;
    if (g_tokens) return S_OK;
    return KtList_CreateExZ(&g_tokens, 0, kSlots, kSlots, KTLIST_HEAP | KTLIST_LOCKED, nullptr, nullptr, 0);
}

void DestroyPrintTokens() noexcept {
    KtList_Destroy(g_tokens);
    g_tokens = nullptr;
}

TokenUse::TokenUse(const WCHAR* name) noexcept {
    if (!g_tokens) return;
    EnterCriticalSection(&g_tokens->lock);
    const int32_t index = Find(name);
    if (index < 0) return;
    const Token& token = *static_cast<Token* const*>(g_tokens->array)[index];
    found_ = true;
    value_ = {token.value, token.value_length};
}

TokenUse::~TokenUse() {
    if (g_tokens) LeaveCriticalSection(&g_tokens->lock);
}

}  // namespace clipfio
