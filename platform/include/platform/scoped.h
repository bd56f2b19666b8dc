// Scope objects: every handle, view, lock and reference has one owner that lets it go.
#pragma once

#include <utility>

#include "platform/base.h"
#include "platform/com.h"
#include "platform/files.h"
#include "platform/memory.h"
#include "platform/modules.h"
#include "platform/process.h"
#include "platform/registry.h"
#include "platform/sync.h"

namespace platform {

// Owns one value of Traits::Type; Traits::Empty() is the value that owns nothing, Traits::Free(value) lets it go.
template <class Traits>
class Scoped {
  public:
    using Type = typename Traits::Type;

    Scoped() noexcept = default;
    explicit Scoped(Type value) noexcept : value_(value) {}
    Scoped(Scoped&& other) noexcept : value_(other.Release()) {}
    Scoped& operator=(Scoped&& other) noexcept {
        Reset(other.Release());
        return *this;
    }
    Scoped(const Scoped&) = delete;
    Scoped& operator=(const Scoped&) = delete;
    ~Scoped() { Reset(); }

    [[nodiscard]] Type Get() const noexcept { return value_; }
    explicit operator bool() const noexcept { return Traits::IsSet(value_); }
    Type Release() noexcept { return std::exchange(value_, Traits::Empty()); }
    void Reset(Type value = Traits::Empty()) noexcept {
        const Type old = std::exchange(value_, value);
        if (Traits::IsSet(old)) Traits::Free(old);
    }
    // For calls that hand the value over through a pointer. What was owned before is let go.
    Type* Out() noexcept {
        Reset();
        return &value_;
    }

  private:
    Type value_ = Traits::Empty();
};

struct HandleTraits {
    using Type = HANDLE;
    static Type Empty() noexcept { return nullptr; }
    // Some calls report failure as null and some as -1: neither is a handle.
    static bool IsSet(Type h) noexcept { return h != nullptr && h != INVALID_HANDLE_VALUE; }
    static void Free(Type h) noexcept { CloseHandle(h); }
};
using ScopedHandle = Scoped<HandleTraits>;

struct LibraryTraits {
    using Type = HMODULE;
    static Type Empty() noexcept { return nullptr; }
    static bool IsSet(Type h) noexcept { return h != nullptr; }
    static void Free(Type h) noexcept { FreeLibrary(h); }
};
using ScopedLibrary = Scoped<LibraryTraits>;

struct ViewTraits {
    using Type = void*;
    static Type Empty() noexcept { return nullptr; }
    static bool IsSet(Type p) noexcept { return p != nullptr; }
    static void Free(Type p) noexcept { UnmapViewOfFile(p); }
};
using ScopedView = Scoped<ViewTraits>;

struct KeyTraits {
    using Type = HKEY;
    static Type Empty() noexcept { return nullptr; }
    static bool IsSet(Type key) noexcept { return key != nullptr; }
    static void Free(Type key) noexcept { RegCloseKey(key); }
};
using ScopedKey = Scoped<KeyTraits>;

// Holds a mutex handle for a scope, without a time-out.
class MutexLock {
  public:
    explicit MutexLock(HANDLE mutex) noexcept : mutex_(mutex) { WaitForSingleObject(mutex_, INFINITE); }
    ~MutexLock() { ReleaseMutex(mutex_); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

  private:
    HANDLE mutex_;
};

class CriticalSectionLock {
  public:
    explicit CriticalSectionLock(CRITICAL_SECTION& section) noexcept : section_(section) {
        EnterCriticalSection(&section_);
    }
    ~CriticalSectionLock() { LeaveCriticalSection(&section_); }
    CriticalSectionLock(const CriticalSectionLock&) = delete;
    CriticalSectionLock& operator=(const CriticalSectionLock&) = delete;

  private:
    CRITICAL_SECTION& section_;
};

// One counted reference to a COM object.
template <class T>
class ComPtr {
  public:
    ComPtr() noexcept = default;
    // Takes a reference of its own.
    explicit ComPtr(T* object) noexcept : object_(object) {
        if (object_) object_->AddRef();
    }
    ComPtr(const ComPtr& other) noexcept : ComPtr(other.object_) {}
    ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~ComPtr() {
        if (object_) object_->Release();
    }

    // Takes over the caller's reference.
    static ComPtr Adopt(T* object) noexcept {
        ComPtr p;
        p.object_ = object;
        return p;
    }

    [[nodiscard]] T* Get() const noexcept { return object_; }
    T* operator->() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }
    [[nodiscard]] T* Detach() noexcept { return std::exchange(object_, nullptr); }
    void Reset() noexcept { *this = ComPtr(); }
    T** Out() noexcept {
        Reset();
        return &object_;
    }
    void** OutVoid() noexcept { return reinterpret_cast<void**>(Out()); }

  private:
    T* object_ = nullptr;
};

}  // namespace platform
