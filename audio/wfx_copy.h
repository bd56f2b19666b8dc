// From the system's format record to the platform's, and copies of both.
//
// Rooms are in bytes. Nothing is written behind a room; a room below 18 takes no record at all. Any thread.
#pragma once

#include "audio/wave_format.h"
#include "platform/media.h"

// Which form a copy takes. "Extensible" always needs a room of 40 bytes.
enum KTWAVEFORMAT_COPY_DEST : uint32_t {
    KTWAVEFORMAT_COPY_DEST_IFNEEDED = 0,    // extensible when the format came from one or has a mask of its own
    KTWAVEFORMAT_COPY_DEST_PLAIN = 1,       // plain, unless KtAudio_InitWfxFlex finds a reason against it
    KTWAVEFORMAT_COPY_DEST_NOMASK = 2,      // the mask is dropped
    KTWAVEFORMAT_COPY_DEST_MULTI = 3,       // extensible for more than 2 channels
    KTWAVEFORMAT_COPY_DEST_EXTENSIBLE = 4,  // always extensible
};

// Extra data that the room does not hold is cut. Returns `wfx`.
KT_API tWAVEFORMATEX* KtAudio_GeneralCopyWfx(tWAVEFORMATEX* wfx, uint32_t room, const _ktwaveformat* format,
                                             KTWAVEFORMAT_COPY_DEST dest) noexcept;

// Copies size-field bytes of a record (at most 32 + extra length, so the last two extra bytes come out as 0) and clears
// the rest of the room; extra data that does not fit is dropped whole. A room of 0 counts as 32. Returns `out`.
KT_API _ktwaveformat* KtAudio_GeneralCopyKtWaveFormat(_ktwaveformat* out, uint32_t room, const _ktwaveformat* format,
                                                      KTWAVEFORMAT_COPY_DEST dest) noexcept;

// Both pass through a record of 128 bytes, which keeps 94 bytes of extra data. The second has a room of 40.
KT_API void KtAudio_CopyWfx(tWAVEFORMATEX* out, uint32_t room, const tWAVEFORMATEX* wfx,
                            KTWAVEFORMAT_COPY_DEST dest) noexcept;
KT_API void KtAudio_CopyWfExt(WAVEFORMATEXTENSIBLE* out, const tWAVEFORMATEX* wfx,
                              KTWAVEFORMAT_COPY_DEST dest) noexcept;

// New blocks of the global heap, zero-filled and locked; the caller frees them (GlobalHandle, GlobalUnlock,
// GlobalFree). Null when the memory is not to be had. The first form copies as it stands whatever already has the
// wanted form.
KT_EXPORT tWAVEFORMATEX* KtAudio_AllocAndCopyWfx(const tWAVEFORMATEX* wfx, KTWAVEFORMAT_COPY_DEST dest) noexcept;
KT_EXPORT tWAVEFORMATEX* KtAudio_AllocAndCopyWfx(const _ktwaveformat* format, KTWAVEFORMAT_COPY_DEST dest) noexcept;

// Buffers that are built from a record and then used as a tWAVEFORMATEX.

// Plain form, no extra data.
struct KT_EXPORT _ktwaveformat_wfxcopyhelper {
    tWAVEFORMATEX wfx;

    explicit _ktwaveformat_wfxcopyhelper(const _ktwaveformat& format) noexcept;
    operator tWAVEFORMATEX*() noexcept { return &wfx; }
    operator const tWAVEFORMATEX*() const noexcept { return &wfx; }
};
static_assert(sizeof(_ktwaveformat_wfxcopyhelper) == 18);

// Extensible if needed; the plain form keeps up to 22 extra bytes.
struct KT_EXPORT _ktwaveformat_wfxecopyhelper {
    WAVEFORMATEXTENSIBLE wfx;

    explicit _ktwaveformat_wfxecopyhelper(const _ktwaveformat& format) noexcept;
    operator tWAVEFORMATEX*() noexcept { return &wfx.Format; }
    operator const tWAVEFORMATEX*() const noexcept { return &wfx.Format; }
};
static_assert(sizeof(_ktwaveformat_wfxecopyhelper) == 40);

// A copy of a platform record with up to 94 bytes of extra data. Zero until Init.
struct KT_EXPORT _ktwaveformat_wfxplus {
    WAVEFORMATEXTENSIBLE wfx{};
    uint8_t extra[96]{};

    void Init(const tWAVEFORMATEX* source, KTWAVEFORMAT_COPY_DEST dest) noexcept;
    operator tWAVEFORMATEX*() noexcept { return &wfx.Format; }
    operator const tWAVEFORMATEX*() const noexcept { return &wfx.Format; }
};
static_assert(sizeof(_ktwaveformat_wfxplus) == 136);
