// The bytes of a run as a file, for what reads by path only.
#pragma once

#include "fuzz/fuzzers.h"
#include "substitutes/decoder/file_access.h"
#include "support/temp_file.h"

class InputFileOfRun {
  public:
    InputFileOfRun(const uint8_t* data, size_t size) {
        clipfio::decoder::OutputFile file;
        FuzzRequire(file.Create(Path()) && file.Write(data, size) && file.Close(),
                    "the input can be written to a file");
    }
    [[nodiscard]] WString Path() const { return file_.Path(); }

  private:
    support::TempFile file_;
};
