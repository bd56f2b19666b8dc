#include "r3dsdk/sdk_status.h"

namespace clipfio {

int32_t MapLoadStatus(int32_t status, uint32_t flags) noexcept {
    struct Row {
        int32_t status;
        int32_t first_optional;
        int32_t without_flag;
    };
    constexpr Row kRows[] = {{kSdkNotOpened, kSdkNoImport, kSdkNoMainLibrary},
                             {kSdkMissingSymbol, kSdkMissingOptional, kSdkMissingSymbol},
                             {kSdkRefused, kSdkRefusedOptional, kSdkRefused}};
    for (const Row& row : kRows) {
        if (row.status != status) continue;
        if (flags & 1) return row.first_optional;
        if (flags & 2) return row.first_optional + 1;
        if (flags & 4) return row.first_optional + 2;
        return row.without_flag;
    }
    return status;
}

}  // namespace clipfio
