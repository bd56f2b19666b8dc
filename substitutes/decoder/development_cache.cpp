#include "substitutes/decoder/development_cache.h"

#include <algorithm>

namespace clipfio::decoder {

std::shared_ptr<const Development> DevelopmentCache::Get(const DecodeSettingsRecord& settings, PictureCoding coding,
                                                         PixelType type) {
    const std::lock_guard hold(lock_);
    const auto found = std::find_if(recent_.begin(), recent_.end(), [&](const auto& development) {
        return development && development->IsFor(settings, coding, type);
    });
    if (found != recent_.end()) {
        std::rotate(recent_.begin(), found, found + 1);
    } else {
        auto made = std::make_shared<const Development>(settings, coding, type);
        recent_.back() = std::move(made);
        std::rotate(recent_.begin(), recent_.end() - 1, recent_.end());
    }
    return recent_.front();
}

}  // namespace clipfio::decoder
