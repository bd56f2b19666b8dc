// One editing pass of a host over one clip, without a window.
#pragma once

#include <string>

#include "host/clip.h"
#include "host/look.h"
#include "host/setting_edits.h"

namespace clipfio::host {

struct PassResult {
    Look before;
    Look after;
    bool written = false;  // the clip's file was written or taken away
};

// All throw Failure. A dry run tells what would be and changes nothing.
[[nodiscard]] PassResult EditSettings(Clip& clip, const SettingEdits& edits, bool dry_run);
// `snapshot` is what GatherSnapshot gave of another clip.
[[nodiscard]] PassResult CopySettings(Clip& clip, const std::string& snapshot, bool dry_run);

}  // namespace clipfio::host
