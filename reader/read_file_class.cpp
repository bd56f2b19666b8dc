#include "reader/read_file_class.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "kernel/files.h"
#include "kernel/lang.h"
#include "kernel/lang_resources.h"
#include "kernel/runtime/about_box.h"
#include "kernel/text_copy.h"
#include "platform/endian.h"
#include "platform/resources.h"
#include "platform/text.h"
#include "r3dsdk/sdk_loader.h"
#include "reader/plugin_module.h"
#include "reader/read_file.h"

namespace clipfio {
namespace {

constexpr GUID kFormatId = {0xBF99E5C4, 0xF874, 0x494A, {0x9C, 0xC9, 0x80, 0x54, 0x32, 0x6F, 0x58, 0x2B}};
constexpr uint32_t kClassFlags = 3;

constexpr uint32_t kSignature1 = 0x31444552;  // "RED1"
constexpr uint32_t kSignature2 = 0x32444552;  // "RED2"
constexpr std::size_t kSignatureOffset = 4;

struct ClassString {
    uint32_t id;
    uint32_t text;
};
constexpr ClassString kClassStrings[] = {{1, 1112}, {2, 1113}, {4, 1102}, {5, 1114}, {6, 1115}, {7, 1116}};

constexpr uint32_t kLegalNotice = 1116;
constexpr WORD kAboutBitmap = 103;
constexpr uint32_t kAboutPage = 0x200;
constexpr uint32_t kBitmapHeaderBytes = 12;
constexpr uint32_t kOpenForReading = 0x80000000;

const WCHAR* ClassStringText(uint32_t id) noexcept {
    const auto* row =
        std::find_if(std::begin(kClassStrings), std::end(kClassStrings), [id](auto& r) { return r.id == id; });
    return row == std::end(kClassStrings) ? W("") : KtGetString(Module().hLang, row->text);
}

// The module's file, then the decoder client's version on a line of its own.
template <std::size_t Size>
void ComposeDetails(WCHAR (&out)[Size]) noexcept {
    constexpr UINT kLatin1 = 28591;
    int32_t length = KtGetModuleFileName(Module().hInstance, out, Size);
    length += CopyText(out + length, static_cast<int32_t>(Size) - length, W("\n"));
    const std::string_view version = SdkVersionText();
    const auto left = static_cast<int>(Size) - 1 - length;
    const int fit = std::min(left, static_cast<int>(version.size()));
    if (fit > 0) length += MultiByteToWideChar(kLatin1, 0, version.data(), fit, out + length, left);
    out[length] = 0;
}

}  // namespace

HRESULT CReadFileClass::QueryInterface(REFIID id, void** out) {
    if (!out) return E_POINTER;
    if (!(id == IID_IKtReadFileClass) && !(id == IID_IUnknown)) return E_NOINTERFACE;
    return HandOut(static_cast<IKtReadFileClass*>(this), out);
}

ULONG CReadFileClass::AddRef() { return references_.Increment(); }

ULONG CReadFileClass::Release() {
    const uint32_t left = references_.Decrement();
    if (left == 0) delete this;
    return left;
}

HRESULT CReadFileClass::SetClassIndex(uint32_t index) {
    class_index_ = index;
    return S_OK;
}

HRESULT CReadFileClass::GetClassIndex(uint32_t* out) {
    if (!out) return E_INVALIDARG;
    *out = class_index_;
    return S_OK;
}

HRESULT CReadFileClass::SetSite(IKtHostSite* site) {
    if (site_) site_->Release();
    site_ = site;
    if (!site) return S_OK;
    const HKTLANG language = Module().hLang;
    uint32_t lcid = KtLang_GetLCID(language);
    if (SUCCEEDED(site->GetLocale(&lcid, 0))) KtLang_UpdateKernelLCID(language, lcid, 1);
    return S_OK;
}

HRESULT CReadFileClass::GetSite(IKtHostSite** out) {
    if (!out) return E_INVALIDARG;
    *out = site_;
    return S_OK;
}

HRESULT CReadFileClass::GetFormatId(GUID* out) {
    if (!out) return E_INVALIDARG;
    *out = kFormatId;
    return S_OK;
}

HRESULT CReadFileClass::GetClassFlags(uint32_t* out) {
    if (!out) return E_INVALIDARG;
    *out = kClassFlags;
    return S_OK;
}

HRESULT CReadFileClass::GetClassOptions(uint32_t* out) {
    if (!out) return E_INVALIDARG;
    *out = 0;
    return S_OK;
}

HRESULT CReadFileClass::GetClassStrings(const uint32_t* ids, uint32_t count, BSTR* out) {
    if (count == 0) return S_OK;
    if (!ids || !out) return E_INVALIDARG;
    for (uint32_t i = 0; i < count; ++i) {
        out[i] = SysAllocString(ClassStringText(ids[i]));
        if (!out[i]) return E_OUTOFMEMORY;
    }
    return S_OK;
}

HRESULT CReadFileClass::CheckHeader(HANDLE, const void* bytes, uint32_t count, const void*) {
    if (!bytes || count < kSignatureOffset + sizeof(uint32_t)) return E_FAIL;
    const auto signature = platform::LoadLittle<uint32_t>(static_cast<const uint8_t*>(bytes) + kSignatureOffset);
    return signature == kSignature1 || signature == kSignature2 ? S_OK : E_FAIL;
}

HRESULT CReadFileClass::CheckFile(const WCHAR* path) {
    if (!path) return E_FAIL;
    WCHAR name[MAX_PATH];
    CopyText(name, MAX_PATH, path);
    const platform::ScopedHandle file(
        ::CreateFileW(name, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file) return E_FAIL;
    uint8_t header[4096];
    DWORD read = 0;
    if (!KtReadFile(file.Get(), header, sizeof header, &read, nullptr)) return E_FAIL;
    return CheckHeader(file.Get(), header, static_cast<uint32_t>(read), nullptr);
}

HRESULT CReadFileClass::CreateNamed(IKtReadFile** out, uint32_t, uint32_t, const WCHAR* path, uint32_t flags) {
    const HRESULT created = CreateFile(out);
    if (FAILED(created)) return created;
    (void)(*out)->SetFileName(path);
    if (!(flags & 1)) return created;
    const HRESULT opened = (*out)->Open(kOpenForReading, 1);
    if (FAILED(opened)) std::exchange(*out, nullptr)->Release();
    return opened;
}

HRESULT CReadFileClass::ShowAbout(HWND parent) {
    WCHAR version[260];
    WCHAR legal1[512];
    WCHAR legal2[512];
    WCHAR details[260];
    CopyText(version, static_cast<int32_t>(std::size(version)), W("Version 20.0 (Build 139)"));
    CopyText(legal1, static_cast<int32_t>(std::size(legal1)), KtGetString(Module().hLang, kLegalNotice));
    CopyText(legal2, static_cast<int32_t>(std::size(legal2)), W(""));
    ComposeDetails(details);

    KtAboutRecord record = {};
    record.name = W("");
    record.version = version;
    record.legal1 = legal1;
    record.legal2 = legal2;
    record.details = details;
    record.text = W("");
    record.pages = kAboutPage;
    uint32_t bytes = 0;
    const HGLOBAL bitmap = KtLoadResourceCustom(Module().hLang, MAKEINTRESOURCEW(kAboutBitmap), RT_BITMAP, &bytes);
    if (const auto* header = bitmap ? static_cast<const uint8_t*>(LockResource(bitmap)) : nullptr;
        header && bytes >= kBitmapHeaderBytes) {
        record.bitmap = header;
        record.bitmapWidth = platform::LoadLittle<uint32_t>(header + 4);
        record.bitmapHeight = platform::LoadLittle<uint32_t>(header + 8);
    }
    (void)KtAboutBox(parent, &record, sizeof record);
    return S_OK;
}

HRESULT CReadFileClass::CreateFile(IKtReadFile** out) {
    if (!out) return E_INVALIDARG;
    *out = nullptr;
    CReadFile* file = nullptr;
    const HRESULT made = CReadFile::Make(this, &file);
    if (FAILED(made)) return made;
    const HRESULT result = file->QueryInterface(IID_IKtReadFile, reinterpret_cast<void**>(out));
    if (FAILED(result)) delete file;
    return result;
}

}  // namespace clipfio
