// The bytes of a decode-properties file, in and out of a stream.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/base.h"
#include "platform/com.h"

namespace clipfio {

// Takes a stream apart at its delimiters. A host's stream is read one byte at a time, so that it is never asked for
// more than the text needs; a file of our own in blocks. No seeking. The stream is not counted.
class EntrySource {
  public:
    enum class Reading { ByteByByte, InBlocks };
    EntrySource(IStream* stream, Reading reading) noexcept;
    EntrySource(const EntrySource&) = delete;
    EntrySource& operator=(const EntrySource&) = delete;

    // Reads up to and including `delimiter`. S_OK when it came; S_FALSE at the end of the stream, also where the stream
    // reports success and delivers nothing; else the failure. Text() is what came before in any case.
    [[nodiscard]] HRESULT ReadUntil(char delimiter) noexcept;

    // Zero-terminated; valid until the next read. A text is looked at for its first 64 KiB only.
    [[nodiscard]] std::string_view Text() const noexcept { return text_; }
    // The text as atof reads it, in the C runtime's locale at the time the source was made.
    [[nodiscard]] double Number() const noexcept;

  private:
    [[nodiscard]] HRESULT Fill() noexcept;
    [[nodiscard]] HRESULT Keep(std::string_view part) noexcept;

    IStream* const stream_;
    const uint32_t blockBytes_;
    const bool pointIsDot_;  // in numbers, by the C runtime's locale
    bool ended_ = false;
    char* next_;
    char* end_;
    std::string_view text_;
    std::string spill_;  // a text that does not lie in one block
    char block_[4096];
};

// Writes all of `text` with one call. A short write is a failure.
[[nodiscard]] HRESULT WriteText(IStream* stream, std::string_view text) noexcept;

}  // namespace clipfio
