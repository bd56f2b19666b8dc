#include "host/output_file.h"

#include <atomic>
#include <cerrno>
#include <cstring>

#include "host/failure.h"
#include "platform/process.h"

namespace clipfio::host {
namespace {

namespace fs = std::filesystem;

// Unlike the name of the target it is short, so that it fits wherever the target does, and no two writers share it.
fs::path TemporaryName(const fs::path& target) {
    static std::atomic<unsigned> counter{0};
    return target.parent_path() /
           (".clipfio-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++counter) + ".tmp");
}

}  // namespace

fs::path PathFromUtf8(const std::string& utf8) { return fs::path(std::u8string(utf8.begin(), utf8.end())); }

std::string Utf8FromPath(const fs::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

OutputFile::OutputFile(const std::string& path) : name_(path), target_(PathFromUtf8(path)) {
    std::error_code error;
    if (fs::is_directory(target_, error)) throw Failure("cannot write " + name_ + ": it is a folder");
    if (fs::is_symlink(target_, error)) target_ = fs::weakly_canonical(target_, error);
    const bool direct = fs::exists(target_, error) && !fs::is_regular_file(target_, error);
    if (!direct) temporary_ = TemporaryName(target_);
    errno = 0;
    stream_.open(direct ? target_ : temporary_, std::ios::binary | std::ios::trunc);
    Check("cannot write");
}

OutputFile::~OutputFile() {
    stream_.close();
    std::error_code ignored;
    if (!temporary_.empty()) fs::remove(temporary_, ignored);
}

void OutputFile::Check(const char* what) {
    if (stream_) return;
    const std::string reason = errno != 0 ? std::strerror(errno) : "the system does not say why";
    throw Failure(std::string(what) + " " + name_ + ": " + reason);
}

void OutputFile::Write(const void* data, std::size_t bytes) {
    errno = 0;
    stream_.write(static_cast<const char*>(data), static_cast<std::streamsize>(bytes));
    Check("cannot write");
}

void OutputFile::Overwrite(std::uint64_t position, const void* data, std::size_t bytes) {
    errno = 0;
    stream_.seekp(static_cast<std::streamoff>(position));
    stream_.write(static_cast<const char*>(data), static_cast<std::streamsize>(bytes));
    stream_.seekp(0, std::ios::end);
    Check("cannot write");
}

void OutputFile::Commit() {
    errno = 0;
    stream_.close();
    Check("cannot finish");
    if (temporary_.empty()) return;
    std::error_code error;
    fs::rename(temporary_, target_, error);
    if (error) throw Failure("cannot finish " + name_ + ": " + error.message());
    temporary_.clear();
}

}  // namespace clipfio::host
