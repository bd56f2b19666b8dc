// Texts by id and by row, and temporary text.
#include <algorithm>
#include <atomic>
#include <cstring>

#include "kernel/lang_facts.h"
#include "kernel/lang_handle.h"
#include "kernel/text_copy.h"
#include "platform/endian.h"
#include "platform/locale.h"
#include "platform/text.h"

namespace {

using namespace clipfio;

constexpr std::size_t kLongestString = 1024;
constexpr uintptr_t kLeastPointer = 0x10000;  // smaller values are ids

struct CachedText {
    uint32_t id;
    WCHAR text[1];
};

// The text `id` of a string table block: sixteen texts, each behind its length. Empty when the block ends early.
WStringView TextOfBlock(const uint8_t* block, std::size_t bytes, uint32_t id) noexcept {
    for (uint32_t left = id & 15;; --left) {
        if (bytes < 2) return {};
        const std::size_t length = platform::LoadLittle<uint16_t>(block);
        block += 2, bytes -= 2;
        if (bytes / 2 < length) return {};
        if (left == 0) return {reinterpret_cast<const WCHAR*>(block), length};
        block += length * 2, bytes -= length * 2;
    }
}

WStringView FindById(const KtLang& lang, uint32_t id) noexcept {
    WStringView text;
    if (const HMODULE satellite = lang.Satellite()) text = FindText(satellite, id, lang.Language());
    if (text.empty()) text = FindText(lang.base, id, lang.BaseLanguage());
    return WithoutMark(text);
}

// The cache's items are found without a call each: this is asked for at every use of every label.
CachedText** CachePlace(const tKTLIST& cache, uint32_t id) noexcept {
    auto** const items = static_cast<CachedText**>(cache.array);
    return std::lower_bound(items, items + cache.count, id,
                            [](const CachedText* item, uint32_t wanted) { return item->id < wanted; });
}

const WCHAR* StoreInCache(tKTLIST& cache, int32_t place, uint32_t id, WStringView text) noexcept {
    const std::size_t bytes = offsetof(CachedText, text) + (text.size() + 1) * sizeof(WCHAR);
    if (FAILED(KtList_AllocAndInsertItem(&cache, nullptr, bytes, place, nullptr))) return kNoText;
    auto* const item = static_cast<CachedText**>(cache.array)[place];
    item->id = id;
    std::memcpy(item->text, text.data(), text.size() * sizeof(WCHAR));
    return item->text;
}

int32_t ColumnOf(KtLang& lang) noexcept {
    const std::atomic_ref column(lang.language_column);
    if (const int32_t known = column.load(std::memory_order_relaxed); known >= 1) return known;
    const LCID lcid = lang.lcid ? lang.lcid : LCID{GetUserDefaultUILanguage()};
    const int32_t found = std::max(ColumnOfLanguage(lcid), 1);
    column.store(found, std::memory_order_relaxed);
    return found;
}

bool IsText(const WCHAR* entry) noexcept { return reinterpret_cast<uintptr_t>(entry) >= kLeastPointer; }

struct Block {
    const uint8_t* bytes = nullptr;
    std::size_t size = 0;
};

// The string table block that holds `id`.
Block FindBlock(HMODULE module, uint32_t id, WORD language) noexcept {
    if (id > 0xFFFF) return {};
    const HRSRC found = FindResourceExW(module, RT_STRING, MAKEINTRESOURCEW((id >> 4) + 1), language);
    const auto* bytes = found ? static_cast<const uint8_t*>(LockResource(LoadResource(module, found))) : nullptr;
    return bytes ? Block{bytes, SizeofResource(module, found)} : Block{};
}

// The text of an entry that is an id, used in place, and so only when it ends in a NUL, counted in or not. Null when
// there is none.
const WCHAR* ResolveId(HMODULE module, uint32_t id, int32_t column) noexcept {
    const Block block = FindBlock(module, id, static_cast<WORD>(LanguageOfColumn(column)));
    const WStringView text = TextOfBlock(block.bytes, block.size, id);
    if (text.empty()) return nullptr;
    if (text.back() == 0) return text.data();
    const auto used =
        static_cast<std::size_t>(reinterpret_cast<const uint8_t*>(text.data() + text.size()) - block.bytes);
    return block.size - used >= sizeof(WCHAR) && text.data()[text.size()] == 0 ? text.data() : nullptr;
}

uint32_t CountOf(KTLANGSTRINGID row) noexcept {
    const auto* const record = reinterpret_cast<const KTLANGSTRINGROW*>(row);
    return record->signature == kKtRowSignature ? record->count & 0xFF : 0;
}

}  // namespace

namespace clipfio {

WStringView FindText(HMODULE module, uint32_t id, WORD language) noexcept {
    const Block block = FindBlock(module, id, language);
    return TextOfBlock(block.bytes, block.size, id);
}

}  // namespace clipfio

