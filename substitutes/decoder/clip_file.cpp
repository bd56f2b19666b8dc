#include "substitutes/decoder/clip_file.h"

#include <algorithm>
#include <cstring>

namespace clipfio::decoder {

Status ClipFile::Open(const WString& path) noexcept {
    if (!pictures_.Open(path)) return Status::CannotOpen;
    if (pictures_.ReadAt(0, &header_, sizeof header_) != sizeof header_) return Status::NotAClip;
    if (const Status status = CheckHeader(header_); status != Status::Good) return status;
    return sound_.Open(path) ? Status::Good : Status::CannotOpen;
}

uint64_t ClipFile::PictureOffset(uint64_t frame, uint32_t level) const noexcept {
    return header_.picturesOffset + frame * header_.frameBytes + LevelOffset(header_.width, header_.height, level);
}

Status ClipFile::CheckPicture(uint64_t frame, uint32_t level) const noexcept {
    if (frame >= header_.frameCount) return Status::NoSuchFrame;
    const uint64_t end = PictureOffset(frame, level) + LevelSize(header_.width, header_.height, level).Bytes();
    return end <= pictures_.Size() ? Status::Good : Status::MissingData;
}

Status ClipFile::ReadRows(uint64_t frame, uint32_t level, uint32_t row, uint32_t rows, void* out) noexcept {
    const size_t row_bytes = size_t{LevelSize(header_.width, header_.height, level).width} * kBytesPerPixel;
    const size_t bytes = row_bytes * rows;
    const uint64_t offset = PictureOffset(frame, level) + uint64_t{row} * row_bytes;
    return pictures_.ReadAt(offset, out, bytes) == bytes ? Status::Good : Status::ReadFailed;
}

uint64_t ClipFile::SamplesFrom(uint64_t first) const noexcept {
    if (first >= header_.sampleCount || Channels() == 0) return 0;
    const uint64_t frame_bytes = uint64_t{Channels()} * sizeof(int32_t);
    const uint64_t bytes = sound_.Size() > header_.soundOffset ? sound_.Size() - header_.soundOffset : 0;
    const uint64_t present = std::min(header_.sampleCount, bytes / frame_bytes);
    return present > first ? present - first : 0;
}

uint64_t ClipFile::ReadSamples(uint64_t first, uint64_t samples, void* out) noexcept {
    const uint64_t frame_bytes = uint64_t{Channels()} * sizeof(int32_t);
    if (frame_bytes == 0) return 0;
    return sound_.ReadAt(header_.soundOffset + first * frame_bytes, out, samples * frame_bytes) / frame_bytes;
}

}  // namespace clipfio::decoder
