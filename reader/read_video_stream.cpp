#include "reader/read_video_stream.h"

#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>

#include "kernel/text_copy.h"
#include "kernel/time_units.h"
#include "reader/frame_delivery.h"
#include "reader/plugin_module.h"
#include "reader/read_file.h"
#include "settings/decode_properties_file.h"
#include "settings/media_property_editor.h"

namespace clipfio {
namespace {

struct Resolution {
    uint32_t divisor;
    uint32_t lowestQuality;
    DecodeMode mode;
};
constexpr Resolution kResolutions[] = {
    {1, 1, DecodeMode::FullPremium}, {2, 4, DecodeMode::HalfPremium}, {2, 1, DecodeMode::HalfGood},
    {4, 1, DecodeMode::QuarterGood}, {8, 1, DecodeMode::EighthGood},  {16, 1, DecodeMode::SixteenthGood},
};

constexpr uint64_t kDecodeAlignment = 16;
constexpr uint32_t kHostFloatFrames = FourCharacterCode("KTDB");
constexpr double kVideoGamma = 2.2222222222222223;
constexpr double kGammaTolerance = 0.001;
constexpr uint32_t kRec709 = 1;  // both as gamma curve and as colour space
constexpr uint32_t kLinear = 0;

bool IsNear(double value, double wanted) noexcept { return std::fabs(value - wanted) < kGammaTolerance; }

// A picture size in bytes; the largest number of 64 bits when it does not fit.
uint64_t Bytes(uint64_t width, uint64_t height, uint64_t per_pixel) noexcept {
    uint64_t row = 0;
    uint64_t all = 0;
    if (__builtin_mul_overflow(width, per_pixel, &row) || __builtin_mul_overflow(row, height, &all)) {
        return std::numeric_limits<uint64_t>::max();
    }
    return all;
}

_ktframeformat FrameFormat(double frame_rate, double gamma) noexcept {
    _ktframeformat format = {};
    format.size = sizeof format;
    format.reserved1 = 0xFFFFFFFF;
    format.frameRate = frame_rate;
    format.pixelAspect = 1.0;
    format.gamma = gamma;
    return format;
}

// The gamma of a frame, of those that can be delivered: the wanted one where it is 0 or that of video, else linear.
double DeliveredGamma(uint32_t bits, double wanted) noexcept {
    if (bits != 128) return 0.0;
    return wanted == 0.0 || IsNear(wanted, kVideoGamma) ? wanted : 1.0;
}

template <class Value>
HRESULT Give(Value* out, Value value) noexcept {
    if (!out) return E_INVALIDARG;
    *out = value;
    return S_OK;
}

}  // namespace

uint32_t ChooseDivisor(double scale) noexcept {
    // The small addend lifts what is meant to be a half over the half. Adding 2^52 + 2^51 rounds to the nearest
    // integer, ties to even, and leaves it in the low 32 bits.
    const double shifted = 1.0 / scale + 0.000000015 + 6755399441055744.0;
    uint64_t bits = 0;
    std::memcpy(&bits, &shifted, sizeof bits);
    const auto target = static_cast<int32_t>(static_cast<uint32_t>(bits));
    for (auto row = std::rbegin(kResolutions); row != std::rend(kResolutions); ++row) {
        if (static_cast<int32_t>(row->divisor) <= target) return row->divisor;
    }
    return 1;
}

DecodeMode ChooseDecodeMode(uint32_t divisor, uint32_t quality) noexcept {
    for (const Resolution& row : kResolutions) {
        if (row.divisor == divisor && row.lowestQuality <= quality) return row.mode;
    }
    return DecodeMode::FullPremium;
}

// One picture on its way: as the decoder writes it, and as the host gets it.
struct CReadVideoStream::Picture {
    uint64_t width;
    uint64_t height;
    DecodeMode mode;
    PixelType pixelType;
    uint64_t rowBytes;
    uint64_t decodeBytes;
    uint64_t hostBytes;
};

CReadVideoStream::CReadVideoStream(CReadFile* file, const ClipField* clip) noexcept
    : StreamBase(file, clip), editor_(&ProcessEditor()) {}

HRESULT CReadVideoStream::GetDuration(int64_t* out) {
    return Give(out, UnitsOf(static_cast<double>(frame_count_.load()), frame_rate_.load()));
}

HRESULT CReadVideoStream::Close() {
    const auto hold = lock_.Hold();
    decode_buffer_.reset();
    return S_OK;
}

HRESULT CReadVideoStream::GetLength(uint64_t* out) { return Give(out, frame_count_.load()); }

void CReadVideoStream::FillFormat(_ktstreaminfo* info, WORD bits, uint64_t bytes) noexcept {
    *info = {};
    info->size = sizeof *info;
    info->kind = kKtStreamVideo;
    info->frameFormat = FrameFormat(frame_rate_, 0.0);
    BITMAPINFOHEADER bitmap = {};
    bitmap.biSize = sizeof bitmap;
    bitmap.biWidth = static_cast<LONG>(width_.load());
    bitmap.biHeight = static_cast<LONG>(height_.load());
    bitmap.biPlanes = 1;
    bitmap.biBitCount = bits;
    bitmap.biSizeImage = static_cast<DWORD>(bytes);
    std::memcpy(info->format, &bitmap, sizeof bitmap);
}

HRESULT CReadVideoStream::GetFormat(_ktstreaminfo* info) {
    if (!info) return E_INVALIDARG;
    const bool floats = format_index_ == 1;
    FillFormat(info, floats ? 128 : 32, width_ * height_ * (floats ? 16 : 4));
    return S_OK;
}

HRESULT CReadVideoStream::GetNativeFormat(_ktstreaminfo* info) {
    const auto hold = lock_.Hold();
    if (!info) return E_INVALIDARG;
    const uint64_t row = (width_ * 6 + 15) / 16 * 16;
    FillFormat(info, 48, height_ * row);
    return S_OK;
}

HRESULT CReadVideoStream::SetFormat(const _ktstreaminfo* info) {
    const auto hold = lock_.Hold();
    if (!info) return E_INVALIDARG;
    BITMAPINFOHEADER bitmap;
    std::memcpy(&bitmap, info->format, sizeof bitmap);
    if (bitmap.biWidth != static_cast<LONG>(width_.load()) || bitmap.biHeight != static_cast<LONG>(height_.load()) ||
        bitmap.biCompression != 0) {
        return S_OK;
    }
    if (bitmap.biBitCount != 32 && bitmap.biBitCount != 128) return S_FALSE;
    format_index_ = bitmap.biBitCount == 128 ? 1 : 0;
    return S_OK;
}

HRESULT CReadVideoStream::GetFrameSize(uint64_t, const _ktframerequest* request, uint32_t* out) {
    const auto hold = lock_.Hold();
    if (!request || !out) return E_INVALIDARG;
    *out = 0;
    const uint64_t pixel = request->bitsPerPixel == 32 ? 4 : request->bitsPerPixel == 128 ? 16 : 0;
    if (pixel == 0) return E_INVALIDARG;
    const uint64_t divisor = ChooseDivisor(request->scale);
    *out = static_cast<uint32_t>(width_ / divisor * height_ * pixel / divisor);
    return S_OK;
}

HRESULT CReadVideoStream::GetFrameInfo(uint64_t frame, const _ktframerequest* request, _ktframeinfo* info) {
    const auto hold = lock_.Hold();
    if (!request || !info) return E_INVALIDARG;
    const uint32_t divisor = ChooseDivisor(request->scale);
    *info = {};
    info->frame = frame;
    info->scale = 1.0 / divisor;
    const HRESULT result = GetFrameSize(frame, request, &info->bytes);
    if (FAILED(result)) return result;
    info->frameFormat = FrameFormat(frame_rate_, DeliveredGamma(request->bitsPerPixel, request->gamma));
    info->bitmap.biSize = sizeof info->bitmap;
    info->bitmap.biWidth = static_cast<LONG>(width_ / divisor);
    info->bitmap.biHeight = static_cast<LONG>(height_ / divisor);
    info->bitmap.biPlanes = 1;
    info->bitmap.biBitCount = static_cast<WORD>(request->bitsPerPixel);
    info->bitmap.biCompression = request->bitsPerPixel == 128 ? kHostFloatFrames : 0;
    info->bitmap.biSizeImage = info->bytes;
    return S_OK;
}

HRESULT CReadVideoStream::ReserveDecodeBuffer(const Picture& picture, void** out) noexcept {
    if (!decode_buffer_) decode_buffer_.reset(new (std::nothrow) AlignedBuffer(kDecodeAlignment));
    if (!decode_buffer_ || picture.decodeBytes > static_cast<uint64_t>(std::numeric_limits<int64_t>::max())) {
        return E_OUTOFMEMORY;
    }
    const HRESULT result = decode_buffer_->Reserve(static_cast<int64_t>(picture.decodeBytes));
    return FAILED(result) ? result : decode_buffer_->GetPointer(out);
}

HRESULT CReadVideoStream::Decode(uint64_t frame, double gamma, const Picture& picture, void* output) noexcept {
    const R3DClip* clip = *clip_;
    if (!clip) return E_FAIL;
    DecodeSettingsRecord settings;
    // Without its settings a frame is developed with the record as far as it was filled.
    (void)GetDecodeSettings(&settings);
    settings.imageColorSpace = kRec709;
    settings.imageGammaCurve = IsNear(gamma, 1.0) ? kLinear : kRec709;

    VideoDecodeJob job;
    job.decodeMode = picture.mode;
    job.pixelType = picture.pixelType;
    job.output = output;
    job.rowBytes = picture.rowBytes;
    job.outputBytes = picture.decodeBytes;
    job.settings = &settings;
    return DecodeFrame(clip->handle, frame, job) == 0 ? S_OK : E_FAIL;
}

HRESULT CReadVideoStream::ReadFrame(uint64_t frame, const _ktframerequest* request, const _ktmemorytoken* destination,
                                    _ktframeinfo* info, uint32_t* bytes) {
    const auto hold = lock_.Hold();
    HRESULT result = GetFrameInfo(frame, request, info);
    if (FAILED(result)) return result;
    if (!bytes || !destination) return E_INVALIDARG;

    const uint32_t divisor = ChooseDivisor(request->scale);
    const bool floats = request->bitsPerPixel == 128;
    Picture picture = {};
    picture.width = width_ / divisor;
    picture.height = height_ / divisor;
    picture.mode = ChooseDecodeMode(divisor, request->quality);
    picture.pixelType = floats ? PixelType::Rgb16 : PixelType::Bgra8;
    picture.rowBytes = picture.width * (floats ? 6 : 4);
    picture.decodeBytes = Bytes(picture.width, picture.height, floats ? 6 : 4);
    picture.hostBytes = Bytes(picture.width, picture.height, floats ? 16 : 4);

    void* decoded = nullptr;
    result = ReserveDecodeBuffer(picture, &decoded);
    if (FAILED(result)) return result;
    result = Decode(frame, info->frameFormat.gamma, picture, decoded);
    if (FAILED(result)) return result;

    // The room is known before the memory is mapped: memory that is only written would else be carried back blank.
    const auto room = static_cast<int32_t>(destination->size);
    if (room < 0 || static_cast<uint64_t>(room) < picture.hostBytes) return E_INVALIDARG;
    CMappingOfKtMemoryToken mapping(*destination, kKtTokenWrite);
    if (!mapping.Pointer()) return E_INVALIDARG;
    const FrameDelivery& delivery = BestFrameDelivery();
    (floats ? delivery.rgb16_to_floats : delivery.bgra8)(decoded, mapping.Pointer(), picture.width, picture.height);
    *bytes = static_cast<uint32_t>(picture.hostBytes);
    mapping.KeepFirst(*bytes);
    mapping.Dispose();
    return S_OK;
}

HRESULT CReadVideoStream::SetRatio(double ratio) {
    ratio_ = ratio;
    return S_OK;
}

HRESULT CReadVideoStream::GetRatio(double* out) { return Give(out, ratio_.load()); }

HRESULT CReadVideoStream::GetFrameRate(double* out) {
    const auto hold = lock_.Hold();
    return Give(out, frame_rate_.load());
}

HRESULT CReadVideoStream::GetDecodeSettings(DecodeSettingsRecord* settings) {
    const HRESULT result = GetClipDefaultSettings(settings);
    if (FAILED(result)) return result;
    const MediaPropertyEditor* editor = *editor_;
    if (!editor) return S_OK;
    if (editor->HasSink()) {
        editor->StoreItems(*settings);
        return S_OK;
    }
    const auto hold = lock_.Hold();
    if (FAILED(properties_path_result_)) return properties_path_result_;
    return editor->ApplyFile(*settings, properties_path_);
}

HRESULT CReadVideoStream::GetClipDefaultSettings(DecodeSettingsRecord* settings) {
    const R3DClip* clip = *clip_;
    if (!clip || !file_) return E_UNEXPECTED;
    if (!settings) return E_INVALIDARG;
    GetClipSettings(clip->handle, settings);
    return S_OK;
}

HRESULT CReadVideoStream::ReadClipGeometry() {
    const R3DClip* clip = *clip_;
    if (!clip) return E_UNEXPECTED;
    width_ = ClipWidth(clip->handle);
    height_ = ClipHeight(clip->handle);
    frame_count_ = ClipFrameCount(clip->handle);
    frame_rate_ = ClipFrameRate(clip->handle);
    return S_OK;
}

HRESULT CReadVideoStream::Prepare() {
    const auto hold = lock_.Hold();
    const HRESULT result = ReadClipGeometry();
    if (FAILED(result)) return result;
    if (!decode_buffer_) decode_buffer_.reset(new (std::nothrow) AlignedBuffer(kDecodeAlignment));
    return decode_buffer_ ? S_OK : E_OUTOFMEMORY;
}

void CReadVideoStream::SetClipPath(const WCHAR* path) noexcept {
    const auto hold = lock_.Hold();
    // As GetFileName with a buffer of that size would give it.
    properties_path_result_ =
        WStringView(path).size() < MAX_PATH ? MakeDecodePropertiesPath(path, properties_path_) : E_FAIL;
}

HRESULT CReadVideoStream::GetPropertiesPath(WCHAR (&out)[MAX_PATH]) noexcept {
    const auto hold = lock_.Hold();
    CopyText(out, MAX_PATH, FAILED(properties_path_result_) ? W("") : properties_path_);
    return properties_path_result_;
}

}  // namespace clipfio
