// State that all copies of this library in one process share.
//
// The host program and the module each link their own copy, and what one of them opens the other is handed: file
// handles above all. So the handle table is one per process and not one per copy. It lies at a fixed address, where
// the kernel lets exactly one copy make the mapping and all others find it. It holds plain data only, since the copy
// that wrote something may be unloaded, and its first state is all zero bits, so that there is nothing to wait for.
//
// Where the address is taken by something else, a copy has a table of its own, and only its own handles work in it.
#pragma once

#include <pthread.h>

#include <atomic>

#include "platform/base.h"
#include "platform/gdi.h"

namespace platform {

inline constexpr std::uint32_t kMaxHandles = 1u << 17;
inline constexpr std::uint32_t kMaxResourceImages = 64;
inline constexpr std::size_t kKnownBlocks = 4096;

inline constexpr std::uint32_t kMaxWindowClasses = 256;
inline constexpr std::uint32_t kMaxSharedIcons = 1024;
inline constexpr std::size_t kLongestClassName = 64;  // with the terminator

// From kWindow on those that CloseHandle does not close.
enum class HandleType : std::uint32_t {
    kNone,
    kFile,
    kMutex,
    kProcess,
    kKey,
    kWindow,
    kDeviceContext,
    kFont,
    kBitmap,
    kIcon,
    kImageList,
    kAccelerators
};

struct Window;

struct WindowClass {
    WCHAR name[kLongestClassName];  // in capitals; empty: the place is free
    LONG_PTR (*procedure)(HWND, UINT, WPARAM, LPARAM);
    HINSTANCE instance;
};

struct ProcessFacts {
    DWORD id;
    bool is_child;            // made by CreateProcessW
    std::int32_t terminated;  // by us, with the code beside it
    DWORD exit_code;
};

struct KeyFacts {
    std::int64_t id;       // in the hive's file; 0 is its root
    std::uint64_t folder;  // the hash of the registry's folder: elsewhere the id means nothing
    std::uint32_t hive;
};

// One handle, on a cache line of its own.
struct alignas(64) HandleSlot {
    std::atomic<std::uint64_t> word;  // generation, then open flag and uses; see handles.cpp
    HandleType type;
    std::uint32_t flags;  // file: kFile*; mutex: how often its owner holds it; process, key: the access rights
    std::uint32_t link;   // in use: the slot that this one is an alias of, or 0; free: the next free slot, or 0
    std::int32_t number;  // file, process: the descriptor; mutex: the thread that holds it, or 0
    union {
        pthread_mutex_t mutex;
        ProcessFacts process;
        KeyFacts key;
        Window* window;
        HFONT selected;  // of a device context; null: the font of the system
        void* block;     // of all the types behind it: what the handle stands for, from the C library's heap
    };
};
static_assert(sizeof(HandleSlot) == 64);

// An icon or cursor that is loaded once, however often it is asked for.
struct SharedIcon {
    HMODULE module;
    const void* source;  // the resource, or the number of one of the system's; null: the place is free
    std::int32_t width;
    std::int32_t height;
    HICON icon;
};

struct ResourceImage {
    HMODULE module;
    const void* bytes;
    std::size_t size;
};

struct ProcessShared {
    std::atomic<std::uint64_t> magic;
    std::atomic<std::int32_t> fault_countdown;
    std::atomic<std::int32_t> fault_hit;
    pthread_mutex_t table_lock;
    pthread_mutex_t mapping_lock;
    pthread_mutex_t environment_lock;
    pthread_mutex_t resource_lock;
    std::uint32_t free_head;  // index of a free slot, 0 when there is none
    std::uint32_t slots_used;
    pthread_mutex_t class_lock;
    WindowClass window_classes[kMaxWindowClasses];
    ResourceImage images[kMaxResourceImages];
    pthread_mutex_t icon_lock;
    SharedIcon shared_icons[kMaxSharedIcons];
    std::atomic<std::uintptr_t> known_blocks[kKnownBlocks];  // of the global heap; see memory.cpp
    HandleSlot slots[kMaxHandles];                           // slot 0 is never used
};

namespace detail {
extern std::atomic<ProcessShared*> g_shared;
ProcessShared& AttachShared() noexcept;
}  // namespace detail

inline ProcessShared& Shared() noexcept {
    ProcessShared* shared = detail::g_shared.load(std::memory_order_acquire);
    return shared ? *shared : detail::AttachShared();
}

class PthreadLock {
  public:
    explicit PthreadLock(pthread_mutex_t& mutex) noexcept : mutex_(mutex) { pthread_mutex_lock(&mutex_); }
    ~PthreadLock() { pthread_mutex_unlock(&mutex_); }
    PthreadLock(const PthreadLock&) = delete;
    PthreadLock& operator=(const PthreadLock&) = delete;

  private:
    pthread_mutex_t& mutex_;
};

}  // namespace platform
