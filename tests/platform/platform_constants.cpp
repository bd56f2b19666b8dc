// The numbers and layouts of our own declarations, proved by the compiler against Windows' own on that target.
#include <cstddef>

#include "platform/base.h"
#include "platform/com.h"
#include "platform/dialogs.h"
#include "platform/files.h"
#include "platform/gdi.h"
#include "platform/images.h"
#include "platform/locale.h"
#include "platform/memory.h"
#include "platform/menu.h"
#include "platform/modules.h"
#include "platform/process.h"
#include "platform/registry.h"
#include "platform/resources.h"
#include "platform/sync.h"
#include "platform/text.h"
#include "platform/window.h"

static_assert(sizeof(WCHAR) == 2 && sizeof(BYTE) == 1 && sizeof(WORD) == 2 && sizeof(DWORD) == 4 && sizeof(LONG) == 4);
static_assert(sizeof(ULONG) == 4 && sizeof(UINT) == 4 && sizeof(INT) == 4 && sizeof(BOOL) == 4);
static_assert(sizeof(LONGLONG) == 8 && sizeof(ULONGLONG) == 8 && sizeof(SIZE_T) == 8 && sizeof(HRESULT) == 4);
static_assert(sizeof(ULONG_PTR) == 8 && sizeof(LONG_PTR) == 8 && sizeof(LPARAM) == 8 && sizeof(WPARAM) == 8);
static_assert(sizeof(LCID) == 4 && sizeof(LANGID) == 2 && sizeof(HANDLE) == 8 && sizeof(HMODULE) == 8);
static_assert(static_cast<DWORD>(-1) > 0 && static_cast<LONG>(-1) < 0 && static_cast<HRESULT>(-1) < 0);

static_assert(sizeof(LARGE_INTEGER) == 8 && sizeof(ULARGE_INTEGER) == 8 && sizeof(FILETIME) == 8);
static_assert(sizeof(GUID) == 16 && offsetof(GUID, Data2) == 4 && offsetof(GUID, Data3) == 6);
static_assert(offsetof(GUID, Data4) == 8);
static_assert(sizeof(CRITICAL_SECTION) == 40);
static_assert(sizeof(SECURITY_ATTRIBUTES) == 24 && offsetof(SECURITY_ATTRIBUTES, bInheritHandle) == 16);
static_assert(sizeof(STARTUPINFOW) == 104 && offsetof(STARTUPINFOW, dwFlags) == 60);
static_assert(offsetof(STARTUPINFOW, hStdInput) == 80 && offsetof(STARTUPINFOW, hStdError) == 96);
static_assert(sizeof(PROCESS_INFORMATION) == 24 && offsetof(PROCESS_INFORMATION, dwProcessId) == 16);
static_assert(sizeof(STATSTG) == 80 && offsetof(STATSTG, cbSize) == 16 && offsetof(STATSTG, grfMode) == 48);
static_assert(offsetof(STATSTG, clsid) == 56 && offsetof(STATSTG, grfStateBits) == 72);

static_assert(FALSE == 0 && TRUE == 1 && MAX_PATH == 260 && INFINITE == 0xFFFFFFFF);

static_assert(S_OK == 0 && S_FALSE == 1);
static_assert(static_cast<std::uint32_t>(E_NOTIMPL) == 0x80004001 &&
              static_cast<std::uint32_t>(E_NOINTERFACE) == 0x80004002 &&
              static_cast<std::uint32_t>(E_POINTER) == 0x80004003 && static_cast<std::uint32_t>(E_FAIL) == 0x80004005);
static_assert(static_cast<std::uint32_t>(E_UNEXPECTED) == 0x8000FFFF &&
              static_cast<std::uint32_t>(E_OUTOFMEMORY) == 0x8007000E &&
              static_cast<std::uint32_t>(E_INVALIDARG) == 0x80070057);
static_assert(static_cast<std::uint32_t>(STG_E_INVALIDFUNCTION) == 0x80030001 &&
              static_cast<std::uint32_t>(STG_E_ACCESSDENIED) == 0x80030005 &&
              static_cast<std::uint32_t>(STG_E_INVALIDPOINTER) == 0x80030009 &&
              static_cast<std::uint32_t>(STG_E_MEDIUMFULL) == 0x80030070);

