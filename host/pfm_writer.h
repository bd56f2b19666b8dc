// Portable float maps: RGB pictures of 32-bit floats.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace clipfio::host {

// `rgb` has its rows bottom first, as the file has them. Throws Failure; nothing remains of a file that could not be
// written whole.
void WritePfm(const std::string& path, std::uint32_t width, std::uint32_t height, std::span<const float> rgb);

}  // namespace clipfio::host
