// Tables of keys that stand for commands.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "errors.h"
#include "fault_point.h"
#include "handles.h"
#include "platform/menu.h"

namespace {

using platform::Fail;
using platform::HandleType;
using platform::HandleUse;

constexpr int kMostEntries = 32767;

struct Table {
    int count;
    ACCEL entries[];
};

}  // namespace

extern "C" HACCEL CreateAcceleratorTableW(ACCEL* entries, int count) noexcept {
    if (!entries || count < 1 || count > kMostEntries) return Fail<HACCEL>(ERROR_INVALID_PARAMETER, nullptr);
    const std::size_t bytes = static_cast<std::size_t>(count) * sizeof(ACCEL);
    auto* const table = static_cast<Table*>(platform::FaultHere() ? nullptr : std::malloc(sizeof(Table) + bytes));
    if (!table) return Fail<HACCEL>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    table->count = count;
    std::memcpy(table->entries, entries, bytes);
    return static_cast<HACCEL>(platform::NewBlockHandle(HandleType::kAccelerators, table));
}

extern "C" BOOL DestroyAcceleratorTable(HACCEL handle) noexcept {
    return platform::CloseBlockHandle(handle, HandleType::kAccelerators);
}

extern "C" int CopyAcceleratorTableW(HACCEL handle, ACCEL* entries, int count) noexcept {
    const HandleUse use(handle, HandleType::kAccelerators);
    if (!use) return Fail(ERROR_INVALID_HANDLE, 0);
    const auto& table = use.Block<Table>();
    if (!entries) return table.count;
    const int copied = std::clamp(count, 0, table.count);
    std::copy_n(table.entries, copied, entries);
    return copied;
}