static_assert(ERROR_SUCCESS == 0 && ERROR_FILE_NOT_FOUND == 2 && ERROR_PATH_NOT_FOUND == 3);
static_assert(ERROR_TOO_MANY_OPEN_FILES == 4 && ERROR_ACCESS_DENIED == 5 && ERROR_INVALID_HANDLE == 6);
static_assert(ERROR_NOT_ENOUGH_MEMORY == 8 && ERROR_SHARING_VIOLATION == 32 && ERROR_HANDLE_EOF == 38);
static_assert(ERROR_NOT_SUPPORTED == 50 && ERROR_FILE_EXISTS == 80 && ERROR_INVALID_PARAMETER == 87);
static_assert(ERROR_BROKEN_PIPE == 109 && ERROR_DISK_FULL == 112 && ERROR_INSUFFICIENT_BUFFER == 122);
static_assert(ERROR_INVALID_NAME == 123 && ERROR_MOD_NOT_FOUND == 126 && ERROR_PROC_NOT_FOUND == 127);
static_assert(ERROR_NEGATIVE_SEEK == 131 && ERROR_ALREADY_EXISTS == 183 && ERROR_BAD_EXE_FORMAT == 193);
static_assert(ERROR_ENVVAR_NOT_FOUND == 203 && ERROR_FILENAME_EXCED_RANGE == 206 && ERROR_NOT_OWNER == 288);
static_assert(ERROR_PARTIAL_COPY == 299 && ERROR_INVALID_ADDRESS == 487 && ERROR_NOACCESS == 998);
static_assert(ERROR_NO_UNICODE_TRANSLATION == 1113 && ERROR_INTERNAL_ERROR == 1359);
static_assert(ERROR_BAD_PATHNAME == 161 && ERROR_BUSY == 170 && ERROR_MORE_DATA == 234 && ERROR_NO_MORE_ITEMS == 259);
static_assert(ERROR_BADKEY == 1010 && ERROR_CANTOPEN == 1011 && ERROR_REGISTRY_CORRUPT == 1015);
static_assert(ERROR_REGISTRY_IO_FAILED == 1016 && ERROR_KEY_DELETED == 1018);
static_assert(ERROR_RESOURCE_TYPE_NOT_FOUND == 1813 && ERROR_RESOURCE_NAME_NOT_FOUND == 1814 &&
              ERROR_RESOURCE_LANG_NOT_FOUND == 1815);

static_assert(GENERIC_READ == 0x80000000 && GENERIC_WRITE == 0x40000000);
static_assert(FILE_SHARE_READ == 1 && FILE_SHARE_WRITE == 2 && FILE_SHARE_DELETE == 4);
static_assert(CREATE_NEW == 1 && CREATE_ALWAYS == 2 && OPEN_EXISTING == 3 && OPEN_ALWAYS == 4 &&
              TRUNCATE_EXISTING == 5);
static_assert(FILE_ATTRIBUTE_READONLY == 1 && FILE_ATTRIBUTE_DIRECTORY == 0x10 && FILE_ATTRIBUTE_NORMAL == 0x80);
static_assert(FILE_FLAG_SEQUENTIAL_SCAN == 0x08000000 && INVALID_FILE_ATTRIBUTES == 0xFFFFFFFF);
static_assert(INVALID_FILE_SIZE == 0xFFFFFFFF && FILE_BEGIN == 0 && FILE_CURRENT == 1 && FILE_END == 2);

static_assert(WAIT_OBJECT_0 == 0 && WAIT_ABANDONED == 0x80 && WAIT_TIMEOUT == 258 && WAIT_FAILED == 0xFFFFFFFF);
static_assert(GMEM_FIXED == 0 && GMEM_MOVEABLE == 2 && GMEM_ZEROINIT == 0x40 && GHND == 0x42 && GPTR == 0x40);
static_assert(DLL_PROCESS_DETACH == 0 && DLL_PROCESS_ATTACH == 1);
static_assert(FORMAT_MESSAGE_IGNORE_INSERTS == 0x200 && FORMAT_MESSAGE_FROM_SYSTEM == 0x1000);
static_assert(PROCESS_TERMINATE == 1 && PROCESS_VM_OPERATION == 8 && PROCESS_VM_READ == 0x10 &&
              PROCESS_VM_WRITE == 0x20 && PROCESS_DUP_HANDLE == 0x40);
