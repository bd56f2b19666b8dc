#include "host/output_file.h"

#include <cerrno>
#include <cstring>

#include "host/failure.h"
#include "platform/result_file.h"

namespace clipfio::host {
namespace {

namespace fs = std::filesystem;

platform::ResultTarget FindTarget(const std::string& path) {
    platform::ResultTarget target = platform::FindResultTarget(PathFromUtf8(path));
    if (!target.fault.empty()) throw Failure("cannot write " + path + ": " + target.fault);
    return target;
}

// Of an older file that will be replaced.
void KeepPermissions(const fs::path& older, const fs::path& newer) {
    std::error_code ignored;
    const fs::file_status status = fs::status(older, ignored);
    if (fs::is_regular_file(status)) fs::permissions(newer, status.permissions(), ignored);
}

}  // namespace

fs::path PathFromUtf8(const std::string& utf8) { return platform::NativePath(utf8); }

std::string Utf8FromPath(const fs::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

void CheckOutput(const std::string& output, const std::string& input) {
    std::error_code ignored;
    if (fs::equivalent(PathFromUtf8(output), PathFromUtf8(input), ignored)) {
        throw UsageError("the output " + output + " is the input " + input + " itself");
    }
    static_cast<void>(FindTarget(output));
}

OutputFile::OutputFile(const std::string& path) : name_(path) {
    const platform::ResultTarget target = FindTarget(path);
    target_ = target.path;
    if (!target.is_direct) {
        temporary_ = platform::MakeTemporaryFile(target_).native;
        if (temporary_.empty()) {
            throw Failure("cannot write " + name_ + ": " + std::string(platform::ErrorText(GetLastError())));
        }
        KeepPermissions(target_, temporary_);
    }
    errno = 0;
    stream_.open(target.is_direct ? target_ : temporary_, std::ios::binary | std::ios::trunc);
    if (!stream_) {
        const int error = errno;
        Discard();
        errno = error;
    }
    Check("cannot write");
}

OutputFile::~OutputFile() {
    stream_.close();
    Discard();
}

void OutputFile::Discard() noexcept {
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

void OutputFile::Complete() {
    if (!stream_.is_open()) return;
    errno = 0;
    stream_.close();
    Check("cannot finish");
}

void OutputFile::Commit() {
    Complete();
    if (temporary_.empty()) return;
    std::error_code error;
    fs::rename(temporary_, target_, error);
    if (error) throw Failure("cannot finish " + name_ + ": " + error.message());
    temporary_.clear();
}

}  // namespace clipfio::host
