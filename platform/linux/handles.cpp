#include "handles.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

#include "errors.h"
#include "mappings.h"
#include "platform/files.h"
#include "platform/process.h"
#include "window_record.h"

namespace platform {
namespace {

// HandleSlot::word: the generation in the upper half; below it the open flag and the count of uses. The open handle is
// itself one use, so a count of 0 means that nobody needs the slot any more.
constexpr std::uint64_t kOpen = 1ull << 31;
constexpr std::uint64_t kUses = kOpen - 1;
constexpr std::uint64_t kState = kOpen | kUses;
constexpr unsigned kGenerationShift = 32;

// A handle's value: the tag, 32 bits of generation, the index, and two low bits of 0.
constexpr std::uint64_t kTag = 0x1C0ull << 52;
constexpr std::uint64_t kTagMask = 0xFFFull << 52;
constexpr unsigned kValueGenerationShift = 20;
constexpr unsigned kValueIndexShift = 2;

struct Decoded {
    std::uint32_t index;  // 0: no handle of the table
    std::uint64_t generation;
};

Decoded Decode(HANDLE handle) noexcept {
    const auto value = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(handle));
    const auto index = (value & ((1ull << kValueGenerationShift) - 1)) >> kValueIndexShift;
    if ((value & kTagMask) != kTag || (value & 3) != 0 || index >= kMaxHandles) return {0, 0};
    return {static_cast<std::uint32_t>(index), value >> kValueGenerationShift & 0xFFFFFFFFu};
}

HANDLE Encode(std::uint32_t index, std::uint64_t generation) noexcept {
    return reinterpret_cast<HANDLE>(kTag | generation << kValueGenerationShift | index << kValueIndexShift);
}

std::uint32_t IndexOf(const HandleSlot* slot) noexcept { return static_cast<std::uint32_t>(slot - Shared().slots); }

// Adds a use to the slot that the handle names, or gives null.
HandleSlot* Use(HANDLE handle) noexcept {
    const Decoded decoded = Decode(handle);
    if (decoded.index == 0) return nullptr;
    HandleSlot& slot = Shared().slots[decoded.index];
    std::uint64_t word = slot.word.load(std::memory_order_relaxed);
    do {
        if (word >> kGenerationShift != decoded.generation || (word & kOpen) == 0) return nullptr;
    } while (!slot.word.compare_exchange_weak(word, word + 1, std::memory_order_acquire, std::memory_order_relaxed));
    return &slot;
}

// A mutex that another thread holds stays in that thread's list of held locks, which the C library walks when the
// thread ends: its memory must then keep its meaning, so such a slot is given up for good.
bool DestroyMutex(HandleSlot& slot) noexcept {
    const int result = pthread_mutex_trylock(&slot.mutex);
    if (result == EBUSY) return false;
    if (result == EOWNERDEAD) pthread_mutex_consistent(&slot.mutex);
    if (result == 0 || result == EOWNERDEAD) {
        // Held by this thread, perhaps more than once: the count of our own says how often, and one for the try.
        const std::uint32_t held = result == 0 ? slot.flags : 0;
        for (std::uint32_t i = 0; i <= held; ++i) pthread_mutex_unlock(&slot.mutex);
    }
    pthread_mutex_destroy(&slot.mutex);
    return true;
}

void DestroyProcess(HandleSlot& slot) noexcept {
    // Whoever made a child by other means waits for it by other means.
    siginfo_t info;
    if (slot.process.is_child) waitid(P_PIDFD, static_cast<id_t>(slot.number), &info, WEXITED | WNOHANG);
    close(slot.number);
}

void Unuse(HandleSlot& slot) noexcept;

// Lets go of what the slot stands for. False when the slot cannot be used again.
bool Destroy(HandleSlot& slot) noexcept {
    if (slot.link != 0) {
        Unuse(Shared().slots[slot.link]);
        return true;
    }
    switch (slot.type) {
        case HandleType::kFile:
            close(slot.number);
            return true;
        case HandleType::kMutex:
            return DestroyMutex(slot);
        case HandleType::kProcess:
            DestroyProcess(slot);
            return true;
        case HandleType::kWindow:
            FreeWindow(slot.window);
            return true;
        case HandleType::kFont:
        case HandleType::kBitmap:
        case HandleType::kIcon:
        case HandleType::kImageList:
        case HandleType::kAccelerators:
            std::free(slot.block);
            return true;
        case HandleType::kDeviceContext:
        case HandleType::kKey:
        case HandleType::kNone:
            break;
    }
    return true;
}

void Unuse(HandleSlot& slot) noexcept {
    const std::uint64_t before = slot.word.fetch_sub(1, std::memory_order_acq_rel);
    if ((before & kState) != 1) return;
    if (!Destroy(slot)) return;
    const std::uint64_t generation = ((before >> kGenerationShift) + 1) & 0xFFFFFFFFu;
    slot.type = HandleType::kNone;
    slot.word.store(generation << kGenerationShift, std::memory_order_release);

    ProcessShared& shared = Shared();
    PthreadLock lock(shared.table_lock);
    slot.link = shared.free_head;
    shared.free_head = IndexOf(&slot);
}

// A slot that nobody else knows yet, or null with the last error set.
HandleSlot* TakeSlot() noexcept {
    ProcessShared& shared = Shared();
    PthreadLock lock(shared.table_lock);
    std::uint32_t index = shared.free_head;
    if (index != 0) {
        shared.free_head = shared.slots[index].link;
    } else if (shared.slots_used + 1 < kMaxHandles) {
        index = ++shared.slots_used;
    } else {
        return Fail<HandleSlot*>(ERROR_TOO_MANY_OPEN_FILES, nullptr);
    }
    HandleSlot& slot = shared.slots[index];
    slot.link = 0;
    slot.flags = 0;
    slot.number = 0;
    return &slot;
}

HANDLE Publish(HandleSlot& slot, HandleType type) noexcept {
    slot.type = type;
    const std::uint64_t generation = slot.word.load(std::memory_order_relaxed) >> kGenerationShift;
    slot.word.store(generation << kGenerationShift | kOpen | 1, std::memory_order_release);
    return Encode(IndexOf(&slot), generation);
}

BOOL CloseTableHandle(HANDLE handle) noexcept {
    const Decoded decoded = Decode(handle);
    if (decoded.index == 0) return Fail(ERROR_INVALID_HANDLE);
    HandleSlot& slot = Shared().slots[decoded.index];
    std::uint64_t word = slot.word.load(std::memory_order_relaxed);
    do {
        if (word >> kGenerationShift != decoded.generation || (word & kOpen) == 0) return Fail(ERROR_INVALID_HANDLE);
    } while (!slot.word.compare_exchange_weak(word, word & ~kOpen, std::memory_order_acq_rel));
    Unuse(slot);
    return TRUE;
}

}  // namespace

