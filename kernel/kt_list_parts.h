// What the operations of the list share.
#pragma once

#include <cstring>

#include "kernel/kt_list.h"

namespace clipfio::list {

inline bool IsHeap(const tKTLIST& list) noexcept { return (list.options & KTLIST_HEAP) != 0; }
inline bool IsInPlace(const tKTLIST& list) noexcept { return (list.options & KTLIST_IN_PLACE) != 0; }

inline char* SlotOf(const tKTLIST& list, int32_t index) noexcept {
    return static_cast<char*>(list.array) + static_cast<std::size_t>(index) * list.item_size;
}
inline void*& PointerAt(const tKTLIST& list, int32_t index) noexcept { return static_cast<void**>(list.array)[index]; }

// What a compare or match function is handed.
inline const void* ItemOf(const tKTLIST& list, int32_t index) noexcept {
    return IsInPlace(list) ? SlotOf(list, index) : PointerAt(list, index);
}

inline std::size_t BytesOf(const tKTLIST& list, int32_t slots) noexcept {
    return static_cast<std::size_t>(slots) * list.item_size;
}

// The head of an operation: false when it may not go on; else the list's lock, if it has one, is held.
class Use {
  public:
    explicit Use(tKTLIST* list) noexcept {
        if (!KtList_IsListFast(list)) return;
        const uint32_t options = list->options;
        if ((options & (KTLIST_LOCKED | KTLIST_ANY_THREAD)) == 0 && GetCurrentThreadId() != list->thread_owner) return;
        list_ = list;
        if (options & KTLIST_LOCKED) EnterCriticalSection(&list->lock);
    }
    ~Use() {
        if (list_ && (list_->options & KTLIST_LOCKED)) LeaveCriticalSection(&list_->lock);
    }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

    explicit operator bool() const noexcept { return list_ != nullptr; }

  private:
    tKTLIST* list_ = nullptr;
};

// Room for `more` items behind the last one.
[[nodiscard]] HRESULT EnsureRoom(tKTLIST& list, int64_t more) noexcept;
// Opens a gap of `count` slots, for which there is room, and counts them in.
char* OpenGap(tKTLIST& list, int32_t index, int32_t count) noexcept;

}  // namespace clipfio::list
