#include "reader/read_meta.h"

#include <array>
#include <cstdlib>
#include <limits>

#include "kernel/print.h"
#include "kernel/text_copy.h"
#include "kernel/time_units.h"
#include "r3dsdk/clip_operations.h"

namespace clipfio {
namespace {

// Up to four numbers with one character between each two. The first that cannot be read or does not fit is 0, as are
// those behind it.
std::array<uint32_t, 4> TakeNumbers(const char* text) noexcept {
    std::array<uint32_t, 4> numbers = {};
    for (uint32_t& number : numbers) {
        char* end = nullptr;
        const unsigned long long value = std::strtoull(text, &end, 10);
        if (end == text || value > std::numeric_limits<uint32_t>::max()) break;
        number = static_cast<uint32_t>(value);
        if (!*end) break;
        text = end + 1;
    }
    return numbers;
}

}  // namespace

HRESULT ParseTimecode(const char* text, double rate, int64_t* time) noexcept {
    *time = 0;
    if (!text) return E_INVALIDARG;
    const auto [hours, minutes, seconds, frames] = TakeNumbers(text);
    const int64_t whole = int64_t{hours} * 3600 + int64_t{minutes} * 60 + seconds;
    *time = HeldSum(HeldProduct(whole, kUnitsPerSecond), UnitsOf(frames, rate));
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
