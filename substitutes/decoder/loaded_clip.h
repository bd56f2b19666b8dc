// An open clip with all that decoding keeps from one frame to the next.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "r3dsdk/sdk_records.h"
#include "substitutes/decoder/clip_file.h"
#include "substitutes/decoder/development_cache.h"

namespace clipfio::decoder {

// Buffers for stored rows, one for each decode under way; they are kept and used again. Any thread.
class RowBuffers {
  public:
    // The widest row fits.
    static constexpr size_t kBytes = size_t{1} << 18;
    using Buffer = std::unique_ptr<uint16_t[]>;

    Buffer Take();  // throws std::bad_alloc
    void Give(Buffer buffer) noexcept;

  private:
    std::mutex lock_;
    std::vector<Buffer> free_;
};

// Any number of threads may decode at a time, and read sound meanwhile.
class LoadedClip {
  public:
    [[nodiscard]] Status Open(const WString& path) noexcept { return file_.Open(path); }
    [[nodiscard]] ClipFile& File() noexcept { return file_; }

    // Nothing is written unless the job is good and the file holds the frame. Throws std::bad_alloc.
    [[nodiscard]] Status Decode(uint64_t frame, const VideoDecodeJob& job);

  private:
    ClipFile file_;
    DevelopmentCache developments_;
    RowBuffers buffers_;
};

}  // namespace clipfio::decoder
