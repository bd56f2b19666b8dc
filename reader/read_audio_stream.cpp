#include "reader/read_audio_stream.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <new>

#include "audio/wave_format.h"
#include "kernel/time_units.h"
#include "reader/read_file.h"

namespace clipfio {
namespace {

constexpr uint64_t kSampleAlignment = 512;
constexpr WORD kNativeTag = 0x30;  // no PCM: the block layout is the decoder's
constexpr WORD kFloatTag = 3;
constexpr WORD kFloatBits = 32;
constexpr WORD kNativeSampleBytes = 4;
constexpr uint32_t kChannelBits = 0xF;

void FillInfo(_ktstreaminfo* info, uint64_t length, const WAVEFORMATEX& wfx) noexcept {
    *info = {};
    info->size = sizeof *info;
    info->kind = kKtStreamAudio;
    info->length = length;
    _ktwaveformat format;
    format.Init(sizeof format, &wfx);
    std::memcpy(info->format, &format, sizeof format);
}

}  // namespace

uint32_t ChannelsOfMask(uint32_t mask) noexcept { return static_cast<uint32_t>(std::popcount(mask & kChannelBits)); }

CReadAudioStream::CReadAudioStream(CReadFile* file, const ClipField* clip) noexcept : StreamBase(file, clip) {
    format_.wFormatTag = kFloatTag;
    format_.wBitsPerSample = kFloatBits;
}

CReadAudioStream::~CReadAudioStream() {
    const auto hold = lock_.Hold();
    sample_buffer_.reset();
}

HRESULT CReadAudioStream::GetFile(IKtReadFile** out) {
    const auto hold = lock_.Hold();
    return StreamBase::GetFile(out);
}

HRESULT CReadAudioStream::GetKind(uint32_t* kind, uint32_t* second, uint32_t* third) {
    const auto hold = lock_.Hold();
    return StreamBase::GetKind(kind, second, third);
}

HRESULT CReadAudioStream::GetDuration(int64_t* out) {
    const auto hold = lock_.Hold();
    if (!out) return E_INVALIDARG;
    *out = UnitsOf(static_cast<double>(sample_count_), format_.nSamplesPerSec);
    return S_OK;
}

HRESULT CReadAudioStream::GetStartTime(int64_t* out) {
    const auto hold = lock_.Hold();
    return StreamBase::GetStartTime(out);
}

HRESULT CReadAudioStream::Close() {
    const auto hold = lock_.Hold();
    sample_buffer_.reset();
    return S_OK;
}

HRESULT CReadAudioStream::GetLength(uint64_t* out) {
    const auto hold = lock_.Hold();
    if (!out) return E_INVALIDARG;
    *out = sample_count_;
    return S_OK;
}

HRESULT CReadAudioStream::GetBlockAlign(uint32_t* out) {
    const auto hold = lock_.Hold();
    if (!out) return E_INVALIDARG;
    *out = native_format_.nBlockAlign;
    return S_OK;
}

HRESULT CReadAudioStream::GetFormat(_ktstreaminfo* info) {
    const auto hold = lock_.Hold();
    if (!info) return E_INVALIDARG;
    FillInfo(info, sample_count_, format_);
    return S_OK;
}

HRESULT CReadAudioStream::GetNativeFormat(_ktstreaminfo* info) {
    const auto hold = lock_.Hold();
    if (!info) return E_INVALIDARG;
    FillInfo(info, sample_count_, native_format_);
    return S_OK;
}

HRESULT CReadAudioStream::CheckFormat(const _ktstreaminfo* info) {
    const auto hold = lock_.Hold();
    if (!info) return E_INVALIDARG;
    // The record's extra data may fill the room behind it, and no more than that.
    struct {
        _ktwaveformat format;
        uint8_t extra[sizeof info->format - sizeof(_ktwaveformat)];
    } record;
    static_assert(sizeof record == sizeof info->format);
    std::memcpy(static_cast<void*>(&record), info->format, sizeof record);
    record.format.size = std::min<uint32_t>(record.format.size, sizeof record);
    return record.format == native_format_ ? S_OK : S_FALSE;
}

HRESULT CReadAudioStream::ReadClipFormat() {
    const auto hold = lock_.Hold();
    const R3DClip* clip = *clip_;
    if (!clip) return E_UNEXPECTED;
    const uint32_t rate = GetMetadataNumber(clip->handle, "samplerate");
    const uint32_t bits = GetMetadataNumber(clip->handle, "sample_size");
    channel_mask_ = GetMetadataNumber(clip->handle, "channel_mask");
    const auto channels = static_cast<WORD>(ChannelsOfMask(channel_mask_));

    native_format_.wFormatTag = kNativeTag;
    native_format_.nChannels = channels;
    native_format_.nSamplesPerSec = rate;
    native_format_.nBlockAlign = static_cast<WORD>(channels * kNativeSampleBytes);
    native_format_.nAvgBytesPerSec = native_format_.nBlockAlign * rate;
    native_format_.wBitsPerSample = static_cast<WORD>(bits);
    native_format_.cbSize = 0;

    const uint32_t sample = KtAudio_BytesFromSampleType(KtAudio_GetSampleType2(kFloatTag, kFloatBits));
    format_.wFormatTag = kFloatTag;
    format_.nChannels = channels;
    format_.nSamplesPerSec = rate;
    format_.nAvgBytesPerSec = native_format_.nAvgBytesPerSec;
    format_.nBlockAlign = static_cast<WORD>(channels * sample);
    format_.wBitsPerSample = kFloatBits;
    format_.cbSize = 0;
    return format_.nBlockAlign == 0 ? E_UNEXPECTED : S_OK;
}

HRESULT CReadAudioStream::PrepareBuffers() {
    const auto hold = lock_.Hold();
    const R3DClip* clip = *clip_;
    if (!clip) return E_UNEXPECTED;
    max_block_bytes_ = 0;
    if (AudioBlockInfo(clip->handle, &max_block_bytes_) == 0) return E_FAIL;
    HRESULT result = ReadClipFormat();
    if (FAILED(result)) return result;
    if (max_block_bytes_ > static_cast<uint64_t>(std::numeric_limits<int64_t>::max())) return E_OUTOFMEMORY;
    void* samples = nullptr;
    result = ReserveSamples(static_cast<int64_t>(max_block_bytes_), &samples);
    if (FAILED(result)) return result;
    sample_count_ = AudioSampleCount(clip->handle);
    return S_OK;
}

HRESULT CReadAudioStream::Prepare() {
    const auto hold = lock_.Hold();
    convert_ = KtAudio_GetCopyFunction2(KtAudio_GetSampleType2(kFloatTag, kFloatBits), KTSAMPLETYPE_PCM32BE);
    return convert_ ? S_OK : E_FAIL;
}

HRESULT CReadAudioStream::ReserveSamples(int64_t bytes, void** out) noexcept {
    if (!sample_buffer_) sample_buffer_.reset(new (std::nothrow) AlignedBuffer(kSampleAlignment));
    if (!sample_buffer_) return E_OUTOFMEMORY;
    const HRESULT result = sample_buffer_->Reserve(bytes);
    return FAILED(result) ? result : sample_buffer_->GetPointer(out);
}

HRESULT CReadAudioStream::ReadBlock(uint64_t first, void* destination, int32_t count, int32_t* read) noexcept {
    const auto hold = lock_.Hold();
    *read = 0;
    const R3DClip* clip = *clip_;
    // Without channels there is no buffer to give, and the decoder is not told of samples that it has no room for.
    if (!clip || native_format_.nBlockAlign == 0) return E_FAIL;
    const int64_t bytes = static_cast<int64_t>(native_format_.nBlockAlign) * count;
    void* samples = nullptr;
    const HRESULT result = ReserveSamples(bytes, &samples);
    if (FAILED(result)) return result;
    auto got = static_cast<uint64_t>(count);
    if (DecodeAudio(clip->handle, first, &got, samples, static_cast<uint64_t>(bytes)) != 0) return E_FAIL;
    if (!convert_) return E_UNEXPECTED;
    const auto block = static_cast<int32_t>(std::min(got, static_cast<uint64_t>(count)));
    convert_(destination, samples, native_format_.nChannels * block, 1.0f);
    *read = block;
    return S_OK;
}

HRESULT CReadAudioStream::ReadSamples(int64_t first, const _ktmemorytoken* destination, int32_t count, int32_t* read) {
    const auto hold = lock_.Hold();
    if (!read) return E_INVALIDARG;
    *read = 0;
    if (!destination) return E_INVALIDARG;
    if (count <= 0) return S_OK;
    // The converter counts samples of all channels in 32 bits, and the host's memory in 31.
    const int64_t room = static_cast<int32_t>(destination->size);
    if (room < 0 || static_cast<int64_t>(format_.nBlockAlign) * count > room) return E_INVALIDARG;
    CMappingOfKtMemoryToken mapping(*destination, kKtTokenWrite);
    auto* out = static_cast<uint8_t*>(mapping.Pointer());
    if (!out) return E_INVALIDARG;

    HRESULT result = S_OK;
    int32_t total = 0;
    while (count > 0 && result == S_OK) {
        int32_t block = 0;
        result = ReadBlock(static_cast<uint64_t>(first), out, count, &block);
        if (SUCCEEDED(result) && block > 0) {
            total += block;
            first += block;
            count -= block;
            out += static_cast<std::size_t>(block) * native_format_.nBlockAlign;
            continue;
        }
        // The decoder has no more: what was read before stands.
        if (total > 0) result = S_FALSE;
        break;
    }
    *read = FAILED(result) ? 0 : total;
    mapping.KeepFirst(static_cast<uint32_t>(*read) * native_format_.nBlockAlign);
    mapping.Dispose();
    return result;
}

}  // namespace clipfio
