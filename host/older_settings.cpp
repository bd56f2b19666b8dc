#include "host/older_settings.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

#include "host/command.h"
#include "host/failure.h"

namespace clipfio::host {
namespace {

bool IsFile(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::is_regular_file(PathFromUtf8(path), ignored);
}

}  // namespace

OlderSettings::OlderSettings(const std::string& file) : file_(file) {
    if (!IsFile(file)) return;
    bytes_ = FileBytes(file);
    copy_.emplace(file);
    copy_->Write(bytes_.data(), bytes_.size());
    copy_->Complete();
}

OlderSettings::~OlderSettings() {
    if (!is_needed_) return;
    try {
        BringBack();
    } catch (const std::exception& failure) {
        Say(file_ + " cannot be brought back: " + failure.what());
    }
}

void OlderSettings::BringBack() {
    if (!copy_) {
        if (IsFile(file_)) std::filesystem::remove(PathFromUtf8(file_));
    } else if (!IsFile(file_) || FileBytes(file_) != bytes_) {
        copy_->Commit();
    }
}

std::string FileBytes(const std::string& path) {
    errno = 0;
    std::ifstream stream(PathFromUtf8(path), std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream.is_open() || stream.bad()) throw Failure("cannot read " + path + ": " + std::strerror(errno));
    return bytes;
}

}  // namespace clipfio::host
