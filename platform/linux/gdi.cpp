// There is no screen yet: what needs one fails, as Win32 says that it may.
#include "platform/gdi.h"

#include <cstdlib>
#include <limits>

#include "errors.h"

namespace {

template <class T>
T NoScreen(T result) noexcept {
    return platform::Fail(platform::ERROR_CALL_NOT_IMPLEMENTED, result);
}

}  // namespace

extern "C" HDC GetDC(HWND) noexcept { return NoScreen<HDC>(nullptr); }
extern "C" int ReleaseDC(HWND, HDC) noexcept { return 0; }
extern "C" int GetDeviceCaps(HDC, int) noexcept { return 0; }
extern "C" HFONT CreateFontW(int, int, int, int, int, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD,
                             const WCHAR*) noexcept {
    return NoScreen<HFONT>(nullptr);
}
extern "C" HGDIOBJ SelectObject(HDC, HGDIOBJ) noexcept { return NoScreen<HGDIOBJ>(nullptr); }
extern "C" BOOL DeleteObject(HGDIOBJ) noexcept { return NoScreen(FALSE); }
extern "C" BOOL GetTextExtentPoint32W(HDC, const WCHAR*, int, SIZE*) noexcept { return NoScreen(FALSE); }
extern "C" BOOL GetTextMetricsW(HDC, TEXTMETRICW*) noexcept { return NoScreen(FALSE); }

extern "C" int MulDiv(int a, int b, int c) noexcept {
    if (c == 0) return -1;
    const std::int64_t product = std::int64_t{a} * b;
    const std::int64_t divisor = std::abs(std::int64_t{c});
    const std::int64_t half = divisor / 2;
    const std::int64_t size = (std::abs(product) + half) / divisor;
    const std::int64_t result = (product < 0) != (c < 0) ? -size : size;
    constexpr std::int64_t kMost = std::numeric_limits<int>::max();
    return result > kMost || result < -kMost ? -1 : static_cast<int>(result);
}
