// The system's loader has attached the module before the first test, over the decoder that R3DSDKPATH names.
#include "tests/reader/reader_scene.h"

namespace reader_tests {

bool AttachReader() { return true; }
void DetachReader() {}

}  // namespace reader_tests
