// The system's loader has attached the module before the first test, over the decoder that R3DSDKPATH names.
#include "platform/text.h"
#include "tests/reader/reader_scene.h"

namespace reader_tests {

bool AttachReader() {
    WCHAR folder[512] = {};
    GetEnvironmentVariableW(W("R3DSDKPATH"), folder, 512);
    return platform::Utf8(folder) == CLIPFIO_FAKE_DECODER;
}
void DetachReader() {}

}  // namespace reader_tests
