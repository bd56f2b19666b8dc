#include "settings/item_map.h"

namespace clipfio {

MediaPropertyItem* ItemTable::Find(std::string_view key) const noexcept {
    const size_t rank = FindPropertyRank(key);
    return rank < kPropertyCount ? items_[rank] : nullptr;
}

bool ItemMap::Insert(std::unique_ptr<MediaPropertyItem> item) noexcept {
    const size_t rank = FindPropertyRank(item->GetName());
    if (rank == kPropertyCount || items_[rank]) return false;
    items_[rank] = item.release();
    return true;
}

void ItemMap::Clear() noexcept {
    for (MediaPropertyItem*& item : items_) {
        delete item;
        item = nullptr;
    }
}

HRESULT ItemMap::CloneFrom(const ItemTable& other) noexcept {
    Clear();
    for (size_t rank = 0; rank < kPropertyCount; ++rank) {
        if (!other.At(rank)) continue;
        items_[rank] = other.At(rank)->Clone(nullptr);
        if (!items_[rank]) {
            Clear();
            return E_OUTOFMEMORY;
        }
    }
    return S_OK;
}

ItemClones::ItemClones(const ItemTable& source) noexcept {
    for (size_t rank = 0; rank < kPropertyCount; ++rank) {
        if (source.At(rank)) items_[rank] = source.At(rank)->Clone(places_[rank].bytes);
    }
}

ItemClones::~ItemClones() {
    ForEach([](MediaPropertyItem& item) { item.~MediaPropertyItem(); });
}

}  // namespace clipfio
