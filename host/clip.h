// One open clip.
#pragma once

#include <optional>
#include <string>

#include "host/module_client.h"
#include "platform/scoped.h"
#include "reader/host_interfaces.h"

namespace clipfio::host {

// Members that hand out pointers keep the reference: they live as long as the clip, and the clip lives no longer than
// its module. All operations throw Failure, with a message that names the reason but not the clip.
class Clip {
  public:
    // Opens the clip. Paths are UTF-8.
    Clip(const Module& module, const std::string& path);
    // A second, open object on the same clip, for another thread.
    [[nodiscard]] Clip Duplicate() const;

    [[nodiscard]] const std::string& Path() const { return path_; }
    [[nodiscard]] IKtReadFile& File() const { return *file_.Get(); }
    [[nodiscard]] IKtReadVideoStream& Video();
    [[nodiscard]] bool HasAudio() const;
    [[nodiscard]] IKtReadAudioStream& Audio();  // fails for a clip without sound
    [[nodiscard]] IKtFileIOMediaProperties& Properties();

    [[nodiscard]] uint64_t FrameCount();
    [[nodiscard]] double FrameRate();
    // A kKtMeta* key, in units of 100 nanoseconds; nothing when the clip has none.
    [[nodiscard]] std::optional<int64_t> Timecode(uint32_t key);

  private:
    explicit Clip(std::string path) : path_(std::move(path)) {}

    // The file is declared first: it goes after the streams that point to it.
    std::string path_;
    platform::ComPtr<IKtReadFile> file_;
    platform::ComPtr<IKtReadVideoStream> video_;
    platform::ComPtr<IKtReadAudioStream> audio_;
    platform::ComPtr<IKtFileIOMediaProperties> properties_;
};

}  // namespace clipfio::host
