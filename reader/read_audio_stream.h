// The sound side of one clip: 32-bit floats out of the decoder's big-endian integers.
#pragma once

#include <cstdint>
#include <memory>

#include "audio/copy_engine.h"
#include "reader/aligned_buffer.h"
#include "reader/stream_base.h"

namespace clipfio {

// Channels of a clip: only the lowest four bits of its mask count.
uint32_t ChannelsOfMask(uint32_t mask) noexcept;

class CReadAudioStream final
    : public StreamBase<CReadAudioStream, IKtReadAudioStream, IID_IKtReadAudioStream, kKtStreamAudio> {
  public:
    HRESULT STDMETHODCALLTYPE GetFile(IKtReadFile** out) override;
    HRESULT STDMETHODCALLTYPE Reserved5() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetKind(uint32_t* kind, uint32_t* second, uint32_t* third) override;
    HRESULT STDMETHODCALLTYPE GetDuration(int64_t* out) override;
    HRESULT STDMETHODCALLTYPE GetStartTime(int64_t* out) override;
    HRESULT STDMETHODCALLTYPE Close() override;
    HRESULT STDMETHODCALLTYPE GetLength(uint64_t* out) override;
    HRESULT STDMETHODCALLTYPE GetBlockAlign(uint32_t* out) override;
    HRESULT STDMETHODCALLTYPE GetFormat(_ktstreaminfo* info) override;
    HRESULT STDMETHODCALLTYPE GetNativeFormat(_ktstreaminfo* info) override;
    HRESULT STDMETHODCALLTYPE CheckFormat(const _ktstreaminfo* info) override;
    // A token that cannot be mapped, or that has no room for `count` samples of all channels, gives E_INVALIDARG with
    // nothing written.
    HRESULT STDMETHODCALLTYPE ReadSamples(int64_t first, const _ktmemorytoken* destination, int32_t count,
                                          int32_t* read) override;
    HRESULT STDMETHODCALLTYPE NotServed17() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE NotServed18() override { return E_NOTIMPL; }

    // The class's own slots, for the file object.
    virtual HRESULT ReadClipFormat();
    virtual HRESULT PrepareBuffers();
    virtual HRESULT Prepare();

  private:
    friend StreamBase;

    CReadAudioStream(CReadFile* file, const ClipField* clip) noexcept;
    ~CReadAudioStream();
    [[nodiscard]] HRESULT ReadBlock(uint64_t first, void* destination, int32_t count, int32_t* read) noexcept;
    [[nodiscard]] HRESULT ReserveSamples(int64_t bytes, void** out) noexcept;

    WAVEFORMATEX native_format_ = {};  // what the clip holds
    WAVEFORMATEX format_ = {};         // what the host gets
    uint64_t sample_count_ = 0;        // per channel
    uint32_t channel_mask_ = 0;
    std::unique_ptr<AlignedBuffer> sample_buffer_;
    uint64_t max_block_bytes_ = 0;
    KTAUDIOCOPYFUNC convert_ = nullptr;
};

}  // namespace clipfio
