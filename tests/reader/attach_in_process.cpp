#include "platform/modules.h"
#include "platform/text.h"
#include "reader/plugin_module.h"
#include "tests/reader/reader_scene.h"

namespace reader_tests {

bool AttachReader() {
    SetEnvironmentVariableW(W("R3DSDKPATH"), platform::Wide(CLIPFIO_FAKE_DECODER).c_str());
    return clipfio::AttachProcess(nullptr);
}

void DetachReader() {
    clipfio::DetachProcess();
    SetEnvironmentVariableW(W("R3DSDKPATH"), nullptr);
}

}  // namespace reader_tests
