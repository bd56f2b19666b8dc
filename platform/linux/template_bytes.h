// Reading a template, which as a resource has an end that is known, and elsewhere has to be whole.
#pragma once

#include "platform/endian.h"
#include "resources.h"

namespace platform {

// Past the end everything is 0.
class TemplateBytes {
  public:
    explicit TemplateBytes(const void* bytes) noexcept
        : start_(static_cast<const unsigned char*>(bytes)), size_(ResourceBytesFrom(bytes)) {}

    [[nodiscard]] bool Failed() const noexcept { return failed_; }
    [[nodiscard]] const unsigned char* Here() const noexcept { return start_ + at_; }
    void Skip(std::size_t bytes) noexcept { Take(bytes); }
    void Align() noexcept { Skip((4 - at_ % 4) % 4); }

    template <class T>
    T Read() noexcept {
        const unsigned char* const bytes = Take(sizeof(T));
        return bytes ? LoadLittle<T>(bytes) : T{};
    }

    WString ReadText() {
        WString text;
        while (const auto unit = Read<WORD>()) text += static_cast<WCHAR>(unit);
        return text;
    }

  private:
    const unsigned char* Take(std::size_t bytes) noexcept {
        failed_ = failed_ || bytes > size_ - at_;
        if (failed_) return nullptr;
        at_ += bytes;
        return start_ + at_ - bytes;
    }

    const unsigned char* start_;
    std::size_t size_;
    std::size_t at_ = 0;
    bool failed_ = false;
};

}  // namespace platform
