#include "platform/menu.h"

#include <memory>
#include <vector>

#include "errors.h"
#include "fault_point.h"
#include "platform/resources.h"
#include "safe_memory.h"
#include "template_bytes.h"

namespace {

using platform::Fail;
using platform::Guarded;
using platform::TemplateBytes;

constexpr UINT kNone = static_cast<UINT>(-1);
constexpr int kMaxDepth = 32;
constexpr std::size_t kMaxItems = 10000;
constexpr UINT kStateFlags = 0x1 | 0x2 | 0x8;  // grayed, disabled, checked

struct Menu;

struct Item {
    UINT flags = 0;
    UINT id = 0;
    Menu* menu = nullptr;  // owned
    WString text;
};

struct Menu {
    std::uint64_t cookie;  // kCookie and the menu's own address
    std::vector<Item> items;

    Menu() noexcept;
    ~Menu();
    Menu(const Menu&) = delete;
    Menu& operator=(const Menu&) = delete;
};

constexpr std::uint64_t kCookie = 0xC1A0B10C5EED3E1F;

Menu::Menu() noexcept : cookie(kCookie ^ reinterpret_cast<std::uintptr_t>(this)) {}

Menu::~Menu() {
    *const_cast<volatile std::uint64_t*>(&cookie) = 0;
    for (const Item& item : items) delete item.menu;
}

// Foreign memory lies behind an address that is no menu, so the checked builds must not look over our shoulder.
__attribute__((no_sanitize("address", "thread"))) bool HasCookie(const Menu* menu) noexcept {
    return *const_cast<const volatile std::uint64_t*>(&menu->cookie) ==
           (kCookie ^ reinterpret_cast<std::uintptr_t>(menu));
}

Menu* MenuOf(HMENU handle) noexcept {
    auto* const menu = reinterpret_cast<Menu*>(handle);
    const bool aligned = menu && reinterpret_cast<std::uintptr_t>(handle) % alignof(Menu) == 0;
    if (aligned && platform::IsReadable(menu) && HasCookie(menu)) return menu;
    return Fail<Menu*>(platform::ERROR_INVALID_MENU_HANDLE, nullptr);
}

HMENU HandleOf(Menu* menu) noexcept { return reinterpret_cast<HMENU>(menu); }

struct Place {
    Menu* menu = nullptr;
    std::size_t index = 0;
    explicit operator bool() const noexcept { return menu != nullptr; }
    Item* operator->() const noexcept { return &menu->items[index]; }
};

Place FindCommand(Menu& menu, UINT id) noexcept {
    for (std::size_t i = 0; i < menu.items.size(); ++i) {
        const Item& item = menu.items[i];
        if (item.menu) {
            if (const Place below = FindCommand(*item.menu, id)) return below;
        } else if (item.id == id && (item.flags & MF_SEPARATOR) == 0) {
            return {&menu, i};
        }
    }
    return {};
}

Place FindItem(HMENU handle, UINT item, UINT flags) noexcept {
    Menu* const menu = MenuOf(handle);
    if (!menu) return {};
    Place place;
    if ((flags & MF_BYPOSITION) == 0) {
        place = FindCommand(*menu, item);
    } else if (item < menu->items.size()) {
        place = {menu, item};
    }
    return place ? place : Fail(platform::ERROR_MENU_ITEM_NOT_FOUND, Place{});
}

bool IsBelow(const Menu& menu, const Menu* wanted) noexcept {
    for (const Item& item : menu.items) {
        if (item.menu && (item.menu == wanted || IsBelow(*item.menu, wanted))) return true;
    }
    return false;
}

class TemplateReader {
  public:
    explicit TemplateReader(const void* bytes) noexcept : in_(bytes) {}

    // Null for a damaged template.
    std::unique_ptr<Menu> Read() {
        const auto version = in_.Read<WORD>();
        const auto offset = in_.Read<WORD>();
        in_.Skip(offset);
        if (version > 1) return nullptr;
        auto menu = std::make_unique<Menu>();
        return ReadItems(*menu, version == 1, 0) ? std::move(menu) : nullptr;
    }

  private:
    bool ReadItems(Menu& menu, bool extended, int depth) {
        if (depth > kMaxDepth) return false;
        for (bool last = false; !last;) {
            if (++count_ > kMaxItems) return false;
            Item item;
            const bool popup = extended ? ReadExtended(item, last) : ReadPlain(item, last);
            if (in_.Failed()) return false;
            menu.items.push_back(std::move(item));
            if (!popup) continue;
            menu.items.back().menu = new Menu;
            if (!ReadItems(*menu.items.back().menu, extended, depth + 1)) return false;
        }
        return true;
    }

    bool ReadPlain(Item& item, bool& last) {
        constexpr WORD kEnd = 0x80;
        const auto flags = in_.Read<WORD>();
        last = (flags & kEnd) != 0;
        const bool popup = (flags & MF_POPUP) != 0;
        if (!popup) item.id = in_.Read<WORD>();
        item.text = in_.ReadText();
        item.flags = flags & kStateFlags;
        if (popup) item.flags |= MF_POPUP;
        // An item without anything is a separator.
        if (!popup && item.id == 0 && item.text.empty()) item.flags |= MF_SEPARATOR;
        return popup;
    }

