// The developments of the settings used last.
#pragma once

#include <array>
#include <memory>
#include <mutex>

#include "substitutes/decoder/development.h"

namespace clipfio::decoder {

// Tables are made when a record comes that differs in any byte from those at hand. Two are kept, since a player and a
// still picture of another depth may take turns. Any thread.
class DevelopmentCache {
  public:
    // Throws std::bad_alloc.
    std::shared_ptr<const Development> Get(const DecodeSettingsRecord& settings, PictureCoding coding, PixelType type);

  private:
    std::mutex lock_;
    std::array<std::shared_ptr<const Development>, 2> recent_;  // newest first
};

}  // namespace clipfio::decoder
