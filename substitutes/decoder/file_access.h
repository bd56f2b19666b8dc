// Files by position, through the platform.
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>

#include "platform/base.h"
#include "platform/scoped.h"

namespace clipfio::decoder {

// A file open for reading. Any thread may read, under a lock that is held while the one position of the file moves.
class InputFile {
  public:
    [[nodiscard]] bool Open(const WString& path) noexcept;
    void Close() noexcept;
    [[nodiscard]] uint64_t Size() const noexcept { return size_; }  // bytes, as it was when opened
    // Bytes read: fewer than asked for at the end of the file or after a failure.
    size_t ReadAt(uint64_t offset, void* data, size_t bytes) noexcept;

  private:
    std::mutex lock_;
    platform::ScopedHandle file_;
    uint64_t size_ = 0;
};

// A file that is made new and written from its start on; one thread.
class OutputFile {
  public:
    [[nodiscard]] bool Create(const WString& path) noexcept;
    [[nodiscard]] bool IsOpen() const noexcept { return static_cast<bool>(file_); }
    [[nodiscard]] bool Write(const void* data, size_t bytes) noexcept;
    [[nodiscard]] bool Rewind() noexcept;
    // False when what was written could not be brought to its place.
    [[nodiscard]] bool Close() noexcept;

  private:
    platform::ScopedHandle file_;
};

}  // namespace clipfio::decoder
