// The decoder's clip of a file object, as the file's streams and metadata see it.
#pragma once

#include <atomic>

#include "r3dsdk/clip_operations.h"

namespace clipfio {

// Null until the first open, then the same clip to the file object's end: they keep the address of the file's field and
// read it on any thread.
using ClipField = std::atomic<R3DClip*>;

}  // namespace clipfio
