// Resources are found by a walk over the module's .res image: a row of entries, each a header of variable length and
// its data, all aligned to 4 bytes. Nothing of the image is trusted; the walk ends at the first entry that is none.
#include "platform/resources.h"

#include <algorithm>
#include <cstring>

#include "errors.h"
#include "image_records.h"
#include "platform/endian.h"
#include "platform/locale.h"
#include "process_shared.h"
#include "resources.h"

namespace {

using platform::Fail;
using platform::LoadLittle;
using platform::PthreadLock;
using platform::ResourceImage;
using platform::Shared;

constexpr std::size_t kFixedBefore = 8;    // data size, header size
constexpr std::size_t kFixedAfter = 16;    // data version, flags, language, version, characteristics
constexpr std::size_t kLanguageAfter = 6;  // within the latter
constexpr WORD kNumber = 0xFFFF;

constexpr WORD kEnglish = 0x0409;
constexpr WORD kPrimaryMask = 0x3FF;

constexpr std::size_t Aligned(std::size_t n) noexcept { return (n + 3) & ~std::size_t{3}; }

// A type or name: a number, or a text of 16-bit units in the image.
struct Id {
    WORD number = 0;
    const unsigned char* text = nullptr;
    std::size_t length = 0;
};

struct Entry {
    const unsigned char* header = nullptr;
    const unsigned char* data = nullptr;
    std::uint32_t size = 0;
    Id type;
    Id name;
    WORD language = 0;
};

class Walk {
  public:
    explicit Walk(const ResourceImage& image) noexcept
        : at_(static_cast<const unsigned char*>(image.bytes)), left_(image.size) {}

    bool Next(Entry& entry) noexcept;

  private:
    const unsigned char* at_;
    std::size_t left_;
};

// Reads an id at `offset` of a header of `size` bytes and moves the offset behind it.
bool ReadId(const unsigned char* header, std::size_t size, std::size_t& offset, Id& id) noexcept {
    if (size - offset < 4) return false;
    if (LoadLittle<WORD>(header + offset) == kNumber) {
        id = {LoadLittle<WORD>(header + offset + 2), nullptr, 0};
        offset += 4;
        return true;
    }
    id = {0, header + offset, 0};
    while (size - offset >= 2) {
        const WORD unit = LoadLittle<WORD>(header + offset);
        offset += 2;
        if (unit == 0) return true;
        ++id.length;
    }
    return false;
}

bool Walk::Next(Entry& entry) noexcept {
    if (left_ < kFixedBefore) return false;
    const std::size_t data_size = LoadLittle<std::uint32_t>(at_);
    const std::size_t header_size = LoadLittle<std::uint32_t>(at_ + 4);
    if (header_size < kFixedBefore + kFixedAfter || header_size % 4 != 0 || header_size > left_) return false;
    if (data_size > left_ - header_size) return false;
    std::size_t offset = kFixedBefore;
    if (!ReadId(at_, header_size, offset, entry.type) || !ReadId(at_, header_size, offset, entry.name)) return false;
    offset = Aligned(offset);
    if (offset > header_size || header_size - offset < kFixedAfter) return false;
    entry.language = LoadLittle<WORD>(at_ + offset + kLanguageAfter);
    entry.header = at_;
    entry.data = at_ + header_size;
    entry.size = static_cast<std::uint32_t>(data_size);
    // The last entry's padding may be missing.
    const std::size_t step = std::min(header_size + Aligned(data_size), left_);
    at_ += step;
    left_ -= step;
    return true;
}

WCHAR Upper(WCHAR c) noexcept {
    const bool lower = (c >= u'a' && c <= u'z') || (c >= 0xE0 && c <= 0xFE && c != 0xF7);
    return lower ? static_cast<WCHAR>(c - 0x20) : c;
}

// What a caller asks for: a number in a pointer's clothes, "#" with digits, or a text.
struct Wanted {
    explicit Wanted(const WCHAR* value) noexcept {
        const auto bits = reinterpret_cast<std::uintptr_t>(value);
        if (bits <= kNumber) {
            number = static_cast<WORD>(bits);
        } else if (value[0] == u'#') {
            for (const WCHAR* digit = value + 1; *digit >= u'0' && *digit <= u'9'; ++digit) {
                number = static_cast<WORD>(number * 10 + (*digit - u'0'));
            }
        } else {
            text = value;
        }
    }
    [[nodiscard]] bool Is(const Id& id) const noexcept {
        if (text.empty() || !id.text) return text.empty() && !id.text && id.number == number;
        if (id.length != text.size()) return false;
        for (std::size_t i = 0; i < id.length; ++i) {
            if (Upper(LoadLittle<WORD>(id.text + 2 * i)) != Upper(text[i])) return false;
        }
        return true;
    }

    WORD number = 0;
    WStringView text;
};

// How well a resource's language serves a request; 0 is not at all, more is better.
int RankForLanguage(WORD found, WORD wanted) noexcept {
    if (found == wanted) return 3;
    if (found == (wanted & kPrimaryMask)) return 2;
    return found == 0 ? 1 : 0;
}

int RankForThread(WORD found, WORD user) noexcept {
    const auto rank = [found](WORD wanted) {
        if (found == wanted) return 3;
        if (found == (wanted & kPrimaryMask)) return 2;
        return (found & kPrimaryMask) == (wanted & kPrimaryMask) ? 1 : 0;
    };
    if (const int by_user = rank(user); by_user != 0) return 10 + by_user;
    return 1 + rank(kEnglish);
}

bool ImageOf(HMODULE module, ResourceImage& image) noexcept {
    PthreadLock lock(Shared().resource_lock);
    for (const ResourceImage& known : Shared().images) {
        if (known.bytes && known.module == module) {
            image = known;
            return true;
        }
    }
    return false;
}

// A resource handle is the address of its entry in the image.
bool EntryOf(HMODULE module, HRSRC resource, Entry& entry) noexcept {
    ResourceImage image{};
    if (!resource || !ImageOf(module, image)) return false;
    for (Walk walk(image); walk.Next(entry);) {
        if (entry.header == static_cast<const unsigned char*>(resource)) return true;
    }
    return false;
}

}  // namespace