static_assert(DUPLICATE_SAME_ACCESS == 2 && PAGE_READWRITE == 4 && FILE_MAP_WRITE == 2 && FILE_MAP_READ == 4);
static_assert(STARTF_USESTDHANDLES == 0x100 && HANDLE_FLAG_INHERIT == 1 && STILL_ACTIVE == 259);
static_assert(STGM_READ == 0 && STGM_WRITE == 1 && STGM_READWRITE == 2 && STGM_CREATE == 0x1000);
static_assert(STREAM_SEEK_SET == 0 && STREAM_SEEK_CUR == 1 && STREAM_SEEK_END == 2);
static_assert(CP_ACP == 0 && CP_UTF8 == 65001 && MB_PRECOMPOSED == 1 && MB_ERR_INVALID_CHARS == 8);
static_assert(LOCALE_USER_DEFAULT == 0x0400 && LOCALE_SYSTEM_DEFAULT == 0x0800 && LOCALE_INVARIANT == 0x7F);
static_assert(LOCALE_ILANGUAGE == 1 && LOCALE_SLANGUAGE == 2 && LOCALE_SABBREVLANGNAME == 3 && LOCALE_ICOUNTRY == 5);
static_assert(LOCALE_SCOUNTRY == 6 && LOCALE_SLIST == 0xC && LOCALE_IMEASURE == 0xD && LOCALE_SDECIMAL == 0xE);
static_assert(LOCALE_STHOUSAND == 0xF && LOCALE_SGROUPING == 0x10 && LOCALE_IDIGITS == 0x11 && LOCALE_ILZERO == 0x12);
static_assert(LOCALE_STIME == 0x1E && LOCALE_SNEGATIVESIGN == 0x51);
static_assert(LOCALE_SENGLANGUAGE == 0x1001 && LOCALE_SENGCOUNTRY == 0x1002);
static_assert(sizeof(NUMBERFMTW) == 40 && offsetof(NUMBERFMTW, lpDecimalSep) == 16);
static_assert(offsetof(NUMBERFMTW, lpThousandSep) == 24 && offsetof(NUMBERFMTW, NegativeOrder) == 32);

static_assert(sizeof(HKEY) == 8 && sizeof(LSTATUS) == 4 && sizeof(REGSAM) == 4);
static_assert(REG_NONE == 0 && REG_SZ == 1 && REG_EXPAND_SZ == 2 && REG_BINARY == 3 && REG_DWORD == 4);
static_assert(REG_MULTI_SZ == 7 && REG_OPTION_NON_VOLATILE == 0);
static_assert(REG_CREATED_NEW_KEY == 1 && REG_OPENED_EXISTING_KEY == 2);
static_assert(KEY_QUERY_VALUE == 1 && KEY_SET_VALUE == 2 && KEY_CREATE_SUB_KEY == 4 && KEY_ENUMERATE_SUB_KEYS == 8);
static_assert(KEY_READ == 0x20019 && KEY_WRITE == 0x20006 && KEY_ALL_ACCESS == 0xF003F);

static_assert(WM_CREATE == 1 && WM_DESTROY == 2 && WM_SETTEXT == 0xC && WM_GETTEXT == 0xD && WM_GETTEXTLENGTH == 0xE);
static_assert(WM_NCCREATE == 0x81 && WM_NCDESTROY == 0x82);
static_assert(EM_GETSEL == 0xB0 && EM_SETSEL == 0xB1 && EM_REPLACESEL == 0xC2);
static_assert(WS_OVERLAPPED == 0 && WS_CHILD == 0x40000000 && WS_VISIBLE == 0x10000000);
static_assert(ES_MULTILINE == 4 && ES_AUTOVSCROLL == 0x40);
static_assert(GWLP_WNDPROC == -4 && GWLP_ID == -12 && GWLP_USERDATA == -21);
static_assert(ERROR_INVALID_WINDOW_HANDLE == 1400 && ERROR_CANNOT_FIND_WND_CLASS == 1407);
static_assert(ERROR_CLASS_ALREADY_EXISTS == 1410 && ERROR_CLASS_DOES_NOT_EXIST == 1411);
static_assert(ERROR_INVALID_INDEX == 1413 && ERROR_CONTROL_ID_NOT_FOUND == 1421);
static_assert(sizeof(WNDCLASSEXW) == 80 && offsetof(WNDCLASSEXW, lpfnWndProc) == 8);
static_assert(offsetof(WNDCLASSEXW, hInstance) == 24 && offsetof(WNDCLASSEXW, lpszClassName) == 64);
static_assert(sizeof(CREATESTRUCTW) == 80 && offsetof(CREATESTRUCTW, cy) == 32 && offsetof(CREATESTRUCTW, style) == 48);
static_assert(offsetof(CREATESTRUCTW, lpszName) == 56 && offsetof(CREATESTRUCTW, dwExStyle) == 72);
static_assert(FORMAT_MESSAGE_FROM_STRING == 0x400);

