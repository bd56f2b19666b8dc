// The names that a decoder library exports, once for all: the loader makes its tables from these lists, and a library
// of ours its functions. Each list takes the macro that is applied to every name, in the order of the table.
#pragma once

// clang-format off

// What the loader asks of every library file.
#define SDK_LIBRARY_SYMBOLS(X)                                                                   \
    X(RED_LIB_ID) X(RED_LIB_MAJOR_VERSION) X(RED_LIB_MINOR_VERSION) X(RED_LIB_PATCH_VERSION)     \
    X(RED_MINIMUM_MAJOR_VERSION) X(RED_MINIMUM_MINOR_VERSION) X(RED_MINIMUM_PATCH_VERSION)       \
    X(RED_STATICLIB_MAJOR_VERSION) X(RED_STATICLIB_MINOR_VERSION) X(RED_STATICLIB_PATCH_VERSION) \
    X(RED_LIB_BUILD_NAME) X(RED_STATICLIB_BUILD_NAME) X(RED_LIB_INITIALIZE) X(RED_LIB_FINALIZE)

// CALLED(symbol, operation) for the sixteen operations that this system calls, X(symbol) for the others.
#define SDK_CLIP_API_SYMBOLS(CALLED, X)                                                              \
    CALLED(R3D_AAB, CreateClip) X(R3D_AAC) CALLED(R3D_AAA, DestroyClip) CALLED(R3D_AAD, ClipStatus)  \
    CALLED(R3D_AAE, LoadClip) CALLED(R3D_AAF, CloseClip) X(R3D_AAG) X(R3D_AAH)                       \
    CALLED(R3D_AAI, DecodeFrame) X(R3D_AAJ) CALLED(R3D_AAK, DecodeAudio) X(R3D_AAL) X(R3D_AAM)       \
    X(R3D_AAN) CALLED(R3D_AAO, GetClipSettings) X(R3D_AAP) X(R3D_AAQ) X(R3D_AAR) X(R3D_AAS)          \
    X(R3D_AAT) X(R3D_AAU) CALLED(R3D_AAV, ClipWidth) CALLED(R3D_AAW, ClipHeight)                     \
    CALLED(R3D_AAX, ClipFrameCount) X(R3D_AAY) CALLED(R3D_AAZ, AudioBlockInfo)                       \
    CALLED(R3D_ABA, AudioSampleCount) CALLED(R3D_ABB, ClipFrameRate) X(R3D_ABC)                      \
    CALLED(R3D_ABD, FrameTimecode) X(R3D_ABE) X(R3D_ABF) X(R3D_ABG) X(R3D_ABH) X(R3D_ABI) X(R3D_ABJ) \
    CALLED(R3D_ABK, GetMetadataNumber) X(R3D_ABL) X(R3D_ABM) X(R3D_ABN) X(R3D_ABO) X(R3D_ABP)        \
    X(R3D_ABQ) X(R3D_ABR) X(R3D_ABS) X(R3D_ABT) X(R3D_ABU) X(R3D_ABV) X(R3D_ACB) X(R3D_ACF)          \
    X(R3D_ACG) X(R3D_ACH) X(R3D_ACI) X(R3D_SAC) X(R3D_SAD) X(R3D_SAE) X(R3D_HAA) X(R3D_HAC)          \
    X(R3D_HAB) X(R3D_HAD) X(R3D_HAE) X(R3D_HAF)

// Tables that have to be there and are not called.
#define SDK_METADATA_API_SYMBOLS(X)                                                         \
    X(R3D_BAB) X(R3D_BAA) X(R3D_BAC) X(R3D_BAD) X(R3D_BAE) X(R3D_BAF) X(R3D_BAG) X(R3D_BAH) \
    X(R3D_BAI) X(R3D_BAJ) X(R3D_BAK) X(R3D_BAL) X(R3D_BAM)

#define SDK_ASYNC_DECODER_API_SYMBOLS(X)                                                    \
    X(R3D_CAB) X(R3D_CAA) X(R3D_CAC) X(R3D_CAH) X(R3D_CAD) X(R3D_CAE) X(R3D_CAF) X(R3D_CAG)

#define SDK_RED_ROCKET_API_SYMBOLS(X)                                                       \
    X(R3D_DAB) X(R3D_DAA) X(R3D_DAC) X(R3D_DAE) X(R3D_DAF) X(R3D_DAG) X(R3D_DAH) X(R3D_DAK) \
    X(R3D_DAL) X(R3D_DAM) X(R3D_DAN) X(R3D_DAO) X(R3D_DAP)

#define SDK_STREAM_API_SYMBOLS(X)                                                           \
    X(R3D_EAB) X(R3D_EAA) X(R3D_FAB) X(R3D_FAA) X(R3D_GAB) X(R3D_GAA) X(R3D_EAC) X(R3D_FAC) \
    X(R3D_FAD) X(R3D_FAE) X(R3D_FAF) X(R3D_FAH) X(R3D_GAC) X(R3D_GAD)

// clang-format on
