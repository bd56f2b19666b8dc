// Numbers as text, whatever the user's locale.
#pragma once

#include <charconv>
#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace clipfio::host {

// The shortest text without an exponent that reads back as the same number.
template <std::floating_point Float>
[[nodiscard]] std::string NumberText(Float value) {
    char buffer[400];  // longer than any double
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed).ptr};
}

// The whole text as a number; nothing when it is not one.
template <class Number>
[[nodiscard]] std::optional<Number> ReadNumber(std::string_view text) {
    Number value{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || text.empty()) return std::nullopt;
    return value;
}

}  // namespace clipfio::host
