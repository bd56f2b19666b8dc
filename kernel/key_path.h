// Paths of the registry's keys, and where an application's keys lie.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "platform/base.h"

namespace clipfio {

// The path of a key, of at most Size characters, terminator included; it is cut where it gets too long.
template <size_t Size>
class KeyPath {
  public:
    static constexpr size_t kSize = Size;

    KeyPath& Add(WStringView part) noexcept {
        const size_t fit = std::min(part.size(), kSize - 1 - length_);
        text_[length_ += part.copy(text_ + length_, fit)] = 0;
        is_cut_ |= fit < part.size();
        return *this;
    }
    KeyPath& AddNumber(uint32_t number) noexcept {
        if (number >= 10) AddNumber(number / 10);
        const auto digit = static_cast<WCHAR>(W('0') + number % 10);
        return Add({&digit, 1});
    }
    // A null or empty sub key adds nothing.
    KeyPath& AddSubKey(const WCHAR* sub_key) noexcept {
        return sub_key && *sub_key ? Add(W("\\")).Add(sub_key) : *this;
    }

    [[nodiscard]] const WCHAR* Text() const noexcept { return text_; }
    [[nodiscard]] bool IsCut() const noexcept { return is_cut_; }

  private:
    WCHAR text_[kSize] = {};
    size_t length_ = 0;
    bool is_cut_ = false;
};

inline constexpr WCHAR kKernelCompany[] = W("Kestrel Creative Software");

// "Software\COMPANY\APPLICATION\MAJOR.MINOR" for the upper two bytes of `version`; without the last key where MAJOR is
// 0.
template <class Path>
Path ApplicationPath(const WCHAR* company, const WCHAR* application, uint32_t version) noexcept {
    Path path;
    path.Add(W("Software\\")).Add(company).Add(W("\\")).Add(application);
    const uint32_t major = version >> 24;
    const uint32_t minor = version >> 16 & 0xFF;
    if (major != 0) path.Add(W("\\")).AddNumber(major).Add(W(".")).AddNumber(minor);
    return path;
}

}  // namespace clipfio
