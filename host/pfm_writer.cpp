#include "host/pfm_writer.h"

#include <bit>

#include "host/output_file.h"

namespace clipfio::host {

void WritePfm(const std::string& path, std::uint32_t width, std::uint32_t height, std::span<const float> rgb) {
    static_assert(std::endian::native == std::endian::little);
    OutputFile file(path);
    // A negative scale says that the samples are little-endian.
    const std::string header = "PF\n" + std::to_string(width) + " " + std::to_string(height) + "\n-1.0\n";
    file.Write(header.data(), header.size());
    file.Write(rgb.data(), rgb.size_bytes());
    file.Commit();
}

}  // namespace clipfio::host
