// The text form of the settings: the file beside a clip, and the host's snapshots. A run of entries "key=value|"
// without line ends; docs/settings-file.md tells it in full.
#pragma once

#include <string>

#include "platform/base.h"
#include "platform/com.h"
#include "settings/entry_stream.h"
#include "settings/item_map.h"

namespace clipfio {

inline constexpr uint32_t kPathSize = 260;  // characters, terminator included

// The path of a clip's decode-properties file: the clip's, with the extension replaced. A path that has no room for it
// gives the code of ERROR_FILENAME_EXCED_RANGE, and one that would come out as the clip itself E_INVALIDARG: a settings
// file is never written over a clip. `out` is empty on failure; it may be the clip path's own buffer.
[[nodiscard]] HRESULT MakeDecodePropertiesPath(const WCHAR* clip_path, WCHAR (&out)[kPathSize]) noexcept;

// Facts about the writer that stand in front of the settings. Nothing reads them back.
struct FileHeader {
    std::string locale;  // empty when the user's locale has no name here
    char decimalPoint = '.';
    std::string sdkVersion;

    static FileHeader Current();  // may throw std::bad_alloc
};

// Writes the header with one call, then one entry for each item that is not unset. Ends with the first failing write.
[[nodiscard]] HRESULT WriteEntries(const ItemTable& items, const FileHeader& header, IStream* stream) noexcept;

// Reads entries into items until the source ends, which is a success. Keys that no item has are passed over.
[[nodiscard]] HRESULT ReadEntries(const ItemTable& items, EntrySource& source) noexcept;

}  // namespace clipfio
