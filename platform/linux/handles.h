// The table of live handles.
//
// A handle's value is a slot's index with the slot's generation and a tag that no address has, so that a wrong, closed,
// foreign or wild value is recognised. Whoever works on a handle holds a HandleUse: the object behind it stays until
// the last use has gone, also when another thread closes the handle meanwhile.
#pragma once

#include "process_shared.h"

namespace platform {

inline constexpr std::uint32_t kFileReadable = 1;
inline constexpr std::uint32_t kFileWritable = 2;
inline constexpr std::uint32_t kFileRegular = 4;
inline constexpr std::uint32_t kFilePipe = 8;
inline constexpr DWORD kAllProcessAccess = 0x1FFFFF;

class HandleUse {
  public:
    // Empty when `handle` is no live handle of that type; kNone takes any type.
    HandleUse(HANDLE handle, HandleType type) noexcept;
    ~HandleUse();
    HandleUse(const HandleUse&) = delete;
    HandleUse& operator=(const HandleUse&) = delete;

    explicit operator bool() const noexcept { return slot_ != nullptr; }
    // What the handle stands for, and the rights of this very handle, which an alias may have fewer of.
    HandleSlot* operator->() const noexcept { return target_; }
    HandleSlot& operator*() const noexcept { return *target_; }
    [[nodiscard]] std::uint32_t Rights() const noexcept { return slot_->flags; }
    // Of a type whose slot holds a block.
    template <class T>
    [[nodiscard]] T& Block() const noexcept {
        return *static_cast<T*>(target_->block);
    }

  private:
    HandleSlot* slot_ = nullptr;
    HandleSlot* target_ = nullptr;
};

// By its value alone: such a handle may be closed, or be another process's.
bool IsTableHandle(HANDLE handle) noexcept;

// Each takes over the descriptor it is given; null with the last error set, and the descriptor closed, on failure.
HANDLE NewFileHandle(int descriptor, std::uint32_t flags) noexcept;
// A child of this process is cleared away with its last handle, if it has ended by then.
HANDLE NewProcessHandle(int pidfd, DWORD id, DWORD access, bool is_child) noexcept;
HANDLE NewMutexHandle() noexcept;
// Takes over a window, also when it fails, and frees it with the last use of the handle.
HWND NewWindowHandle(Window* window) noexcept;
void CloseWindowHandle(HWND handle) noexcept;
HDC NewDeviceContextHandle() noexcept;
// Takes over a block of the C library's heap, also when it fails, and frees it with the last use of the handle. Null
// for a null block.
HANDLE NewBlockHandle(HandleType type, void* block) noexcept;
// Of a device context or a block.
void CloseObjectHandle(HANDLE handle) noexcept;
// Closes the handle of a block of that type; with the last error set when it is none.
BOOL CloseBlockHandle(HANDLE handle, HandleType type) noexcept;
HANDLE NewKeyHandle(const KeyFacts& key, DWORD access) noexcept;
// A second handle on the same mutex or process.
HANDLE NewAliasHandle(HANDLE handle, DWORD rights) noexcept;

}  // namespace platform
