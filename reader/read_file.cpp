#include "reader/read_file.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "audio/wave_format.h"
#include "audio/wfx_copy.h"
#include "kernel/guard.h"
#include "kernel/text_copy.h"
#include "kernel/time_units.h"
#include "platform/files.h"
#include "platform/text.h"
#include "reader/read_audio_stream.h"
#include "reader/read_file_class.h"
#include "reader/read_meta.h"
#include "reader/read_video_stream.h"

namespace clipfio {
namespace {

constexpr int32_t kVideo = 0;
constexpr int32_t kAudio = 1;

template <class Object>
void ReleaseAndNull(Object*& object) noexcept {
    if (auto* held = std::exchange(object, nullptr)) held->Release();
}

std::string Latin1(const WString& text) {
    constexpr UINT kCodePage = 28591;
    const int size = WideCharToMultiByte(kCodePage, 0, text.c_str(), -1, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(std::max(size, 1)), '\0');
    WideCharToMultiByte(kCodePage, 0, text.c_str(), -1, out.data(), size, nullptr, nullptr);
    return out;
}

// The short form of a path; empty when the platform has none to give.
WString ShortPath(const WString& path) {
    const DWORD wanted = GetShortPathNameW(path.c_str(), nullptr, 0);
    if (wanted < 1) return {};
    WString out(wanted, 0);
    const DWORD length = GetShortPathNameW(path.c_str(), out.data(), wanted);
    if (length < 1 || length >= wanted) return {};
    out.resize(length);
    return out;
}

}  // namespace

HRESULT CReadFile::Make(CReadFileClass* file_class, CReadFile** out) noexcept {
    *out = nullptr;
    std::unique_ptr<CReadFile> file(new (std::nothrow) CReadFile(file_class));
    if (!file || !file->lock_.IsGood()) return E_OUTOFMEMORY;
    const HRESULT result = file->CreateSubObjects();
    if (SUCCEEDED(result)) *out = file.release();
    return result;
}

CReadFile::~CReadFile() {
    if (!lock_.IsGood()) return;
    const auto hold = lock_.Hold();
    ReleaseSubObjects();
    const std::unique_ptr<R3DClip> clip(clip_.exchange(nullptr));
    if (clip && clip->handle) DestroyClip(clip->handle);
}

HRESULT CReadFile::CreateSubObjects() noexcept {
    const auto hold = lock_.Hold();
    ReleaseSubObjects();
    meta_ = new (std::nothrow) CReadMeta(&clip_);
    video_stream_ = CReadVideoStream::Make(this, &clip_);
    audio_stream_ = CReadAudioStream::Make(this, &clip_);
    if (meta_ && video_stream_ && audio_stream_) return S_OK;
    ReleaseSubObjects();
    return E_OUTOFMEMORY;
}

void CReadFile::ReleaseSubObjects() noexcept {
    ReleaseAndNull(video_stream_);
    ReleaseAndNull(audio_stream_);
    ReleaseAndNull(meta_);
}

HRESULT CReadFile::QueryInterface(REFIID id, void** out) {
    if (!out) return E_POINTER;
    if (id == IID_IKtReadFile || id == IID_IUnknown) return HandOut(static_cast<IKtReadFile*>(this), out);
    if (id == IID_IKtFileIOMediaProperties) return HandOut(static_cast<IKtFileIOMediaProperties*>(this), out);
    return E_NOINTERFACE;
}

ULONG CReadFile::AddRef() { return references_.Increment(); }

ULONG CReadFile::Release() {
    const uint32_t left = references_.Decrement();
    if (left == 0) delete this;
    return left;
}

HRESULT CReadFile::GetFileClass(IKtReadFileClass** out) {
    const auto hold = lock_.Hold();
    if (!out) return E_INVALIDARG;
    return file_class_->QueryInterface(IID_IKtReadFileClass, reinterpret_cast<void**>(out));
}

HRESULT CReadFile::Duplicate(IKtReadFile** out) {
    const auto hold = lock_.Hold();
    if (!out) return E_INVALIDARG;
    *out = nullptr;
    CReadFile* copy = nullptr;
    HRESULT result = Make(file_class_, &copy);
    if (FAILED(result)) return result;
    copy->AddRef();
    result = copy->SetFileName(file_name_.c_str());
    if (FAILED(result)) {
        copy->Release();
        return result;
    }
    *out = copy;
    return S_OK;
}

HRESULT CReadFile::LoadFrom(const char* path) noexcept {
    const auto hold = lock_.Hold();
    is_open_ = false;
    if (!HasClipOperations()) return E_FAIL;
    if (!clip_) {
        auto* clip = new (std::nothrow) R3DClip;
        if (!clip) return E_OUTOFMEMORY;
        clip->handle = CreateClip();
        clip_ = clip;
    }
    const auto video = video_stream_->Hold();
    const auto audio = audio_stream_->Hold();
    is_open_ = LoadClip(clip_.load()->handle, path) == 0;
    return is_open_ ? S_OK : E_FAIL;
}

HRESULT CReadFile::Open(uint32_t, uint32_t) {
    return Guarded([&]() -> HRESULT {
        const auto hold = lock_.Hold();
        const HRESULT result = LoadFrom(platform::Utf8(file_name_).c_str());
        if (SUCCEEDED(result)) return result;
        const WString short_path = ShortPath(file_name_);
        return short_path.empty() ? E_FAIL : LoadFrom(Latin1(short_path).c_str());
    });
}

HRESULT CReadFile::Close() {
    const auto hold = lock_.Hold();
    const auto video = video_stream_->Hold();
    const auto audio = audio_stream_->Hold();
    HRESULT result = video_stream_->Close();
    if (FAILED(result)) return result;
    result = audio_stream_->Close();
    if (const R3DClip* clip = clip_; SUCCEEDED(result) && clip) {
        CloseClip(clip->handle);
        is_open_ = false;
    }
    return result;
}

HRESULT CReadFile::IsOpen() {
    const auto hold = lock_.Hold();
    return is_open_ ? S_OK : S_FALSE;
}

HRESULT CReadFile::SetFileName(const WCHAR* path) {
    return Guarded([&]() -> HRESULT {
        const auto hold = lock_.Hold();
        if (!path) return E_INVALIDARG;
        if (file_name_ == path) return S_OK;
        file_name_ = path;
        video_stream_->SetClipPath(path);
        const HRESULT opened = Open(0, 0);
        if (FAILED(opened)) return opened;
        (void)Measure();
        return Close();
    });
}

// Takes the formats and lengths of the open clip; a failure leaves them as far as they came.
HRESULT CReadFile::Measure() noexcept {
    uint64_t largest = 0;
    if (AudioBlockInfo(clip_.load()->handle, &largest) == 0) {
        stream_count_ = 1;
        item_count_ = 2;
    } else {
        stream_count_ = 2;
        item_count_ = 3;
        const HRESULT result = MeasureAudio();
        if (FAILED(result)) return result;
    }
    return MeasureVideo();
}

HRESULT CReadFile::MeasureAudio() noexcept {
    HRESULT result = audio_stream_->PrepareBuffers();
    if (FAILED(result)) return result;
    result = audio_stream_->GetLength(&audio_length_);
    if (FAILED(result)) return result;
    _ktstreaminfo info = {};
    result = audio_stream_->GetFormat(&info);
    if (FAILED(result)) return result;
    _ktwaveformat format;
    std::memcpy(&format, info.format, sizeof format);
    const _ktwaveformat_wfxcopyhelper plain(format);
    audio_format_ = plain.wfx;
    return S_OK;
}

HRESULT CReadFile::MeasureVideo() noexcept {
    HRESULT result = video_stream_->ReadClipGeometry();
    if (FAILED(result)) return result;
    result = video_stream_->GetLength(&video_length_);
    if (FAILED(result)) return result;
    frame_rate_ = ClipFrameRate(clip_.load()->handle);
    _ktstreaminfo info = {};
    result = video_stream_->GetFormat(&info);
    if (FAILED(result)) return result;
    std::memcpy(&video_format_, info.format, sizeof video_format_);
    return S_OK;
}

HRESULT CReadFile::GetFileName(WCHAR* buffer, int32_t size) {
    const auto hold = lock_.Hold();
    if (!buffer || size < 1 || file_name_.size() >= static_cast<std::size_t>(size)) return E_FAIL;
    CopyText(buffer, size, file_name_);
    return S_OK;
}

HRESULT CReadFile::GetDuration(int64_t* out) {
    const auto hold = lock_.Hold();
    if (!out) return E_INVALIDARG;
    *out = UnitsOf(static_cast<double>(video_length_), frame_rate_);
    return S_OK;
}

HRESULT CReadFile::GetStreamCount(int32_t* out) {
    const auto hold = lock_.Hold();
    if (!out) return E_INVALIDARG;
    *out = stream_count_;
    return S_OK;
}

HRESULT CReadFile::GetItemCount(int32_t* out) {
    const auto hold = lock_.Hold();
    if (!out) return E_INVALIDARG;
    *out = item_count_;
    return S_OK;
}

HRESULT CReadFile::GetStreamInfo(_ktstreaminfo* records, int32_t first, int32_t count) {
    const auto hold = lock_.Hold();
    if (first < 0 || first >= stream_count_ || count < 0 || count > stream_count_ - first) return E_UNEXPECTED;
    if (count > 0 && !records) return E_INVALIDARG;
    for (int32_t stream = first; stream < first + count; ++stream, ++records) {
        const uint32_t size = std::max<uint32_t>(records->size, sizeof *records);
        std::memset(static_cast<void*>(records), 0, size);
        records->size = size;
        if (stream == kVideo) {
            records->kind = kKtStreamVideo;
            records->length = video_length_;
            records->frameFormat.frameRate = frame_rate_;
            std::memcpy(records->format, &video_format_, sizeof video_format_);
        } else {
            records->kind = kKtStreamAudio;
            records->length = audio_length_;
            _ktwaveformat format;
            format.Init(sizeof format, &audio_format_);
            std::memcpy(records->format, &format, sizeof format);
        }
    }
    return S_OK;
}

HRESULT CReadFile::GetStreamKind(int32_t stream, uint32_t* kind, uint32_t* second) {
    const auto hold = lock_.Hold();
    if (stream >= stream_count_ || !kind || !second) return E_INVALIDARG;
    if (stream != kVideo && stream != kAudio) return E_UNEXPECTED;
    *kind = stream == kVideo ? kKtStreamVideo : kKtStreamAudio;
    *second = 0;
    return S_OK;
}

HRESULT CReadFile::GetStreamProperty(int32_t stream, uint32_t key, uint32_t* out) {
    const auto hold = lock_.Hold();
    if (stream >= stream_count_ || !out) return E_INVALIDARG;
    if (key != 1 && key != 2) return E_UNEXPECTED;
    *out = key == 1 ? 1 : 0;
    return S_OK;
}

HRESULT CReadFile::GetStream(void** out, uint64_t, int32_t stream) {
    const auto hold = lock_.Hold();
    if (!out) return E_INVALIDARG;
    *out = nullptr;
    if (!video_stream_ || !audio_stream_) return E_FAIL;
    if (stream != kVideo && stream != kAudio) return E_INVALIDARG;
    const HRESULT prepared = stream == kVideo ? video_stream_->Prepare() : audio_stream_->Prepare();
    if (FAILED(prepared)) return prepared;
    return stream == kVideo ? video_stream_->QueryInterface(IID_IKtReadVideoStream, out)
                            : audio_stream_->QueryInterface(IID_IKtReadAudioStream, out);
}

HRESULT CReadFile::GetMeta(void** out) {
    if (!out) return E_INVALIDARG;
    if (!meta_) return E_UNEXPECTED;
    return meta_->QueryInterface(IID_IKtReadMeta, out);
}

}  // namespace clipfio
