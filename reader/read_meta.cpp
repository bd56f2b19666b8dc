#include "reader/read_meta.h"

#include <cstdlib>

#include "kernel/print.h"
#include "kernel/text_copy.h"
#include "r3dsdk/clip_operations.h"
#include "reader/time_units.h"

namespace clipfio {
namespace {

// Reads an integer off the front of `text`; 0, and nothing consumed, when there is none.
uint32_t TakeNumber(const char*& text) noexcept {
    char* end = nullptr;
    const unsigned long long value = std::strtoull(text, &end, 10);
    text = end;
    return static_cast<uint32_t>(value);
}

void TakeSeparator(const char*& text) noexcept {
    if (*text) ++text;
}

}  // namespace

HRESULT ParseTimecode(const char* text, double rate, int64_t* time) noexcept {
    *time = 0;
    if (!text) return E_INVALIDARG;
    const uint32_t hours = TakeNumber(text);
    TakeSeparator(text);
    const uint32_t minutes = TakeNumber(text);
    TakeSeparator(text);
    const uint32_t seconds = TakeNumber(text);
    TakeSeparator(text);
    const uint32_t frames = TakeNumber(text);
    const int64_t whole = static_cast<int64_t>(hours) * 3600 + static_cast<int64_t>(minutes) * 60 + seconds;
    *time = whole * kUnitsPerSecond + UnitsOf(static_cast<double>(frames), rate);
    return S_OK;
}

HRESULT CReadMeta::QueryInterface(REFIID id, void** out) {
    if (!out) return E_POINTER;
    if (!(id == IID_IKtReadMeta) && !(id == IID_IUnknown)) return E_NOINTERFACE;
    return HandOut(static_cast<IKtReadMeta*>(this), out);
}

ULONG CReadMeta::AddRef() { return references_.Increment(); }

ULONG CReadMeta::Release() {
    const uint32_t left = references_.Decrement();
    if (left == 0) delete this;
    return left;
}

HRESULT CReadMeta::GetValue(uint32_t key, WCHAR* buffer, int32_t size) {
    const R3DClip* clip = *clip_;
    if (!clip || ClipStatus(clip->handle) != 0) return E_UNEXPECTED;
    if (key != kKtMetaFirstTimecode && key != kKtMetaLastTimecode) return S_FALSE;
    uint64_t frame = 0;
    if (key == kKtMetaLastTimecode) {
        // A clip without frames has the timecode of frame 0 at both ends.
        const uint64_t count = ClipFrameCount(clip->handle);
        frame = count ? count - 1 : 0;
    }
    int64_t time = 0;
    (void)ParseTimecode(FrameTimecode(clip->handle, frame), ClipFrameRate(clip->handle), &time);
    WCHAR text[32];
    KtPrintF(text, W("%I64d"), time);
    CopyText(buffer, size, text);
    return S_OK;
}

}  // namespace clipfio
