// Results of the loader.
#pragma once

#include <cstdint>

namespace clipfio {

// A library's own status of a failed initialisation is passed on as well, whatever it is.
enum SdkStatus : int32_t {
    kSdkGood = 0,
    kSdkNotOpened = 1,  // inside the loader, and SdkInitializeEmbedded without a table or modules
    kSdkNoMainLibrary = 2,
    kSdkNoImport = 3,  // 3, 4, 5: an import with flag bit 1, 2, 4
    kSdkVersionMismatch = 6,
    kSdkMissingSymbol = 7,     // or a wrong id, or a required table that could not be filled
    kSdkMissingOptional = 8,   // 8, 9, 10: the same for an import or a table with flag bit 1, 2, 4
    kSdkRefusedOptional = 11,  // 11, 12, 13: an import with flag bit 1, 2, 4 said 14
    kSdkRefused = 14,          // said by a library in its initialisation
    kSdkEmptyPath = 15,
    kSdkTooMany = 16,  // paths, libraries or handles; a path repeated; memory that ran out
};

// The final status of a failure: 1, 7 and 14 turn into the one that the lowest flag bit of 1, 2, 4 selects, and into
// 2, 7 and 14 without a flag. Any other status stays.
int32_t MapLoadStatus(int32_t status, uint32_t flags) noexcept;

}  // namespace clipfio
