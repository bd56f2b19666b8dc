// One clip: owns the decoder's clip, both streams and the metadata, and answers for them.
#pragma once

#include <cstdint>

#include "kernel/heap_object.h"
#include "reader/clip_field.h"
#include "reader/com_base.h"
#include "reader/host_interfaces.h"

namespace clipfio {

class CReadFileClass;
class CReadVideoStream;
class CReadAudioStream;
class CReadMeta;

class CReadFile final : public IKtReadFile, public IKtFileIOMediaProperties, public HeapObject {
  public:
    // A file object with its sub-objects and without a reference. E_OUTOFMEMORY, and then `*out` is null.
    [[nodiscard]] static HRESULT Make(CReadFileClass* file_class, CReadFile** out) noexcept;
    ~CReadFile();

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE GetFileClass(IKtReadFileClass** out) override;
    HRESULT STDMETHODCALLTYPE GetFileText(WCHAR* buffer, int32_t size, uint32_t key) override;
    HRESULT STDMETHODCALLTYPE GetStreamText(WCHAR* buffer, int32_t size, int32_t stream, uint32_t key) override;
    HRESULT STDMETHODCALLTYPE GetFileValue(void* out, uint32_t bytes, uint32_t key) override;
    HRESULT STDMETHODCALLTYPE GetStreamValue(void* out, uint32_t bytes, int32_t stream, uint32_t key) override;
    HRESULT STDMETHODCALLTYPE Duplicate(IKtReadFile** out) override;
    HRESULT STDMETHODCALLTYPE Close() override;
    HRESULT STDMETHODCALLTYPE IsOpen() override;
    HRESULT STDMETHODCALLTYPE Open(uint32_t reserved1, uint32_t reserved2) override;
    HRESULT STDMETHODCALLTYPE SetFileName(const WCHAR* path) override;
    HRESULT STDMETHODCALLTYPE GetFileName(WCHAR* buffer, int32_t size) override;
    HRESULT STDMETHODCALLTYPE GetDuration(int64_t* out) override;
    HRESULT STDMETHODCALLTYPE GetStreamCount(int32_t* out) override;
    HRESULT STDMETHODCALLTYPE GetItemCount(int32_t* out) override;
    HRESULT STDMETHODCALLTYPE GetStreamInfo(_ktstreaminfo* records, int32_t first, int32_t count) override;
    HRESULT STDMETHODCALLTYPE GetStreamKind(int32_t stream, uint32_t* kind, uint32_t* second) override;
    HRESULT STDMETHODCALLTYPE GetStreamProperty(int32_t stream, uint32_t key, uint32_t* out) override;
    HRESULT STDMETHODCALLTYPE GetStream(void** out, uint64_t reserved, int32_t stream) override;
    HRESULT STDMETHODCALLTYPE NoOperation21() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetMeta(void** out) override;
    HRESULT STDMETHODCALLTYPE NotServed23() override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE BeginProperties() override;
    HRESULT STDMETHODCALLTYPE GatherProperties(IStream* snapshot) override;
    HRESULT STDMETHODCALLTYPE ShowPropertiesDialog(HWND parent, uint64_t reserved, IKtPropertiesSink* sink,
                                                   uint32_t* ok) override;
    // Works on the clip's look as it stands: a clip whose own look is to be kept where a setting is unset has to be
    // open.
    HRESULT STDMETHODCALLTYPE ApplyProperties(IStream* snapshot) override;

  private:
    explicit CReadFile(CReadFileClass* file_class) noexcept : file_class_(file_class) {}
    [[nodiscard]] HRESULT CreateSubObjects() noexcept;
    void ReleaseSubObjects() noexcept;
    [[nodiscard]] HRESULT LoadFrom(const char* path) noexcept;
    [[nodiscard]] HRESULT Measure() noexcept;
    [[nodiscard]] HRESULT MeasureAudio() noexcept;
    [[nodiscard]] HRESULT MeasureVideo() noexcept;
    [[nodiscard]] HRESULT GatherFromOpenClip(IStream* snapshot) noexcept;

    // Bytes per second.
    [[nodiscard]] HRESULT StreamDataRate(int32_t stream, uint32_t* out) noexcept;
    [[nodiscard]] HRESULT VideoDataRate(uint32_t* out) noexcept;
    [[nodiscard]] HRESULT TotalDataRate(uint32_t* out) noexcept;
    [[nodiscard]] HRESULT StreamFormatText(WCHAR* buffer, int32_t size, int32_t stream) noexcept;

    ReferenceCount references_{0};
    CReadFileClass* file_class_;  // not counted: the class outlives its files
    WAVEFORMATEX audio_format_ = {};
    BITMAPINFOHEADER video_format_ = {};
    double frame_rate_ = 0.0;
    uint64_t video_length_ = 0;  // frames
    uint64_t audio_length_ = 0;  // samples per channel
    CReadVideoStream* video_stream_ = nullptr;
    CReadAudioStream* audio_stream_ = nullptr;
    CReadMeta* meta_ = nullptr;
    WString file_name_;
    ClipField clip_ = nullptr;
    int32_t stream_count_ = 0;
    int32_t item_count_ = 0;
    bool is_open_ = false;
    ObjectLock lock_;
};

}  // namespace clipfio
