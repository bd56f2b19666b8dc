// The system's guess at the code page of a text.
#pragma once

#include "platform/com.h"

#ifdef _WIN32

#include <mlang.h>

#else

// A code page that a text may be in: which share of the text it explains, and how sure that is, both in percent.
struct DetectEncodingInfo {
    UINT nLangID;
    UINT nCodePage;
    INT nDocPercent;
    INT nConfidence;
};

inline constexpr DWORD MLDETECTCP_NONE = 0;

// Only the slot that is called. The object is one for all and is not counted.
struct IMultiLanguage2 : IUnknown {
    // `bytes` is the text's length; `count` is the room in `found` and becomes what was found, the likeliest first.
    // S_FALSE when nothing was.
    virtual HRESULT STDMETHODCALLTYPE DetectInputCodepage(DWORD flags, DWORD preferred, CHAR* text, INT* bytes,
                                                          DetectEncodingInfo* found, INT* count) = 0;
};

inline constexpr CLSID CLSID_CMultiLanguage = {
    0x275C23E2, 0x3747, 0x11D0, {0x9F, 0xEA, 0x00, 0xAA, 0x00, 0x3F, 0x86, 0x46}};
inline constexpr IID IID_IMultiLanguage2 = {
    0xDCCFC164, 0x2B38, 0x11D2, {0xB7, 0xEC, 0x00, 0xC0, 0x4F, 0x8F, 0x5D, 0x9A}};

#endif
