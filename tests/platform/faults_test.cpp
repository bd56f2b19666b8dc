#include "platform/faults.h"

#include <gtest/gtest.h>

#include "platform/scoped.h"
#include "support/fail_each.h"
#include "support/temp_file.h"

namespace {

// Each step may fail, and says so; what was made before is let go.
bool TouchEverything(const WCHAR* path) {
    const platform::ScopedHandle mutex(CreateMutexW(nullptr, FALSE, nullptr));
    if (!mutex) return false;
    platform::ScopedHandle file(CreateFileW(path, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    char c = 'x';
    DWORD count = 0;
    if (!file || !WriteFile(file.Get(), &c, 1, &count, nullptr)) return false;
    if (!ReadFile(file.Get(), &c, 1, &count, nullptr)) return false;
    platform::ComPtr<IStream> stream;
    if (FAILED(SHCreateStreamOnFileW(path, STGM_READWRITE, stream.Out()))) return false;
    if (FAILED(stream->Read(&c, 1, nullptr)) || FAILED(stream->Write(&c, 1, nullptr))) return false;
    const platform::ScopedHandle mapping(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 1, nullptr));
    if (!mapping) return false;
    const platform::ScopedView view(MapViewOfFile(mapping.Get(), FILE_MAP_READ, 0, 0, 0));
    if (!view) return false;
    const platform::ScopedHandle process(OpenProcess(PROCESS_DUP_HANDLE, FALSE, GetCurrentProcessId()));
    if (!process) return false;
    platform::ScopedHandle duplicate;
    return DuplicateHandle(process.Get(), mapping.Get(), GetCurrentProcess(), duplicate.Out(), 0, FALSE,
                           DUPLICATE_SAME_ACCESS) != FALSE;
}

TEST(Faults, FailEachCallInTurnAndThenNone) {
    const support::TempFile name;
    const int failed = support::FailEach<support::FailingCall>(
        [&] { return TouchEverything(name.Path()); }, [](bool succeeded, bool hit) { EXPECT_EQ(succeeded, !hit); });
    EXPECT_EQ(failed, 11);
}

TEST(Faults, AllocationsAndLoading) {
    const auto fails = [](auto call) {
        platform::faults::FailAfter(0);
        const bool failed = !call();
        EXPECT_TRUE(platform::faults::Hit());
        platform::faults::Clear();
        return failed;
    };
    EXPECT_TRUE(fails([] { return GlobalAlloc(GPTR, 1); }));
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_TRUE(fails([] { return SysAllocString(W("a")); }));
    EXPECT_TRUE(fails([] { return SysAllocStringLen(W("a"), 1); }));
    EXPECT_TRUE(fails([] { return LoadLibraryW(W("clipfio_test_module.so")); }));
    EXPECT_TRUE(fails([] { return LoadLibraryA("clipfio_test_module.so"); }));
}

}  // namespace
