#include "substitutes/decoder/clip_registry.h"

#include <string_view>
#include <utility>

#include "platform/text.h"

namespace clipfio::decoder {
namespace {

WString FromLatin1(std::string_view text) {
    WString wide;
    wide.reserve(text.size());
    for (const char c : text) wide.push_back(static_cast<WCHAR>(static_cast<unsigned char>(c)));
    return wide;
}

// A path comes as UTF-8 or as ISO 8859-1, and nothing says which: UTF-8 is asked first, unless it is none.
Status OpenNarrow(LoadedClip& clip, std::string_view path) {
    const WString utf8 = platform::Wide(path);
    Status status = Status::CannotOpen;
    if (platform::Utf8(utf8) == path) status = clip.Open(utf8);
    if (status != Status::CannotOpen) return status;
    const WString latin1 = FromLatin1(path);
    return latin1 == utf8 ? status : clip.Open(latin1);
}

}  // namespace

Status ClipSlot::Load(const char* path) {
    const std::lock_guard hold(lock_);
    clip_.reset();
    status_ = path == nullptr || *path == '\0' ? Status::BadArguments : Status::OutOfMemory;
    if (status_ == Status::BadArguments) return status_;
    auto clip = std::make_shared<LoadedClip>();
    status_ = OpenNarrow(*clip, path);
    if (status_ == Status::Good) clip_ = std::move(clip);
    return status_;
}

void ClipSlot::Close() noexcept {
    const std::lock_guard hold(lock_);
    clip_.reset();
    status_ = Status::NoClip;
}

Status ClipSlot::LastStatus() const noexcept {
    const std::lock_guard hold(lock_);
    return status_;
}

std::shared_ptr<LoadedClip> ClipSlot::Clip() const noexcept {
    const std::lock_guard hold(lock_);
    return clip_;
}

uintptr_t ClipRegistry::Create() {
    auto slot = std::make_shared<ClipSlot>();
    const std::lock_guard hold(lock_);
    slots_.emplace(next_, std::move(slot));
    return next_++;
}

void ClipRegistry::Destroy(uintptr_t handle) noexcept {
    std::shared_ptr<ClipSlot> ended;  // a file is closed outside the lock
    const std::lock_guard hold(lock_);
    if (const auto found = slots_.find(handle); found != slots_.end()) {
        ended = std::move(found->second);
        slots_.erase(found);
    }
}

void ClipRegistry::DestroyAll() noexcept {
    const std::lock_guard hold(lock_);
    slots_.clear();
}

std::shared_ptr<ClipSlot> ClipRegistry::Find(uintptr_t handle) const noexcept {
    const std::lock_guard hold(lock_);
    const auto found = slots_.find(handle);
    return found == slots_.end() ? nullptr : found->second;
}

// Made with the library and not at the first clip: what is made first goes last, and a client that is itself on its way
// out still finalises the library.
static ClipRegistry g_registry;

ClipRegistry& Clips() noexcept { return g_registry; }

}  // namespace clipfio::decoder