static_assert(WM_SETFONT == 0x30 && WM_GETFONT == 0x31 && WM_INITDIALOG == 0x110);
static_assert(WS_POPUP == 0x80000000 && WS_CAPTION == 0xC00000 && WS_BORDER == 0x800000 && WS_TABSTOP == 0x10000);
static_assert(WS_DISABLED == 0x8000000 && WS_EX_DLGMODALFRAME == 1 && WS_EX_NOPARENTNOTIFY == 4);
static_assert(DS_ABSALIGN == 1 && DS_NOFAILCREATE == 0x10 && DS_SETFONT == 0x40 && DS_MODALFRAME == 0x80);
static_assert(DS_CENTER == 0x800 && DWLP_MSGRESULT == 0 && DWLP_DLGPROC == 8 && DWLP_USER == 16);
static_assert(sizeof(RECT) == 16 && sizeof(SIZE) == 8 && sizeof(INT_PTR) == 8 && sizeof(DLGPROC) == 8);
static_assert(sizeof(TEXTMETRICW) == 60 && offsetof(TEXTMETRICW, tmFirstChar) == 44);
static_assert(offsetof(TEXTMETRICW, tmItalic) == 52 && offsetof(TEXTMETRICW, tmCharSet) == 56);
static_assert(LOGPIXELSX == 88 && LOGPIXELSY == 90 && LF_FACESIZE == 32);
static_assert(FW_NORMAL == 400 && FW_BOLD == 700 && DEFAULT_CHARSET == 1);
static_assert(MF_BYCOMMAND == 0 && MF_GRAYED == 1 && MF_POPUP == 0x10 && MF_BYPOSITION == 0x400);
static_assert(MF_SEPARATOR == 0x800 && MIIM_STRING == 0x40);
static_assert(sizeof(MENUITEMINFOW) == 80 && offsetof(MENUITEMINFOW, dwTypeData) == 56);
static_assert(sizeof(ACCEL) == 6 && offsetof(ACCEL, key) == 2 && offsetof(ACCEL, cmd) == 4);

static_assert(IMAGE_BITMAP == 0 && IMAGE_ICON == 1 && IMAGE_CURSOR == 2);
static_assert(LR_MONOCHROME == 1 && LR_LOADFROMFILE == 0x10 && LR_LOADTRANSPARENT == 0x20 && LR_DEFAULTSIZE == 0x40);
static_assert(LR_LOADMAP3DCOLORS == 0x1000 && LR_CREATEDIBSECTION == 0x2000 && LR_SHARED == 0x8000);
static_assert(CLR_NONE == 0xFFFFFFFF && CLR_DEFAULT == 0xFF000000 && DIB_RGB_COLORS == 0 && ILD_TRANSPARENT == 1);
static_assert(sizeof(BITMAP) == 32 && offsetof(BITMAP, bmBitsPixel) == 18 && offsetof(BITMAP, bmBits) == 24);
static_assert(sizeof(RGBQUAD) == 4 && offsetof(RGBQUAD, rgbRed) == 2 && sizeof(BITMAPINFO) == 44);
static_assert(sizeof(ICONINFO) == 32 && offsetof(ICONINFO, hbmMask) == 16 && offsetof(ICONINFO, hbmColor) == 24);
