// The sound side of one clip: 32-bit floats out of the decoder's big-endian integers.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "audio/copy_engine.h"
#include "kernel/heap_object.h"
#include "reader/aligned_buffer.h"
#include "reader/clip_field.h"
#include "reader/com_base.h"
#include "reader/host_interfaces.h"

namespace clipfio {

class CReadFile;

// Channels of a clip: only the lowest four bits of its mask count.
uint32_t ChannelsOfMask(uint32_t mask) noexcept;

class CReadAudioStream final : public IKtReadAudioStream, public HeapObject {
  public:
    // With one reference, the file object's; null when out of memory. Neither the file nor `clip`, the address of the
    // file's clip, is counted: both outlive the stream.
    static CReadAudioStream* Make(CReadFile* file, const ClipField* clip) noexcept;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE GetFileClass(IKtReadFileClass** out) override;
    HRESULT STDMETHODCALLTYPE GetFile(IKtReadFile** out) override;
    HRESULT STDMETHODCALLTYPE Reserved5() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetKind(uint32_t* kind, uint32_t* second, uint32_t* third) override;
    HRESULT STDMETHODCALLTYPE GetDuration(int64_t* out) override;
    HRESULT STDMETHODCALLTYPE GetStartTime(int64_t* out) override;
    HRESULT STDMETHODCALLTYPE SetUserValue(uint32_t value) override;
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
    virtual void* Destroy(uint32_t flags);  // bit 0 frees the object as well
    virtual HRESULT ReadClipFormat();
    virtual HRESULT PrepareBuffers();
    virtual HRESULT Prepare();

    // Keeps the stream from the decoder while the file object loads or closes the clip.
    [[nodiscard]] platform::MutexLock Hold() noexcept { return lock_.Hold(); }

  private:
    CReadAudioStream(CReadFile* file, const ClipField* clip) noexcept;
    ~CReadAudioStream() = default;
    [[nodiscard]] HRESULT ReadBlock(uint64_t first, void* destination, int32_t count, int32_t* read) noexcept;
    [[nodiscard]] HRESULT ReserveSamples(int64_t bytes, void** out) noexcept;

    ReferenceCount references_{1};
    CReadFile* file_;
    std::atomic<uint32_t> user_value_ = 0;
    WAVEFORMATEX native_format_ = {};  // what the clip holds
    WAVEFORMATEX format_ = {};         // what the host gets
    uint64_t sample_count_ = 0;        // per channel
    uint32_t channel_mask_ = 0;
    std::unique_ptr<AlignedBuffer> sample_buffer_;
    const ClipField* clip_;
    uint64_t max_block_bytes_ = 0;
    KTAUDIOCOPYFUNC convert_ = nullptr;
    ObjectLock lock_;
};

}  // namespace clipfio
