#include "host/clip.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "host/answering_sink.h"
#include "host/failure.h"
#include "host/numbers.h"
#include "host/output_file.h"
#include "host/result_text.h"
#include "platform/text.h"
#include "settings/property_table.h"

namespace clipfio::host {
namespace {

namespace fs = std::filesystem;

constexpr uint32_t kOpenAtOnce = 1;
constexpr std::size_t kSignatureEnd = 8;

// A device or a pipe could make the module wait for ever.
void RefuseDevice(const std::string& path) {
    std::error_code error;
    const fs::file_status status = fs::status(PathFromUtf8(path), error);
    if (fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status)) {
        throw Failure("it is a device or a pipe, not a clip");
    }
}

// Why the module does not take the file for a clip, as far as a look at the file tells.
std::string WhyNoClip(const std::string& path) {
    const fs::path native = PathFromUtf8(path);
    std::error_code error;
    const fs::file_status status = fs::status(native, error);
    if (status.type() == fs::file_type::not_found) return "there is no such file";
    if (fs::is_directory(status)) return "it is a folder, not a clip";
    errno = 0;
    std::ifstream file(native, std::ios::binary);
    if (!file) return std::string("it cannot be opened: ") + std::strerror(errno);
    std::array<char, kSignatureEnd> head{};
    file.read(head.data(), head.size());
    if (file.gcount() == 0) return "the file is empty";
    if (static_cast<std::size_t>(file.gcount()) < head.size()) return "the file is too short for a clip";
    if (std::memcmp(&head[4], "RED1", 4) == 0 || std::memcmp(&head[4], "RED2", 4) == 0) {
        return "the module cannot read it; its path may be too long (259 characters at most) or not be UTF-8";
    }
    return "it is no R3D clip: neither RED1 nor RED2 stands at byte 4";
}

// Whether the module has settings, which it makes only with a decoder library that it can use.
class SettingsProbe final : public AnsweringSink {
  public:
    [[nodiscard]] bool Found() const { return found_; }

    HRESULT STDMETHODCALLTYPE Answer(IKtPropertiesPanel* panel) noexcept override {
        uint32_t state = 0;
        found_ = panel->GetState(kPropertyTable[0].key.text, &state) == S_OK;
        return S_FALSE;
    }

  private:
    bool found_ = false;
};

bool HasDecoder(const Module& module, const WString& path) {
    platform::ComPtr<IKtReadFile> file;
    platform::ComPtr<IKtFileIOMediaProperties> properties;
    SettingsProbe probe;
    uint32_t ok = 0;
    return SUCCEEDED(module.FileClass().CreateNamed(file.Out(), 0, 0, path.c_str(), 0)) && file &&
           SUCCEEDED(file->QueryInterface(IID_IKtFileIOMediaProperties, properties.OutVoid())) &&
           SUCCEEDED(properties->BeginProperties()) &&
           SUCCEEDED(properties->ShowPropertiesDialog(nullptr, 0, &probe, &ok)) && probe.Found();
}

std::string WhyNotOpened(const Module& module, const WString& path, HRESULT result) {
    const std::string decoder = DecoderFile();
    if (decoder.empty()) {
        return std::string("the decoder library ") + kDecoderFile + " was not found; looked in " + DecoderSearchText() +
               ". Set R3DSDKPATH to the folder that holds it";
    }
    if (!HasDecoder(module, path)) {
        return "the decoder library " + decoder + " cannot be used: it is damaged, or not one for this module";
    }
    return "the decoder cannot load it (" + ResultText(result) +
           "): the clip is damaged or cut short, or the decoder library does not fit";
}

}  // namespace

Clip::Clip(const Module& module, const std::string& path) : path_(path) {
    const WString wide = platform::Wide(path);
    RefuseDevice(path);
    if (FAILED(module.FileClass().CheckFile(wide.c_str()))) throw Failure(WhyNoClip(path));
    const HRESULT result = module.FileClass().CreateNamed(file_.Out(), 0, 0, wide.c_str(), kOpenAtOnce);
    if (FAILED(result) || !file_) throw Failure(WhyNotOpened(module, wide, result));
}

Clip Clip::Duplicate() const {
    Clip copy(path_);
    Require(file_->Duplicate(copy.file_.Out()), "cannot open the clip a second time");
    Require(copy.file_->Open(0, 0), "cannot open the clip a second time");
    return copy;
}

IKtReadVideoStream& Clip::Video() {
    if (!video_) Require(file_->GetStream(video_.OutVoid(), 0, 0), "the clip gives no video stream");
    return *video_.Get();
}

bool Clip::HasAudio() const {
    int32_t count = 0;
    Require(file_->GetStreamCount(&count), "the clip does not count its streams");
    return count > 1;
}

IKtReadAudioStream& Clip::Audio() {
    if (!HasAudio()) throw Failure("the clip has no sound");
    if (!audio_) Require(file_->GetStream(audio_.OutVoid(), 0, 1), "the clip gives no audio stream");
    return *audio_.Get();
}

IKtFileIOMediaProperties& Clip::Properties() {
    if (!properties_) {
        Require(file_->QueryInterface(IID_IKtFileIOMediaProperties, properties_.OutVoid()),
                "the clip's settings cannot be reached");
    }
    return *properties_.Get();
}

uint64_t Clip::FrameCount() {
    uint64_t count = 0;
    Require(Video().GetLength(&count), "the clip does not count its frames");
    return count;
}

double Clip::FrameRate() {
    double rate = 0;
    Require(Video().GetFrameRate(&rate), "the clip does not tell its frame rate");
    return rate;
}

std::optional<int64_t> Clip::Timecode(uint32_t key) {
    platform::ComPtr<IKtReadMeta> meta;
    Require(file_->GetMeta(meta.OutVoid()), "the clip gives no metadata");
    std::array<WCHAR, 32> text{};
    if (meta->GetValue(key, text.data(), static_cast<int32_t>(text.size())) != S_OK) return std::nullopt;
    return ReadNumber<int64_t>(platform::Utf8(WStringView(text.data())));
}

}  // namespace clipfio::host
