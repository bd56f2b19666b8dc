// Templates of dialogs, put together word by word.
#pragma once

#include <cstdint>
#include <string>

#include "platform/dialogs.h"

namespace support {

class Template {
  public:
    Template& Word(uint32_t value) {
        bytes_ += static_cast<char>(value & 0xFF);
        bytes_ += static_cast<char>(value >> 8 & 0xFF);
        return *this;
    }
    Template& Double(uint32_t value) { return Word(value & 0xFFFF).Word(value >> 16); }
    Template& Text(const WCHAR* text) {
        for (; *text; ++text) Word(*text);
        return Word(0);
    }
    Template& Align() { return bytes_.size() % 4 == 0 ? *this : Word(0); }
    [[nodiscard]] const std::string& Bytes() const { return bytes_; }
    [[nodiscard]] const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(bytes_.data()); }

  private:
    std::string bytes_;
};

inline Template Plain(uint32_t style, uint32_t width, uint32_t height, uint32_t items = 0) {
    return Template().Double(style).Double(0).Word(items).Word(9).Word(7).Word(width).Word(height);
}
inline Template Extended(uint32_t style, uint32_t width, uint32_t height, uint32_t items = 0) {
    return Template()
        .Word(1)
        .Word(0xFFFF)
        .Double(0)
        .Double(0)
        .Double(style)
        .Word(items)
        .Word(9)
        .Word(7)
        .Word(width)
        .Word(height);
}

}  // namespace support
