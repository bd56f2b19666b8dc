// The handles of the library.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "substitutes/decoder/loaded_clip.h"

namespace clipfio::decoder {

// What a handle stands for: a place for one clip at a time. Any thread.
class ClipSlot {
  public:
    // The clip that was loaded before goes, whether or not the new one opens. Throws std::bad_alloc.
    [[nodiscard]] Status Load(const char* path);
    void Close() noexcept;
    [[nodiscard]] Status LastStatus() const noexcept;  // Good while a clip is loaded

    // Null when no clip is loaded. Whoever holds it may finish with it when the slot closes meanwhile.
    [[nodiscard]] std::shared_ptr<LoadedClip> Clip() const noexcept;

  private:
    mutable std::mutex lock_;
    std::shared_ptr<LoadedClip> clip_;
    Status status_ = Status::NoClip;
};

// A handle is a number that is never given twice, so that a wrong, an old or a foreign one finds nothing. Any thread.
class ClipRegistry {
  public:
    uintptr_t Create();  // throws std::bad_alloc
    void Destroy(uintptr_t handle) noexcept;
    void DestroyAll() noexcept;
    [[nodiscard]] std::shared_ptr<ClipSlot> Find(uintptr_t handle) const noexcept;  // null when there is none

  private:
    mutable std::mutex lock_;
    std::unordered_map<uintptr_t, std::shared_ptr<ClipSlot>> slots_;
    uintptr_t next_ = 1;
};

// The one registry of the library.
ClipRegistry& Clips() noexcept;

}  // namespace clipfio::decoder