namespace platform {

bool RegisterResources(HMODULE module, const void* image, std::size_t bytes) noexcept {
    PthreadLock lock(Shared().resource_lock);
    ResourceImage* place = nullptr;
    for (ResourceImage& known : Shared().images) {
        if (known.bytes && known.module == module) {
            place = &known;
            break;
        }
        if (!known.bytes && !place) place = &known;
    }
    if (place) *place = {module, image, bytes};
    return place != nullptr;
}

void UnregisterResources(HMODULE module) noexcept {
    DropSharedIcons(module);
    PthreadLock lock(Shared().resource_lock);
    for (ResourceImage& known : Shared().images) {
        if (known.bytes && known.module == module) known = {};
    }
}

std::size_t ResourceBytesFrom(const void* address) noexcept {
    const auto at = reinterpret_cast<std::uintptr_t>(address);
    ResourceImage image{};
    {
        PthreadLock lock(Shared().resource_lock);
        for (const ResourceImage& known : Shared().images) {
            const std::uintptr_t into = at - reinterpret_cast<std::uintptr_t>(known.bytes);
            // An empty resource may lie at the image's very end.
            if (known.bytes && (into < known.size || (into == known.size && !image.bytes))) image = known;
        }
    }
    Entry entry;
    for (Walk walk(image); walk.Next(entry);) {
        const std::uintptr_t into = at - reinterpret_cast<std::uintptr_t>(entry.data);
        if (into < entry.size) return entry.size - into;
        if (into == 0 && entry.size == 0) return 0;
    }
    const bool inside = image.bytes && at - reinterpret_cast<std::uintptr_t>(image.bytes) < image.size;
    return inside ? 0 : SIZE_MAX;
}

bool HoldsResource(HMODULE module, HRSRC resource) noexcept {
    Entry entry;
    return EntryOf(module, resource, entry);
}

}  // namespace platform

extern "C" HRSRC FindResourceW(HMODULE module, const WCHAR* name, const WCHAR* type) noexcept {
    return FindResourceExW(module, type, name, 0);
}

extern "C" BOOL EnumResourceLanguagesW(HMODULE module, const WCHAR* type, const WCHAR* name, ENUMRESLANGPROCW callback,
                                       LONG_PTR parameter) noexcept {
    ResourceImage image{};
    if (!ImageOf(module, image)) return Fail(platform::ERROR_RESOURCE_DATA_NOT_FOUND);
    const Wanted wanted_type(type);
    const Wanted wanted_name(name);
    bool any = false;
    Entry entry;
    for (Walk walk(image); walk.Next(entry);) {
        if (!wanted_type.Is(entry.type) || !wanted_name.Is(entry.name)) continue;
        any = true;
        if (!callback(module, type, name, entry.language, parameter)) return FALSE;
    }
    return any ? TRUE : Fail(ERROR_RESOURCE_NAME_NOT_FOUND);
}

extern "C" HRSRC FindResourceExW(HMODULE module, const WCHAR* type, const WCHAR* name, WORD language) noexcept {
    ResourceImage image{};
    if (!ImageOf(module, image)) return Fail<HRSRC>(platform::ERROR_RESOURCE_DATA_NOT_FOUND, nullptr);
    const Wanted wanted_type(type);
    const Wanted wanted_name(name);
    const WORD user = static_cast<WORD>(GetUserDefaultLCID());
    const unsigned char* best = nullptr;
    int best_rank = 0;
    DWORD error = ERROR_RESOURCE_TYPE_NOT_FOUND;
    Entry entry;
    for (Walk walk(image); walk.Next(entry);) {
        if (!wanted_type.Is(entry.type)) continue;
        if (error == ERROR_RESOURCE_TYPE_NOT_FOUND) error = ERROR_RESOURCE_NAME_NOT_FOUND;
        if (!wanted_name.Is(entry.name)) continue;
        error = ERROR_RESOURCE_LANG_NOT_FOUND;
        const int rank = language ? RankForLanguage(entry.language, language) : RankForThread(entry.language, user);
        if (rank > best_rank) {
            best = entry.header;
            best_rank = rank;
        }
    }
    return best ? const_cast<unsigned char*>(best) : Fail<HRSRC>(error, nullptr);
}

extern "C" HGLOBAL LoadResource(HMODULE module, HRSRC resource) noexcept {
    Entry entry;
    if (!EntryOf(module, resource, entry)) return Fail<HGLOBAL>(ERROR_INVALID_HANDLE, nullptr);
    return const_cast<unsigned char*>(entry.data);
}

extern "C" void* LockResource(HGLOBAL resource) noexcept { return resource; }

extern "C" DWORD SizeofResource(HMODULE module, HRSRC resource) noexcept {
    Entry entry;
    return EntryOf(module, resource, entry) ? entry.size : Fail<DWORD>(ERROR_INVALID_HANDLE, 0);
}
