// Items by key: at most one for each setting, walked in ascending order of the keys' bytes.
#pragma once

#include <array>
#include <cstddef>
#include <memory>

#include "settings/media_property_item.h"
#include "settings/property_table.h"

namespace clipfio {

class ItemTable {
  public:
    // By rank in key order; null where there is no item.
    [[nodiscard]] MediaPropertyItem* At(size_t rank) const noexcept { return items_[rank]; }
    // Null for a key that no item has.
    [[nodiscard]] MediaPropertyItem* Find(std::string_view key) const noexcept;

    template <class Visit>
    void ForEach(Visit&& visit) const noexcept {
        for (MediaPropertyItem* item : items_) {
            if (item) visit(*item);
        }
    }

  protected:
    ItemTable() noexcept = default;
    ~ItemTable() = default;
    ItemTable(const ItemTable&) = delete;
    ItemTable& operator=(const ItemTable&) = delete;

    std::array<MediaPropertyItem*, kPropertyCount> items_{};
};

// Owns its items.
class ItemMap : public ItemTable {
  public:
    ItemMap() noexcept = default;
    ~ItemMap() { Clear(); }

    // False, and the item is deleted, when its key is taken or belongs to no setting.
    bool Insert(std::unique_ptr<MediaPropertyItem> item) noexcept;
    void Clear() noexcept;
    // Becomes clones of all items of `other`; empty with E_OUTOFMEMORY.
    [[nodiscard]] HRESULT CloneFrom(const ItemTable& other) noexcept;
};

// Throw-away clones on the stack: making them takes no memory and cannot fail.
class ItemClones : public ItemTable {
  public:
    explicit ItemClones(const ItemTable& source) noexcept;
    ~ItemClones();

  private:
    struct alignas(std::max_align_t) Place {
        std::byte bytes[kItemBytes];
    };
    std::array<Place, kPropertyCount> places_;
};

}  // namespace clipfio
