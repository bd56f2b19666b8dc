// A file name of this test's own in the system's temporary folder; the file is deleted at the end.
#pragma once

#include <atomic>
#include <string>

#include "platform/files.h"
#include "platform/process.h"
#include "platform/text.h"

namespace support {

class TempFile {
  public:
    explicit TempFile(const std::string& ending = ".tmp") {
        static std::atomic<int> count{0};
        WCHAR folder[512] = {};
        GetTempPathW(512, folder);
        path_ = folder + platform::Wide("clipfio_test_" + std::to_string(GetCurrentProcessId()) + "_" +
                                        std::to_string(++count) + ending);
    }
    ~TempFile() { DeleteFileW(path_.c_str()); }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    [[nodiscard]] const WCHAR* Path() const { return path_.c_str(); }

  private:
    WString path_;
};

}  // namespace support
