#include "settings/decode_properties_file.h"

#include <algorithm>
#include <locale>
#include <stdexcept>

#include "kernel/guard.h"
#include "kernel/path_text.h"
#include "r3dsdk/sdk_loader.h"

namespace clipfio {
namespace {

constexpr WStringView kExtension = W(".KtDecProp");

constexpr WCHAR LowerAscii(WCHAR c) noexcept { return c >= W('A') && c <= W('Z') ? static_cast<WCHAR>(c | 0x20) : c; }

bool SamePath(WStringView a, WStringView b) noexcept {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](WCHAR x, WCHAR y) { return LowerAscii(x) == LowerAscii(y); });
}

// A "|" inside the value would end the entry early and make its rest the beginning of the next key.
void AppendEntry(std::string& out, std::string_view key, std::string_view value) {
    out.append(key).push_back('=');
    std::copy_if(value.begin(), value.end(), std::back_inserter(out), [](char c) { return c != '|'; });
    out.push_back('|');
}

std::string HeaderText(const FileHeader& header) {
    std::string text;
    AppendEntry(text, "File Content", "R3D decode properties");
    AppendEntry(text, "File Version", "1.0");
    AppendEntry(text, "File Locale", header.locale);
    AppendEntry(text, "File DecimalPoint", {&header.decimalPoint, 1});
    AppendEntry(text, "R3DSDK Version", header.sdkVersion);
    return text;
}

// The end of the stream is a success.
HRESULT ResultOfReading(HRESULT hr) noexcept { return FAILED(hr) ? hr : S_OK; }

}  // namespace

HRESULT MakeDecodePropertiesPath(const WCHAR* clip_path, WCHAR (&out)[kPathSize]) noexcept {
    const WStringView clip = clip_path ? WStringView(clip_path) : WStringView();
    WCHAR path[kPathSize] = {};
    HRESULT hr = clip.size() < kPathSize ? S_OK : HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE);
    if (SUCCEEDED(hr)) {
        clip.copy(path, clip.size());
        // A slash parts names too, for the system if not for the texts of paths.
        const std::size_t slash = clip.rfind(W('/'));
        const std::size_t name = slash == WStringView::npos ? 0 : slash + 1;
        KtReplaceExtensionOnPathName(path + name, static_cast<int32_t>(kPathSize - name), kExtension.data());
        if (name == clip.size() || !*KtGetFileNamePtrW(path)) {
            hr = E_INVALIDARG;
        } else if (!WStringView(path).ends_with(kExtension)) {
            hr = HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE);
        } else if (SamePath(path, clip)) {
            hr = E_INVALIDARG;
        }
    }
    if (FAILED(hr)) path[0] = 0;
    std::copy_n(path, kPathSize, out);
    return hr;
}

FileHeader FileHeader::Current() {
    FileHeader header;
    try {
        const std::locale user("");
        header.decimalPoint = std::use_facet<std::numpunct<char>>(user).decimal_point();
        if (user.name() != "*") header.locale = user.name();
    } catch (const std::runtime_error&) {
        // The environment names a locale that is not installed.
    }
    if (const char* version = SdkVersionText()) header.sdkVersion = version;
    return header;
}

HRESULT WriteEntries(const ItemTable& items, const FileHeader& header, IStream* stream) noexcept {
    HRESULT hr = Guarded([&] { return WriteText(stream, HeaderText(header)); });
    items.ForEach([&](const MediaPropertyItem& item) {
        if (SUCCEEDED(hr)) hr = item.WriteToStream(stream);
    });
    return ResultOfReading(hr);
}

HRESULT ReadEntries(const ItemTable& items, EntrySource& source) noexcept {
    size_t expected = 0;  // our own files come in key order
    for (;;) {
        HRESULT hr = source.ReadUntil('=');
        if (hr != S_OK) return ResultOfReading(hr);

        const std::string_view key = source.Text();
        const bool isExpected = expected < kPropertyCount && key == PropertyAtRank(expected).key;
        const size_t rank = isExpected ? expected : FindPropertyRank(key);
        MediaPropertyItem* const item = rank < kPropertyCount ? items.At(rank) : nullptr;
        if (item) expected = rank + 1;

        hr = item ? item->ReadFromStream(source) : source.ReadUntil('|');
        if (hr != S_OK) return ResultOfReading(hr);
    }
}

}  // namespace clipfio
