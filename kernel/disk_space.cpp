#include "kernel/disk_space.h"

#include "kernel/lang.h"
#include "kernel/path_text.h"
#include "kernel/print.h"
#include "kernel/string_rows.h"
#include "platform/files.h"

namespace {

constexpr uint32_t kMost = 0xFFFFFFFF;

// `field` is one of the two counts that the platform gives: what is free for the caller, and all.
uint32_t UnitsOfDisk(const WCHAR* path, uint32_t unit, int field) noexcept {
    WCHAR root[MAX_PATH] = {};
    if (!path || KtGetRootPathFromFilePath(path, root, MAX_PATH) == 0) return 0;
    ULARGE_INTEGER bytes[2] = {};
    if (!GetDiskFreeSpaceExW(root, &bytes[0], &bytes[1], nullptr)) {
        return WStringView(root).starts_with(W("\\\\")) ? kMost : 0;
    }
    auto count = static_cast<double>(bytes[field].QuadPart);
    if (unit != 0) count /= unit;
    return count > kMost ? kMost : static_cast<uint32_t>(count);
}

}  // namespace

uint32_t KtGetDiskFreeSpace(const WCHAR* path, uint32_t unit) noexcept { return UnitsOfDisk(path, unit, 0); }

uint32_t KtGetDiskTotalSpace(const WCHAR* path, uint32_t unit) noexcept { return UnitsOfDisk(path, unit, 1); }

void KtFormatDiskFreeSpace(const WCHAR* path, WCHAR* out) noexcept {
    constexpr uint32_t kTenthOfAMegabyte = 102'400;
    constexpr uint32_t kTenGigabytes = 10'000;  // in tenths of a megabyte
    if (!out) return;
    const auto print = [out](KTLANGSTRINGID row, uint32_t tenths) {
        KtPrintF(out, KtGetString(clipfio::KernelLanguage(), row), tenths);
    };
    const uint32_t tenths = path && *path ? KtGetDiskFreeSpace(path, kTenthOfAMegabyte) : kMost;
    if (tenths == kMost) return print(clipfio::kKtStrMegabytesUnknown, 0);
    if (tenths < kTenGigabytes) return print(clipfio::kKtStrMegabytes, tenths);
    print(clipfio::kKtStrGigabytes, tenths >> 10);
}
