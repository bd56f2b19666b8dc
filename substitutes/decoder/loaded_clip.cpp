#include "substitutes/decoder/loaded_clip.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace clipfio::decoder {
namespace {

static_assert(RowBuffers::kBytes >= size_t{kMaximumSide} * kBytesPerPixel);

std::optional<uint32_t> LevelOf(DecodeMode mode) noexcept {
    switch (mode) {
        case DecodeMode::FullPremium:
            return 0;
        case DecodeMode::HalfPremium:
        case DecodeMode::HalfGood:
            return 1;
        case DecodeMode::QuarterGood:
            return 2;
        case DecodeMode::EighthGood:
            return 3;
        case DecodeMode::SixteenthGood:
            return 4;
    }
    return std::nullopt;
}

struct PixelForm {
    uint32_t bytes;
    uint32_t alignment;
};

std::optional<PixelForm> FormOf(PixelType type) noexcept {
    switch (type) {
        case PixelType::Bgra8:
            return PixelForm{4, 1};
        case PixelType::Rgb16:
            return PixelForm{6, 2};
    }
    return std::nullopt;
}

bool RecordsAreGood(const VideoDecodeJob& job) noexcept {
    if (job.version != 1 || job.size != sizeof(VideoDecodeJob)) return false;
    if (job.output == nullptr || job.settings == nullptr) return false;
    return job.settings->version == 2 && job.settings->size == sizeof(DecodeSettingsRecord);
}

bool OutputIsGood(const VideoDecodeJob& job, PictureSize size, PixelForm form) noexcept {
    const uint64_t row = uint64_t{size.width} * form.bytes;
    if (job.rowBytes < row || job.outputBytes < row) return false;
    if (reinterpret_cast<uintptr_t>(job.output) % form.alignment != 0 || job.rowBytes % form.alignment != 0)
        return false;
    return (job.outputBytes - row) / job.rowBytes >= size.height - 1;
}

}  // namespace

RowBuffers::Buffer RowBuffers::Take() {
    {
        const std::lock_guard hold(lock_);
        if (!free_.empty()) {
            Buffer buffer = std::move(free_.back());
            free_.pop_back();
            return buffer;
        }
    }
    return std::make_unique<uint16_t[]>(kBytes / sizeof(uint16_t));
}

void RowBuffers::Give(Buffer buffer) noexcept {
    try {
        const std::lock_guard hold(lock_);
        free_.push_back(std::move(buffer));
    } catch (const std::exception&) {
        // The next decode makes a new one.
    }
}

Status LoadedClip::Decode(uint64_t frame, const VideoDecodeJob& job) {
    if (!RecordsAreGood(job)) return Status::BadArguments;
    const std::optional<uint32_t> level = LevelOf(job.decodeMode);
    const std::optional<PixelForm> form = FormOf(job.pixelType);
    if (!level || !form) return Status::NoSuchPicture;
    const ClipHeader& header = file_.Header();
    const PictureSize size = LevelSize(header.width, header.height, *level);
    if (size.width == 0 || size.height == 0) return Status::NoSuchPicture;
    if (!OutputIsGood(job, size, *form)) return Status::BadArguments;
    if (const Status status = file_.CheckPicture(frame, *level); status != Status::Good) return status;

    const std::shared_ptr<const Development> development =
        developments_.Get(*job.settings, header.coding, job.pixelType);
    RowBuffers::Buffer buffer = buffers_.Take();
    const auto rows_at_once = static_cast<uint32_t>(RowBuffers::kBytes / (size_t{size.width} * kBytesPerPixel));
    auto* out = static_cast<std::byte*>(job.output);
    Status status = Status::Good;
    for (uint32_t row = 0; row < size.height && status == Status::Good; row += rows_at_once) {
        const uint32_t rows = std::min(rows_at_once, size.height - row);
        status = file_.ReadRows(frame, *level, row, rows, buffer.get());
        if (status != Status::Good) break;
        for (uint32_t i = 0; i < rows; ++i) {
            development->DevelopRow(buffer.get() + size_t{i} * size.width * 3, out + (row + i) * job.rowBytes,
                                    size.width);
        }
    }
    buffers_.Give(std::move(buffer));
    return status;
}

}  // namespace clipfio::decoder
