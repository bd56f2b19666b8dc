#include "host/module_client.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include "host/failure.h"
#include "host/output_file.h"
#include "host/result_text.h"
#include "platform/files.h"
#include "platform/modules.h"
#include "platform/program.h"
#include "platform/text.h"
#include "reader/plugin_exports.h"

namespace clipfio::host {
namespace {

namespace fs = std::filesystem;

using GetClassObject = decltype(&DllGetClassObject);

constexpr const WCHAR* kDecoderVariable = W("R3DSDKPATH");
constexpr const WCHAR* kModuleVariable = W("CLIPFIO_MODULE");

fs::path ProgramFolder() { return PathFromUtf8(platform::ProgramFile()).parent_path(); }

std::string EnvironmentText(const WCHAR* name) {
    std::vector<WCHAR> text(GetEnvironmentVariableW(name, nullptr, 0));
    if (text.empty()) return {};
    const DWORD length = GetEnvironmentVariableW(name, text.data(), static_cast<DWORD>(text.size()));
    return length < text.size() ? platform::Utf8(WStringView(text.data(), length)) : std::string();
}

// Asked of the platform, which also knows what the user's drive letters mean.
bool IsFile(const std::string& path) {
    const DWORD attributes = GetFileAttributesW(platform::Wide(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::string FindModule(const std::string& wanted) {
    if (!wanted.empty()) return wanted;
    if (const std::string named = EnvironmentText(kModuleVariable); !named.empty()) return named;
    const fs::path folder = ProgramFolder();
    const std::array candidates = {Utf8FromPath(folder / CLIPFIO_MODULE_FILE),
                                   Utf8FromPath(folder.parent_path() / "lib" / CLIPFIO_MODULE_FILE)};
    for (const std::string& candidate : candidates) {
        if (IsFile(candidate)) return candidate;
    }
    throw Failure("the module was not found; looked for " + candidates[0] + " and " + candidates[1] +
                  "; name it with --module or in CLIPFIO_MODULE");
}

}  // namespace

void OfferDecoderBesideProgram() {
    if (!EnvironmentText(kDecoderVariable).empty()) return;
    const fs::path folder = ProgramFolder();
    if (!IsFile(Utf8FromPath(folder / kDecoderFile))) return;
    SetEnvironmentVariableW(kDecoderVariable, platform::Wide(Utf8FromPath(folder)).c_str());
}

std::string DecoderSearchText() {
    const std::string named = EnvironmentText(kDecoderVariable);
    return std::string("the current folder and ") +
           (named.empty() ? "R3DSDKPATH, which is not set" : "R3DSDKPATH, which is " + named);
}

std::string DecoderFile() {
    if (IsFile(kDecoderFile)) return kDecoderFile;
    const std::string named = EnvironmentText(kDecoderVariable);
    const std::string file = named + "/" + kDecoderFile;
    return !named.empty() && IsFile(file) ? file : std::string();
}

Module::Module(const std::string& path) : path_(FindModule(path)) {
    if (!IsFile(path_)) throw Failure("there is no module " + path_);
    // The loader takes a name without a folder for something to search for.
    const bool has_folder = path_.find_first_of("/\\") != std::string::npos;
    const HMODULE module = LoadLibraryW(platform::Wide(has_folder ? path_ : "./" + path_).c_str());
    if (module == nullptr) {
        throw Failure("cannot load the module " + path_ + ": error " + std::to_string(GetLastError()));
    }
    const auto entry =
        reinterpret_cast<GetClassObject>(reinterpret_cast<void*>(GetProcAddress(module, "DllGetClassObject")));
    if (entry == nullptr) throw Failure(path_ + " is no reader module: it has no DllGetClassObject");

    static constexpr CLSID kClass = CLSID_KtReadFileClass;  // the factory keeps its address
    platform::ComPtr<IClassFactory> factory;
    Require(entry(kClass, IID_IClassFactory, factory.OutVoid()), "the module gives no class factory");
    Require(factory->CreateInstance(nullptr, IID_IKtReadFileClass, file_class_.OutVoid()),
            "the module gives no file class");
    if (!file_class_) throw Failure(path_ + " does not know the file class of camera clips");
}

std::map<uint32_t, std::string> Module::ClassStrings() const {
    constexpr std::array<uint32_t, 6> kIds = {1, 2, 4, 5, 6, 7};
    std::array<BSTR, kIds.size()> texts{};
    const HRESULT result = file_class_->GetClassStrings(kIds.data(), kIds.size(), texts.data());
    std::map<uint32_t, std::string> strings;
    for (std::size_t i = 0; i < kIds.size(); ++i) {
        if (texts[i] == nullptr) continue;
        if (SysStringLen(texts[i]) > 0)
            strings[kIds[i]] = platform::Utf8(WStringView(texts[i], SysStringLen(texts[i])));
        SysFreeString(texts[i]);
    }
    Require(result, "the module gives no class strings");
    return strings;
}

}  // namespace clipfio::host
