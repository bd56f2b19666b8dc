#include "kernel/lang.h"

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include "kernel/guard.h"
#include "kernel/heap_object.h"
#include "kernel/text_copy.h"
#include "platform/endian.h"
#include "platform/resources.h"
#include "platform/scoped.h"

namespace {

constexpr HRESULT kAlreadyOpen = 0x0004E001;
constexpr uint32_t kDefaultRing = 8192;
constexpr uint32_t kLeastRing = 2048;
constexpr uint32_t kRingHeadroom = 1024;  // what is left behind the last place where a text may begin
constexpr WORD kEnglishUnitedStates = 0x0409;
constexpr std::size_t kLongestString = 1024;

bool IsEnglish(LCID lcid) noexcept { return (lcid & 0x3FF) == 0x09; }

struct CachedText {
    uint32_t id;
    std::unique_ptr<WCHAR[]> text;
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

WStringView FindText(HMODULE module, uint32_t id, WORD language) noexcept {
    const HRSRC found = FindResourceExW(module, RT_STRING, MAKEINTRESOURCEW((id >> 4) + 1), language);
    if (!found) return {};
    const auto* block = static_cast<const uint8_t*>(LockResource(LoadResource(module, found)));
    return block ? TextOfBlock(block, SizeofResource(module, found), id) : WStringView{};
}

}  // namespace

struct KtLang : clipfio::HeapObject {
    HMODULE base = nullptr;
    CRITICAL_SECTION lock;
    std::unique_ptr<WCHAR[]> ring;  // temporary text space
    uint32_t ring_size = 0;         // characters
    uint32_t ring_position = 0;     // the next free one
    bool use_language_module = false;
    HMODULE language_module = nullptr;  // a satellite file, or the base module when there is none
    LCID lcid = 0;
    std::vector<CachedText> cache;  // sorted by id

    KtLang() noexcept { InitializeCriticalSection(&lock); }
    ~KtLang() { DeleteCriticalSection(&lock); }

    void SetLanguage(LCID wanted) noexcept {
        const platform::CriticalSectionLock hold(lock);
        use_language_module = !IsEnglish(wanted);
        if (lcid == wanted) return;
        lcid = wanted;
        cache.clear();
    }

    WStringView Find(uint32_t id) const noexcept {
        WStringView text;
        if (use_language_module && language_module) text = FindText(language_module, id, static_cast<WORD>(lcid));
        if (text.empty()) text = FindText(base, id, language_module == base ? kEnglishUnitedStates : WORD{0});
        if (text.substr(0, 2) == W("^*")) text.remove_prefix(2);
        return text;
    }
};

HRESULT KtLang_Open(HKTLANG* handle, HMODULE base, LCID lcid, uint32_t ring_size) noexcept {
    if (!handle) return E_POINTER;
    if (*handle) return kAlreadyOpen;
    std::unique_ptr<KtLang> lang(new (std::nothrow) KtLang);
    if (!lang) return E_OUTOFMEMORY;
    lang->base = base;
    lang->language_module = base;
    lang->lcid = lcid;
    lang->ring_size = ring_size ? std::max(ring_size, kLeastRing) : kDefaultRing;
    // A longest text at the last place ends with the ring; its terminator stands behind.
    lang->ring.reset(new (std::nothrow) WCHAR[lang->ring_size + 1]());
    if (!lang->ring) return E_OUTOFMEMORY;
    *handle = lang.release();
    return S_OK;
}

HRESULT KtLang_Close(HKTLANG handle) noexcept {
    delete handle;
    return S_OK;
}

LCID KtLang_GetLCID(HKTLANG handle) noexcept { return handle ? handle->lcid : 0; }

int32_t KtLang_UpdateKernelLCID(HKTLANG handle, LCID lcid, int32_t) noexcept {
    const HKTLANG kernel = clipfio::KernelLanguage();
    if (!kernel || !handle) return 0;
    const LCID wanted = lcid ? lcid : LCID{kEnglishUnitedStates};
    handle->SetLanguage(wanted);
    kernel->SetLanguage(wanted);
    return 1;
}

int32_t KtLoadString(HKTLANG handle, uint32_t id, WCHAR* buffer, int32_t size) noexcept {
    clipfio::CopyText(buffer, size, {});
    return handle ? clipfio::CopyText(buffer, size, handle->Find(id)) : 0;
}

const WCHAR* KtGetString(HKTLANG handle, uint32_t id) noexcept {
    static constexpr WCHAR kEmpty[] = W("");
    if (!handle) return kEmpty;
    const platform::CriticalSectionLock hold(handle->lock);
    auto& cache = handle->cache;
    const auto place = std::lower_bound(cache.begin(), cache.end(), id,
                                        [](const CachedText& entry, uint32_t wanted) { return entry.id < wanted; });
    if (place != cache.end() && place->id == id) return place->text.get();
    const WCHAR* result = kEmpty;
    // Out of memory leaves the empty text.
    (void)clipfio::Guarded([&] {
        const WStringView text = handle->Find(id).substr(0, kLongestString - 1);
        if (text.empty()) return S_FALSE;
        auto copy = std::make_unique<WCHAR[]>(text.size() + 1);
        clipfio::CopyText(copy.get(), static_cast<int32_t>(text.size() + 1), text);
        const WCHAR* stored = copy.get();
        cache.insert(place, CachedText{id, std::move(copy)});
        result = stored;
        return S_OK;
    });
    return result;
}

WCHAR* KtGetTempStringBuffer(HKTLANG handle, uint32_t length) noexcept {
    if (!handle || length > kRingHeadroom) return nullptr;
    const platform::CriticalSectionLock hold(handle->lock);
    if (handle->ring_position > handle->ring_size - kRingHeadroom) handle->ring_position = 0;
    WCHAR* text = handle->ring.get() + handle->ring_position;
    if (length == 0) *text = 0;
    handle->ring_position = (length + 2 + handle->ring_position) & ~1u;
    return text;
}

HGLOBAL KtLoadResourceCustom(HKTLANG handle, const WCHAR* name, const WCHAR* type, uint32_t* size) noexcept {
    if (size) *size = 0;
    if (!handle) return nullptr;
    HMODULE module = handle->language_module;
    HRSRC found = nullptr;
    if (handle->use_language_module && module) {
        found = FindResourceExW(module, type, name, static_cast<WORD>(handle->lcid));
    }
    if (!found) {
        module = handle->base;
        found = FindResourceExW(module, type, name, handle->language_module == module ? kEnglishUnitedStates : WORD{0});
    }
    if (!found) return nullptr;
    if (size) *size = SizeofResource(module, found);
    return LoadResource(module, found);
}

namespace clipfio {

HKTLANG& KernelLanguage() noexcept {
    static constinit HKTLANG handle = nullptr;
    return handle;
}

}  // namespace clipfio
