// The numbers and layouts of our own declarations that leave this process's own code, in results, records, files and
// compiled resources: proved by the compiler against Windows' own on that target.
#include <cstddef>

#include "platform/base.h"
#include "platform/com.h"
#include "platform/dialogs.h"
#include "platform/files.h"
#include "platform/images.h"
#include "platform/menu.h"
#include "platform/registry.h"
#include "platform/sync.h"
#include "platform/window.h"

static_assert(sizeof(LARGE_INTEGER) == 8 && sizeof(FILETIME) == 8 && sizeof(CRITICAL_SECTION) == 40);
static_assert(sizeof(GUID) == 16 && offsetof(GUID, Data2) == 4 && offsetof(GUID, Data3) == 6);
static_assert(sizeof(STATSTG) == 80 && offsetof(STATSTG, cbSize) == 16 && offsetof(STATSTG, grfMode) == 48);
static_assert(offsetof(STATSTG, clsid) == 56 && offsetof(STATSTG, grfStateBits) == 72);
static_assert(sizeof(BITMAP) == 32 && offsetof(BITMAP, bmBitsPixel) == 18 && offsetof(BITMAP, bmBits) == 24);
static_assert(sizeof(RGBQUAD) == 4 && offsetof(RGBQUAD, rgbRed) == 2 && sizeof(BITMAPINFO) == 44);
static_assert(sizeof(ICONINFO) == 32 && offsetof(ICONINFO, hbmMask) == 16 && offsetof(ICONINFO, hbmColor) == 24);
static_assert(sizeof(ACCEL) == 6 && offsetof(ACCEL, key) == 2 && offsetof(ACCEL, cmd) == 4);
static_assert(sizeof(RECT) == 16 && sizeof(SIZE) == 8 && sizeof(DLGPROC) == 8);

template <class Number>
constexpr bool Is(Number number, std::uint32_t expected) {
    return static_cast<std::uint32_t>(number) == expected;
}

static_assert(Is(S_OK, 0) && Is(S_FALSE, 1) && Is(E_NOTIMPL, 0x80004001) && Is(E_NOINTERFACE, 0x80004002));
static_assert(Is(E_POINTER, 0x80004003) && Is(E_FAIL, 0x80004005) && Is(E_UNEXPECTED, 0x8000FFFF));
static_assert(Is(E_OUTOFMEMORY, 0x8007000E) && Is(E_INVALIDARG, 0x80070057));
static_assert(Is(STG_E_INVALIDFUNCTION, 0x80030001) && Is(STG_E_ACCESSDENIED, 0x80030005));
static_assert(Is(STG_E_INVALIDPOINTER, 0x80030009) && Is(STG_E_MEDIUMFULL, 0x80030070));

static_assert(ERROR_SUCCESS == 0 && ERROR_FILE_NOT_FOUND == 2 && ERROR_PATH_NOT_FOUND == 3);
static_assert(ERROR_TOO_MANY_OPEN_FILES == 4 && ERROR_ACCESS_DENIED == 5 && ERROR_INVALID_HANDLE == 6);
static_assert(ERROR_NOT_ENOUGH_MEMORY == 8 && ERROR_SHARING_VIOLATION == 32 && ERROR_HANDLE_EOF == 38);
static_assert(ERROR_NOT_SUPPORTED == 50 && ERROR_FILE_EXISTS == 80 && ERROR_INVALID_PARAMETER == 87);
static_assert(ERROR_BROKEN_PIPE == 109 && ERROR_DISK_FULL == 112 && ERROR_INSUFFICIENT_BUFFER == 122);
static_assert(ERROR_INVALID_NAME == 123 && ERROR_MOD_NOT_FOUND == 126 && ERROR_PROC_NOT_FOUND == 127);
static_assert(ERROR_NEGATIVE_SEEK == 131 && ERROR_BAD_PATHNAME == 161 && ERROR_BUSY == 170);
static_assert(ERROR_ALREADY_EXISTS == 183 && ERROR_BAD_EXE_FORMAT == 193 && ERROR_ENVVAR_NOT_FOUND == 203);
static_assert(ERROR_FILENAME_EXCED_RANGE == 206 && ERROR_MORE_DATA == 234 && ERROR_NO_MORE_ITEMS == 259);
static_assert(ERROR_NOT_OWNER == 288 && ERROR_PARTIAL_COPY == 299 && ERROR_INVALID_ADDRESS == 487);
static_assert(ERROR_NOACCESS == 998 && ERROR_CANTOPEN == 1011 && ERROR_REGISTRY_CORRUPT == 1015);
static_assert(ERROR_REGISTRY_IO_FAILED == 1016 && ERROR_KEY_DELETED == 1018 && ERROR_INTERNAL_ERROR == 1359);
static_assert(ERROR_NO_UNICODE_TRANSLATION == 1113 && ERROR_INVALID_WINDOW_HANDLE == 1400);
static_assert(ERROR_RESOURCE_TYPE_NOT_FOUND == 1813 && ERROR_RESOURCE_LANG_NOT_FOUND == 1815);

static_assert(STGM_READ == 0 && STGM_WRITE == 1 && STGM_READWRITE == 2 && STGM_CREATE == 0x1000);
static_assert(STREAM_SEEK_SET == 0 && STREAM_SEEK_CUR == 1 && STREAM_SEEK_END == 2);
static_assert(REG_NONE == 0 && REG_SZ == 1 && REG_EXPAND_SZ == 2 && REG_BINARY == 3 && REG_DWORD == 4);
static_assert(REG_MULTI_SZ == 7 && WAIT_ABANDONED == 0x80 && WAIT_TIMEOUT == 258);

static_assert(WS_OVERLAPPED == 0 && WS_CHILD == 0x40000000 && WS_VISIBLE == 0x10000000 && WS_DISABLED == 0x8000000);
static_assert(WS_POPUP == 0x80000000 && WS_CAPTION == 0xC00000 && WS_BORDER == 0x800000 && WS_TABSTOP == 0x10000);
static_assert(DS_ABSALIGN == 1 && DS_NOFAILCREATE == 0x10 && DS_SETFONT == 0x40 && DS_MODALFRAME == 0x80);
static_assert(DS_CENTER == 0x800 && ES_MULTILINE == 4 && WS_EX_DLGMODALFRAME == 1 && MF_GRAYED == 1 &&
              MF_POPUP == 0x10);
static_assert(WM_SETTEXT == 0xC && WM_GETTEXT == 0xD && WM_SETFONT == 0x30 && WM_INITDIALOG == 0x110);
static_assert(IMAGE_BITMAP == 0 && IMAGE_ICON == 1 && IMAGE_CURSOR == 2 && LR_CREATEDIBSECTION == 0x2000);
static_assert(LR_MONOCHROME == 1 && LR_LOADFROMFILE == 0x10 && LR_LOADTRANSPARENT == 0x20 && LR_DEFAULTSIZE == 0x40);
static_assert(LR_LOADMAP3DCOLORS == 0x1000 && LR_SHARED == 0x8000 && CLR_NONE == 0xFFFFFFFF &&
              CLR_DEFAULT == 0xFF000000);
