// The settings file of a clip as it was before an editing pass.
#pragma once

#include <optional>
#include <string>

#include "host/output_file.h"

namespace clipfio::host {

// The module writes over the file where it stands and does not tell when that fails. So a copy lies ready beside it,
// which needs no more room to come back; it does so with the object unless the pass was good.
class OlderSettings {
  public:
    // Throws Failure when there is a file and no copy of it can be made.
    explicit OlderSettings(const std::string& file);
    ~OlderSettings();
    OlderSettings(const OlderSettings&) = delete;
    OlderSettings& operator=(const OlderSettings&) = delete;

    void Forget() noexcept { is_needed_ = false; }

  private:
    void BringBack();

    std::string file_;
    std::string bytes_;
    std::optional<OutputFile> copy_;  // none where there was no file
    bool is_needed_ = true;
};

// The file's content. Throws Failure.
[[nodiscard]] std::string FileBytes(const std::string& path);

}  // namespace clipfio::host