    bool ReadExtended(Item& item, bool& last) {
        constexpr WORD kPopup = 0x01;
        constexpr WORD kEnd = 0x80;
        const auto type = in_.Read<DWORD>();
        const auto state = in_.Read<DWORD>();
        item.id = in_.Read<DWORD>();
        const auto info = in_.Read<WORD>();
        item.text = in_.ReadText();
        in_.Align();
        last = (info & kEnd) != 0;
        const bool popup = (info & kPopup) != 0;
        if (popup) in_.Skip(sizeof(DWORD));  // the help id
        item.flags = (state & kStateFlags) | (type & MF_SEPARATOR) | (popup ? MF_POPUP : 0);
        return popup;
    }

    TemplateBytes in_;
    std::size_t count_ = 0;
};

}  // namespace

extern "C" HMENU CreateMenu() noexcept {
    if (platform::FaultHere()) return Fail<HMENU>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    return Guarded(HMENU{}, [] { return HandleOf(new Menu); });
}

extern "C" HMENU CreatePopupMenu() noexcept { return CreateMenu(); }

extern "C" BOOL DestroyMenu(HMENU handle) noexcept {
    Menu* const menu = MenuOf(handle);
    delete menu;
    return menu != nullptr;
}

extern "C" HMENU LoadMenuIndirectW(const void* menu_template) noexcept {
    if (!menu_template) return Fail<HMENU>(ERROR_INVALID_PARAMETER, nullptr);
    if (platform::FaultHere()) return Fail<HMENU>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    return Guarded(HMENU{}, [menu_template] {
        std::unique_ptr<Menu> menu = TemplateReader(menu_template).Read();
        return menu ? HandleOf(menu.release()) : Fail<HMENU>(platform::ERROR_INVALID_DATA, nullptr);
    });
}

extern "C" HMENU LoadMenuW(HINSTANCE module, const WCHAR* name) noexcept {
    const HRSRC found = FindResourceW(module, name, RT_MENU);
    return found ? LoadMenuIndirectW(LoadResource(module, found)) : nullptr;
}

extern "C" BOOL AppendMenuW(HMENU handle, UINT flags, ULONG_PTR id, const WCHAR* text) noexcept {
    Menu* const menu = MenuOf(handle);
    if (!menu) return FALSE;
    Menu* below = nullptr;
    if (flags & MF_POPUP) {
        below = MenuOf(reinterpret_cast<HMENU>(id));
        if (!below) return FALSE;
        if (below == menu || IsBelow(*below, menu)) return Fail(ERROR_INVALID_PARAMETER);
    }
    return Guarded(FALSE, [&] {
        const bool separator = (flags & MF_SEPARATOR) != 0 || (!below && !text && id == 0);
        const UINT kept = flags & (kStateFlags | MF_POPUP);
        menu->items.push_back({separator ? kept | MF_SEPARATOR : kept, below ? 0 : static_cast<UINT>(id), below,
                               text && !separator ? text : W("")});
        return TRUE;
    });
}

extern "C" BOOL DeleteMenu(HMENU handle, UINT item, UINT flags) noexcept {
    const Place place = FindItem(handle, item, flags);
    if (!place) return FALSE;
    delete place->menu;
    place.menu->items.erase(place.menu->items.begin() + static_cast<std::ptrdiff_t>(place.index));
    return TRUE;
}

extern "C" BOOL EnableMenuItem(HMENU handle, UINT item, UINT flags) noexcept {
    const Place place = FindItem(handle, item, flags);
    if (!place) return -1;
    constexpr UINT kDisabled = 0x3;
    const UINT before = place->flags & kDisabled;
    place->flags = (place->flags & ~kDisabled) | (flags & kDisabled);
    return static_cast<BOOL>(before);
}

extern "C" int GetMenuItemCount(HMENU handle) noexcept {
    const Menu* const menu = MenuOf(handle);
    return menu ? static_cast<int>(menu->items.size()) : -1;
}

extern "C" UINT GetMenuItemID(HMENU handle, int position) noexcept {
    const Place place = FindItem(handle, static_cast<UINT>(position), MF_BYPOSITION);
    return place && !place->menu ? place->id : kNone;
}

extern "C" UINT GetMenuState(HMENU handle, UINT item, UINT flags) noexcept {
    const Place place = FindItem(handle, item, flags);
    if (!place) return kNone;
    if (!place->menu) return place->flags;
    return (place->flags & 0xFF) | (static_cast<UINT>(place->menu->items.size()) & 0xFF) << 8;
}

extern "C" int GetMenuStringW(HMENU handle, UINT item, WCHAR* text, int size, UINT flags) noexcept {
    if (text && size > 0) *text = 0;
    const Place place = FindItem(handle, item, flags);
    if (!place) return 0;
    const auto length = static_cast<int>(place->text.size());
    if (!text || size <= 0) return length;
    const std::size_t copied = place->text.copy(text, static_cast<std::size_t>(size) - 1);
    text[copied] = 0;
    return static_cast<int>(copied);
}

extern "C" HMENU GetSubMenu(HMENU handle, int position) noexcept {
    const Place place = FindItem(handle, static_cast<UINT>(position), MF_BYPOSITION);
    return place ? HandleOf(place->menu) : nullptr;
}

extern "C" BOOL SetMenuItemInfoW(HMENU handle, UINT item, BOOL by_position, const MENUITEMINFOW* info) noexcept {
    if (!info || info->cbSize != sizeof *info || info->fMask != MIIM_STRING || !info->dwTypeData) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    const Place place = FindItem(handle, item, by_position ? MF_BYPOSITION : MF_BYCOMMAND);
    if (!place) return FALSE;
    if (platform::FaultHere()) return Fail(ERROR_NOT_ENOUGH_MEMORY);
    return Guarded(FALSE, [&] {
        place->text = info->dwTypeData;
        return TRUE;
    });
}
