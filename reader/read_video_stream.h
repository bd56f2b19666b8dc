// The picture side of one clip. Decoding is synchronous, on the caller's thread, under the stream's lock: frames in
// parallel take several file objects.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "reader/aligned_buffer.h"
#include "reader/stream_base.h"

namespace clipfio {

class MediaPropertyEditor;

// How much smaller than the clip a frame is decoded: 1, 2, 4, 8 or 16. The size rounds up to the next one available.
uint32_t ChooseDivisor(double scale) noexcept;
// The decode mode for a divisor; full size premium when the quality allows none.
DecodeMode ChooseDecodeMode(uint32_t divisor, uint32_t quality) noexcept;

class CReadVideoStream final
    : public StreamBase<CReadVideoStream, IKtReadVideoStream, IID_IKtReadVideoStream, kKtStreamVideo> {
  public:
    HRESULT STDMETHODCALLTYPE Reserved5() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDuration(int64_t* out) override;
    HRESULT STDMETHODCALLTYPE Close() override;
    HRESULT STDMETHODCALLTYPE GetLength(uint64_t* out) override;
    HRESULT STDMETHODCALLTYPE GetFormat(_ktstreaminfo* info) override;
    HRESULT STDMETHODCALLTYPE GetNativeFormat(_ktstreaminfo* info) override;
    HRESULT STDMETHODCALLTYPE SetFormat(const _ktstreaminfo* info) override;
    HRESULT STDMETHODCALLTYPE GetFrameSize(uint64_t frame, const _ktframerequest* request, uint32_t* out) override;
    HRESULT STDMETHODCALLTYPE GetFrameInfo(uint64_t frame, const _ktframerequest* request, _ktframeinfo* info) override;
    HRESULT STDMETHODCALLTYPE ReadFrame(uint64_t frame, const _ktframerequest* request,
                                        const _ktmemorytoken* destination, _ktframeinfo* info,
                                        uint32_t* bytes) override;
    HRESULT STDMETHODCALLTYPE NotServed18() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE NotServed19() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetRatio(double ratio) override;
    HRESULT STDMETHODCALLTYPE GetRatio(double* out) override;
    HRESULT STDMETHODCALLTYPE GetFrameRate(double* out) override;

    // The class's own slots, for the file object and the settings.
    // The record with which a frame is to be decoded: the clip's own settings, overlaid by the live dialog while it is
    // up, else by the clip's decode-properties file. `settings` comes with its default initialisation.
    virtual HRESULT GetDecodeSettings(DecodeSettingsRecord* settings);
    virtual HRESULT GetClipDefaultSettings(DecodeSettingsRecord* settings);
    virtual HRESULT ReadClipGeometry();
    virtual HRESULT Prepare();

    // The file object tells the clip's path, so that a frame need not ask for it: the file's lock comes before the
    // stream's.
    void SetClipPath(const WCHAR* path) noexcept;
    // The path of the clip's decode-properties file, empty with E_FAIL when the clip's path is too long for one.
    HRESULT GetPropertiesPath(WCHAR (&out)[MAX_PATH]) noexcept;

  private:
    friend StreamBase;
    struct Picture;

    CReadVideoStream(CReadFile* file, const ClipField* clip) noexcept;
    ~CReadVideoStream() = default;
    [[nodiscard]] HRESULT ReserveDecodeBuffer(const Picture& picture, void** out) noexcept;
    [[nodiscard]] HRESULT Decode(uint64_t frame, double gamma, const Picture& picture, void* output) noexcept;
    void FillFormat(_ktstreaminfo* info, WORD bits, uint64_t bytes) noexcept;

    MediaPropertyEditor* const* editor_;
    // Written under the lock and also read without it, each by itself.
    std::atomic<uint64_t> width_ = 0;  // pixels
    std::atomic<uint64_t> height_ = 0;
    std::atomic<uint64_t> frame_count_ = 0;
    std::atomic<double> frame_rate_ = 0.0;
    std::atomic<double> ratio_ = 1.0;
    std::atomic<uint32_t> format_index_ = 0;  // 0: 32 bits per pixel, 1: 128
    std::unique_ptr<AlignedBuffer> decode_buffer_;
    WCHAR properties_path_[MAX_PATH] = {};
    HRESULT properties_path_result_ = E_FAIL;
};

}  // namespace clipfio
