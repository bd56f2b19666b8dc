// Writing clips, with failures as this program has them.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "host/frame_options.h"
#include "substitutes/decoder/clip_writer.h"

namespace clipfio::host {

// Nothing remains of a clip that was not finished. All operations throw Failure.
class ClipMaker {
  public:
    ClipMaker(const std::string& path, const decoder::ClipDescription& description);

    void AddFrame(const uint16_t* rgb);
    void AddAudio(std::span<const int32_t> interleaved, std::size_t samples);
    void Finish();
    [[nodiscard]] uint64_t FrameCount() const { return writer_.FrameCount(); }

  private:
    void Check(bool good) const;

    std::string path_;
    decoder::ClipWriter writer_;
};

// The clip without sound. Throws UsageError for a picture that a clip cannot hold.
[[nodiscard]] decoder::ClipDescription DescribeClip(PictureSize size, Rate rate);

// "hh:mm:ss:ff", or with ";" before the frames for drop-frame counting, which only 29.97 and 59.94 know. Throws
// UsageError.
void ParseStartTimecode(const std::string& text, decoder::ClipDescription& description);

}  // namespace clipfio::host
