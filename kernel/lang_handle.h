// What stands behind a language handle.
#pragma once

#include <memory>

#include "kernel/heap_object.h"
#include "kernel/kt_list.h"
#include "kernel/lang.h"
#include "platform/resources.h"
#include "platform/scoped.h"

namespace clipfio {

inline constexpr WORD kEnglishUnitedStates = 0x0409;
inline constexpr WCHAR kNoText[] = W("");

constexpr LCID PrimaryLanguage(LCID lcid) noexcept { return lcid & 0x3FF; }
constexpr bool IsEnglish(LCID lcid) noexcept { return PrimaryLanguage(lcid) == 0x09; }
constexpr bool IsRightToLeft(LCID lcid) noexcept {
    const LCID primary = PrimaryLanguage(lcid);
    return primary == 0x01 || primary == 0x0D || primary == 0x20 || primary == 0x29;
}

// A text without the mark that it may begin with.
constexpr WStringView WithoutMark(WStringView text) noexcept { return text.substr(text.starts_with(W("^*")) ? 2 : 0); }

// The text `id` of the string tables of a module, with a terminator that is counted in. Empty when there is none.
WStringView FindText(HMODULE module, uint32_t id, WORD language) noexcept;

// Where a resource was found.
struct FoundResource {
    HMODULE module = nullptr;
    HRSRC resource = nullptr;
    explicit operator bool() const noexcept { return resource != nullptr; }
};

}  // namespace clipfio

struct KtLang : clipfio::HeapObject {
    HMODULE base = nullptr;
    int32_t lock_initialised = 0;
    CRITICAL_SECTION lock;   // guards the ring's position and the cache
    uint32_t ring_size = 0;  // characters
    uint32_t ring_headroom = 0;
    uint32_t ring_position = 0;  // the next free one
    std::unique_ptr<WCHAR[]> ring;
    int32_t use_language_module = 0;
    HMODULE language_module = nullptr;  // the satellite, or the base module when there is none
    LCID lcid = 0;
    int32_t language_column = 0;  // 0: not looked for yet
    tKTLIST* cache = nullptr;     // of string resources, sorted by id

    KtLang() noexcept = default;
    ~KtLang();

    [[nodiscard]] HRESULT Init(HMODULE base_module, LCID lcid, uint32_t ring_size) noexcept;
    void SetLanguage(LCID wanted) noexcept;

    // The satellite while it is in use.
    [[nodiscard]] HMODULE Satellite() const noexcept { return use_language_module ? language_module : nullptr; }
    [[nodiscard]] WORD Language() const noexcept { return static_cast<WORD>(lcid); }
    // In which language the base module is asked; 0 is the platform's ordinary choice.
    [[nodiscard]] WORD BaseLanguage() const noexcept {
        return base == language_module ? clipfio::kEnglishUnitedStates : WORD{0};
    }
    [[nodiscard]] clipfio::FoundResource FindInSatellite(const WCHAR* type, const WCHAR* name) const noexcept {
        if (!Satellite()) return {};
        return {language_module, FindResourceExW(language_module, type, name, Language())};
    }
};
