// The SDK headers of mingw-w64 declare this id, and none of its libraries has it.
#include "platform/multilanguage.h"

const IID IID_IMultiLanguage2 = {0xDCCFC164, 0x2B38, 0x11D2, {0xB7, 0xEC, 0x00, 0xC0, 0x4F, 0x8F, 0x5D, 0x9A}};
