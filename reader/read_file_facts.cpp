// The texts, values and data rates that a file object tells the host.
#include <cstring>

#include "audio/wave_format.h"
#include "kernel/lang.h"
#include "kernel/print.h"
#include "kernel/text_copy.h"
#include "kernel/time_units.h"
#include "platform/files.h"
#include "reader/plugin_module.h"
#include "reader/read_audio_stream.h"
#include "reader/read_file.h"
#include "reader/read_video_stream.h"

namespace clipfio {
namespace {

constexpr int32_t kVideo = 0;
constexpr int32_t kAudio = 1;

// String resources.
constexpr uint32_t kMono = 1100;
constexpr uint32_t kStereo = 1101;
constexpr uint32_t kNoChannels = 1105;
constexpr uint32_t kMultiChannel = 1106;
constexpr uint32_t kAudioFormatText = 1108;
constexpr uint32_t kVideoFormatText = 1109;
constexpr uint32_t kAudioTypeText = 1110;
constexpr uint32_t kVideoTypeText = 1111;
constexpr uint32_t kFileTypeText = 1113;

constexpr std::size_t kLongestText = 512;

const WCHAR* String(uint32_t id) noexcept { return KtGetString(Module().hLang, id); }

uint32_t ChannelText(uint32_t channels) noexcept {
    constexpr uint32_t kTexts[] = {kNoChannels, kMono, kStereo};
    return channels < std::size(kTexts) ? kTexts[channels] : kMultiChannel;
}

void CopyNumber(WCHAR* buffer, int32_t size, uint32_t number) noexcept {
    WCHAR text[16];
    KtPrintF(text, W("%u"), number);
    CopyText(buffer, size, text);
}

// True when `value` was stored.
template <class Value>
bool Store(void* out, uint32_t bytes, const Value& value) noexcept {
    if (!out || bytes < sizeof value) return false;
    std::memcpy(out, &value, sizeof value);
    return true;
}

template <class Record>
Record FormatOf(const _ktstreaminfo& info) noexcept {
    Record record;
    static_assert(sizeof record <= sizeof info.format);
    std::memcpy(static_cast<void*>(&record), info.format, sizeof record);
    return record;
}

}  // namespace

HRESULT CReadFile::GetFileText(WCHAR* buffer, int32_t size, uint32_t key) {
    const auto hold = lock_.Hold();
    if (key == kKtFileTextType) {
        CopyText(buffer, size, String(kFileTypeText));
        return S_OK;
    }
    uint32_t rate = 0;
    if (key == kKtFileTextDataRate && SUCCEEDED(TotalDataRate(&rate))) CopyNumber(buffer, size, rate);
    return S_FALSE;
}

HRESULT CReadFile::GetStreamText(WCHAR* buffer, int32_t size, int32_t stream, uint32_t key) {
    const auto hold = lock_.Hold();
    if (stream != kVideo && stream != kAudio) return S_FALSE;
    switch (key) {
        case kKtStreamTextType:
            CopyText(buffer, size, String(stream == kVideo ? kVideoTypeText : kAudioTypeText));
            return S_OK;
        case kKtStreamTextFormat:
            return StreamFormatText(buffer, size, stream);
        case kKtStreamTextDataRate: {
            uint32_t rate = 0;
            if (FAILED(StreamDataRate(stream, &rate))) return S_FALSE;
            CopyNumber(buffer, size, rate);
            return S_OK;
        }
        default:
            return S_FALSE;
    }
}

HRESULT CReadFile::StreamFormatText(WCHAR* buffer, int32_t size, int32_t stream) noexcept {
    if (stream == kVideo ? !video_stream_ : !audio_stream_) return E_UNEXPECTED;
    _ktstreaminfo info = {};
    WCHAR text[kLongestText];
    HRESULT result;
    if (stream == kVideo) {
        result = video_stream_->GetNativeFormat(&info);
        const auto bitmap = FormatOf<BITMAPINFOHEADER>(info);
        KtCchPrintF(text, kLongestText, nullptr, String(kVideoFormatText), static_cast<int>(bitmap.biWidth),
                    static_cast<int>(bitmap.biHeight), static_cast<int>(bitmap.biBitCount));
    } else {
        result = audio_stream_->GetNativeFormat(&info);
        const auto format = FormatOf<_ktwaveformat>(info);
        KtCchPrintF(text, kLongestText, nullptr, String(kAudioFormatText), static_cast<int>(format.samplesPerSecond),
                    static_cast<int>(format.BitsPerSample()), String(ChannelText(format.channels)));
    }
    if (SUCCEEDED(result)) CopyText(buffer, size, text);
    return result;
}

HRESULT CReadFile::GetFileValue(void* out, uint32_t bytes, uint32_t key) {
    constexpr uint32_t kSameDataRate = 5;
    const auto hold = lock_.Hold();
    if (key != kKtFileValueDataRate && key != kSameDataRate) return S_FALSE;
    uint32_t rate = 0;
    return bytes >= sizeof rate && SUCCEEDED(TotalDataRate(&rate)) && Store(out, bytes, rate) ? S_OK : S_FALSE;
}

HRESULT CReadFile::GetStreamValue(void* out, uint32_t bytes, int32_t stream, uint32_t key) {
    const auto hold = lock_.Hold();
    if (key == kKtStreamValueFrameRate) return Store(out, bytes, frame_rate_) ? S_OK : S_FALSE;
    if (stream != kVideo && stream != kAudio) return S_FALSE;
    if (key == kKtStreamValueCode) {
        // A buffer that is too small stays as it is, and that is no failure.
        Store(out, bytes, FourCharacterCode(stream == kVideo ? "R3DV" : "R3DA"));
        return S_OK;
    }
    uint32_t rate = 0;
    if (key != kKtStreamValueDataRate || bytes < sizeof rate) return S_FALSE;
    const HRESULT result = StreamDataRate(stream, &rate);
    if (FAILED(result)) return result;
    return Store(out, bytes, rate) ? result : E_INVALIDARG;
}

HRESULT CReadFile::StreamDataRate(int32_t stream, uint32_t* out) noexcept {
    if (!out) return E_INVALIDARG;
    if (stream == kVideo) return VideoDataRate(out);
    if (stream != kAudio || !audio_stream_) return E_FAIL;
    _ktstreaminfo info = {};
    const HRESULT result = audio_stream_->GetNativeFormat(&info);
    *out = FormatOf<_ktwaveformat>(info).averageBytesPerSecond;
    return result;
}

HRESULT CReadFile::VideoDataRate(uint32_t* out) noexcept {
    const platform::ScopedHandle file(::CreateFileW(file_name_.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                                    OPEN_EXISTING, FILE_ATTRIBUTE_READONLY, nullptr));
    const R3DClip* clip = clip_;
    if (!file || !clip) return E_FAIL;
    DWORD high = 0;
    const DWORD low = GetFileSize(file.Get(), &high);
    const uint64_t size = (static_cast<uint64_t>(high) << 32) | low;
    // Without frames there is nothing to read, and no rate.
    const uint64_t frames = ClipFrameCount(clip->handle);
    const uint64_t frame_size = frames ? size / frames : 0;
    *out = CutToInteger<uint32_t>(static_cast<double>(static_cast<float>(frame_size) * ClipFrameRate(clip->handle)));
    return S_OK;
}

HRESULT CReadFile::TotalDataRate(uint32_t* out) noexcept {
    uint32_t audio = 0;
    uint32_t video = 0;
    HRESULT result = StreamDataRate(kAudio, &audio);
    if (SUCCEEDED(result)) result = StreamDataRate(kVideo, &video);
    if (SUCCEEDED(result)) *out = audio + video;
    return result;
}

}  // namespace clipfio