HandleUse::HandleUse(HANDLE handle, HandleType type) noexcept : slot_(Use(handle)) {
    if (!slot_) return;
    if (type != HandleType::kNone && slot_->type != type) {
        Unuse(*std::exchange(slot_, nullptr));
        return;
    }
    target_ = slot_->link != 0 ? &Shared().slots[slot_->link] : slot_;
}

HandleUse::~HandleUse() {
    if (slot_) Unuse(*slot_);
}

bool IsTableHandle(HANDLE handle) noexcept { return Decode(handle).index != 0; }

HANDLE NewFileHandle(int descriptor, std::uint32_t flags) noexcept {
    HandleSlot* const slot = TakeSlot();
    if (!slot) {
        close(descriptor);
        return nullptr;
    }
    slot->number = descriptor;
    slot->flags = flags;
    return Publish(*slot, HandleType::kFile);
}

HANDLE NewProcessHandle(int pidfd, DWORD id, DWORD access, bool is_child) noexcept {
    HandleSlot* const slot = TakeSlot();
    if (!slot) {
        close(pidfd);
        return nullptr;
    }
    slot->number = pidfd;
    slot->flags = access;
    slot->process = {id, is_child, 0, 0};
    return Publish(*slot, HandleType::kProcess);
}

HANDLE NewMutexHandle() noexcept {
    HandleSlot* const slot = TakeSlot();
    if (!slot) return nullptr;
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    // A holder that ends leaves the mutex to the next one who waits, as Win32 has it.
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    pthread_mutex_init(&slot->mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    return Publish(*slot, HandleType::kMutex);
}

HANDLE NewKeyHandle(const KeyFacts& key, DWORD access) noexcept {
    HandleSlot* const slot = TakeSlot();
    if (!slot) return nullptr;
    slot->flags = access;
    slot->key = key;
    return Publish(*slot, HandleType::kKey);
}

HWND NewWindowHandle(Window* window) noexcept {
    HandleSlot* const slot = TakeSlot();
    if (!slot) {
        FreeWindow(window);
        return nullptr;
    }
    slot->window = window;
    return static_cast<HWND>(Publish(*slot, HandleType::kWindow));
}

void CloseWindowHandle(HWND handle) noexcept { CloseTableHandle(handle); }

HANDLE NewBlockHandle(HandleType type, void* block) noexcept {
    if (!block) return nullptr;
    HandleSlot* const slot = TakeSlot();
    if (!slot) {
        std::free(block);
        return nullptr;
    }
    slot->block = block;
    return Publish(*slot, type);
}

HDC NewDeviceContextHandle() noexcept {
    HandleSlot* const slot = TakeSlot();
    if (!slot) return nullptr;
    slot->selected = nullptr;
    return static_cast<HDC>(Publish(*slot, HandleType::kDeviceContext));
}

void CloseObjectHandle(HANDLE handle) noexcept { CloseTableHandle(handle); }

BOOL CloseBlockHandle(HANDLE handle, HandleType type) noexcept {
    return HandleUse(handle, type) ? CloseTableHandle(handle) : Fail(ERROR_INVALID_HANDLE);
}

HANDLE NewAliasHandle(HANDLE handle, DWORD rights) noexcept {
    HandleSlot* used = Use(handle);
    if (!used) return Fail<HANDLE>(ERROR_INVALID_HANDLE, nullptr);
    const HandleType type = used->type;
    if (used->link != 0) {
        // The slot in use keeps its target alive, so the target can be given a use without further ado.
        HandleSlot& target = Shared().slots[used->link];
        target.word.fetch_add(1, std::memory_order_acquire);
        Unuse(*used);
        used = &target;
    }
    HandleSlot* const slot = TakeSlot();
    if (!slot) {
        Unuse(*used);
        return nullptr;
    }
    slot->link = IndexOf(used);
    slot->flags = rights;
    return Publish(*slot, type);
}

}  // namespace platform

// A pseudo handle needs no closing, and closing one has no effect.
extern "C" BOOL CloseHandle(HANDLE handle) noexcept {
    if (handle == GetCurrentProcess()) return TRUE;
    if (platform::IsMappingHandle(handle)) return platform::CloseMapping(handle);
    const bool closable = [handle] {
        const platform::HandleUse use(handle, platform::HandleType::kNone);
        return use && use->type < platform::HandleType::kWindow;
    }();
    return closable ? platform::CloseTableHandle(handle) : platform::Fail(ERROR_INVALID_HANDLE);
}
