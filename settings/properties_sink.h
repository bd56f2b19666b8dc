// What the host hands to the properties dialog, to hear of changes while it is up.
#pragma once

#include <cstdint>

#include "platform/base.h"
#include "platform/com.h"

struct IKtReadVideoStream;

inline constexpr IID IID_IKtPropertiesSink = {
    0xFF4DAB83, 0x1621, 0x4F1D, {0x80, 0xA0, 0x0F, 0x24, 0xC9, 0xC7, 0x7B, 0x6E}};

struct IKtPropertiesSink : IUnknown {
    // A setting has changed: the next frame read from `stream` shows it. Called on the dialog's thread; the result is
    // not looked at. `stream` is not counted, and `reserved` is 0.
    virtual HRESULT STDMETHODCALLTYPE OnPropertiesChanged(IKtReadVideoStream* stream, uint32_t reserved) = 0;
};
