// What the decoder's operations report. The numbers are the library's own and stable.
#pragma once

#include <cstdint>

namespace clipfio::decoder {

enum class Status : uint32_t {
    Good = 0,
    NoClip = 1,        // the handle is none of ours, or has no clip loaded
    BadArguments = 2,  // a null pointer, a record of another form, a buffer that is too small
    OutOfMemory = 3,
    CannotOpen = 4,      // the path names no file that can be read
    NotAClip = 5,        // too short, or the mark at byte 4 is missing
    UnknownVersion = 6,  // a clip of a later form
    DamagedHeader = 7,   // checksum or a value that cannot be
    NoSuchFrame = 8,
    MissingData = 9,  // the file ends before the picture does
    ReadFailed = 10,
    EndOfSound = 11,
    NoSuchPicture = 12,  // unknown decode mode or pixel type, or the clip is smaller than the divisor
};

}  // namespace clipfio::decoder