const WCHAR* KtGetString(HKTLANG handle, uint32_t id) noexcept {
    if (!handle) return kNoText;
    const platform::CriticalSectionLock hold(handle->lock);
    tKTLIST& cache = *handle->cache;
    CachedText** const place = CachePlace(cache, id);
    auto** const items = static_cast<CachedText**>(cache.array);
    if (place != items + cache.count && (*place)->id == id) return (*place)->text;
    const WStringView text = FindById(*handle, id).substr(0, kLongestString - 1);
    return text.empty() ? kNoText : StoreInCache(cache, static_cast<int32_t>(place - items), id, text);
}

const WCHAR* KtGetString(HKTLANG handle, KTLANGSTRINGID row) noexcept {
    if (!row) return kNoText;
    const auto count = static_cast<int32_t>(CountOf(row));
    if (count == 0) return kNoText;
    const int32_t column = std::min(handle ? ColumnOf(*handle) : 1, count);
    // Two threads that resolve an entry at the same time write the same text.
    auto** const entries = const_cast<const WCHAR**>(row + 1);
    const std::atomic_ref entry(entries[column - 1]);
    const WCHAR* text = entry.load(std::memory_order_relaxed);
    if (IsText(text)) return text;
    const auto id = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(text));
    text = handle ? ResolveId(handle->language_module, id, column) : nullptr;
    if (!text) text = std::atomic_ref(entries[0]).load(std::memory_order_relaxed);
    if (!IsText(text)) return kNoText;
    entry.store(text, std::memory_order_relaxed);
    return text;
}

int32_t IsKTLANGSTRINGID(HKTLANG, const WCHAR* text) noexcept {
    return IsText(text) && reinterpret_cast<uintptr_t>(text) % 4 == 0 && *text == kKtRowSignature;
}

const WCHAR* KtGetStringSmart(HKTLANG handle, const WCHAR* text) noexcept {
    if (!text) return nullptr;
    if (!IsText(text)) return KtGetString(handle, static_cast<uint32_t>(reinterpret_cast<uintptr_t>(text)));
    if (!IsKTLANGSTRINGID(handle, text)) return text;
    return KtGetString(handle, reinterpret_cast<KTLANGSTRINGID>(text));
}

int32_t KtLoadString(HKTLANG handle, uint32_t id, WCHAR* buffer, int32_t size) noexcept {
    CopyText(buffer, size, {});
    return handle ? CopyText(buffer, size, FindById(*handle, id)) : 0;
}

int32_t KtLoadString(HKTLANG handle, KTLANGSTRINGID row, WCHAR* buffer, int32_t size) noexcept {
    return CopyText(buffer, size, WithoutMark(KtGetString(handle, row)));
}

WCHAR* KtGetTempStringBuffer(HKTLANG handle, uint32_t length) noexcept {
    if (!handle || length > handle->ring_headroom) return nullptr;
    const platform::CriticalSectionLock hold(handle->lock);
    if (handle->ring_position > handle->ring_size - handle->ring_headroom) handle->ring_position = 0;
    WCHAR* text = handle->ring.get() + handle->ring_position;
    if (length == 0) *text = 0;
    handle->ring_position = (length + 2 + handle->ring_position) & ~1u;
    return text;
}

const WCHAR* KtGetPrintFromWideString(HKTLANG handle, const WCHAR* text) noexcept {
    return handle && text ? text : kNoText;
}

const WCHAR* KtGetWideFromPrintString(HKTLANG handle, const WCHAR* text) noexcept {
    return KtGetPrintFromWideString(handle, text);
}

const WCHAR* KtGetPrintFromMultiByteString(HKTLANG handle, const char* text) noexcept {
    const std::size_t length = text ? std::strlen(text) : 0;
    WCHAR* const out = KtGetTempStringBuffer(handle, static_cast<uint32_t>(std::min<std::size_t>(length, UINT32_MAX)));
    if (!out || length == 0) return kNoText;
    const auto size = static_cast<int>(length);
    const int stored = MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, text, size, out, size);
    out[stored] = 0;
    return out;
}

const char* KtGetMultiByteFromPrintString(HKTLANG handle, const WCHAR* text) noexcept {
    const std::size_t length = text ? WStringView(text).size() : 0;
    const std::size_t room = 2 * length + 2;  // characters of two bytes each
    WCHAR* const ring = KtGetTempStringBuffer(handle, static_cast<uint32_t>(std::min<std::size_t>(room, UINT32_MAX)));
    if (!ring) return "";
    auto* const out = reinterpret_cast<char*>(ring);
    const auto size = static_cast<int>(room * sizeof(WCHAR)) - 1;
    const int stored =
        length ? WideCharToMultiByte(CP_ACP, 0, text, static_cast<int>(length), out, size, nullptr, nullptr) : 0;
    out[stored] = 0;
    return out;
}
