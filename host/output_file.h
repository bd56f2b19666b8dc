// A result file that is there whole or not at all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace clipfio::host {

[[nodiscard]] std::filesystem::path PathFromUtf8(const std::string& utf8);
[[nodiscard]] std::string Utf8FromPath(const std::filesystem::path& path);

// Written under a temporary name in the folder of its own and renamed by Commit; without a Commit nothing remains. What
// is no regular file (a device, a pipe) is written directly, and a link is followed. All operations throw Failure.
class OutputFile {
  public:
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void Write(const void* data, std::size_t bytes);
    // Over bytes that were written before; the next Write goes on at the end.
    void Overwrite(std::uint64_t position, const void* data, std::size_t bytes);
    void Commit();

  private:
    void Check(const char* what);

    std::string name_;
    std::filesystem::path target_;
    std::filesystem::path temporary_;  // empty when written directly
    std::ofstream stream_;
};

}  // namespace clipfio::host
