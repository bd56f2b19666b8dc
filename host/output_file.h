// A result file that is there whole or not at all.
#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>

namespace clipfio::host {

// Paths as the user writes them, which name the same place for this program as for the module.
[[nodiscard]] std::filesystem::path PathFromUtf8(const std::string& utf8);
[[nodiscard]] std::string Utf8FromPath(const std::filesystem::path& path);

// To be asked before long work. Throws UsageError when the output is the input itself, and Failure when it is plain
// that nothing can be written there.
void CheckOutput(const std::string& output, const std::string& input);

// Written under a temporary name in the folder of its own and renamed by Commit; without a Commit nothing remains. What
// is no regular file (a device, a pipe) is written directly, and a link is followed. All operations throw Failure.
class OutputFile {
  public:
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void Write(const void* data, std::size_t bytes);
    // Brings all bytes to their place; nothing can be written after it.
    void Complete();
    // Takes the place of the older file, after Complete where that was not called.
    void Commit();

  private:
    void Check(const char* what);
    void Discard() noexcept;

    std::string name_;
    std::filesystem::path target_;
    std::filesystem::path temporary_;  // empty when written directly
    std::ofstream stream_;
};

}  // namespace clipfio::host
