#include "substitutes/decoder/clip_writer.h"

#include <algorithm>
#include <filesystem>
#include <new>
#include <utility>
#include <vector>

#include "platform/endian.h"
#include "platform/files.h"
#include "platform/result_file.h"
#include "platform/text.h"
#include "substitutes/decoder/file_access.h"
#include "substitutes/decoder/reduced_sizes.h"
#include "substitutes/decoder/timecode.h"

namespace clipfio::decoder {
namespace {

constexpr size_t kCopyBytes = size_t{1} << 20;

ClipHeader HeaderOf(const ClipDescription& d) noexcept {
    ClipHeader h;
    h.width = d.width;
    h.height = d.height;
    h.rateNumerator = d.rate_numerator;
    h.rateDenominator = d.rate_denominator;
    h.frameBytes = LevelOffset(d.width, d.height, kLevels);
    h.startFrame = d.start_frame;
    h.flags = d.drop_frame ? kDropFrameFlag : 0;
    h.coding = d.coding;
    h.settings = d.settings;
    if (d.sample_rate != 0) {
        h.sampleRate = d.sample_rate;
        h.sampleSize = d.sample_size;
        h.channelMask = d.channel_mask;
        // A block holds the sound of one frame.
        const uint64_t samples = (uint64_t{d.sample_rate} * d.rate_denominator + d.rate_numerator - 1) /
                                 std::max<uint64_t>(d.rate_numerator, 1);
        h.blockSamples = static_cast<uint32_t>(std::clamp<uint64_t>(samples, 1, kMaximumBlockSamples));
    }
    return h;
}

// Null when the description makes a clip.
const char* FaultOf(const ClipDescription& d) noexcept {
    const auto side_is_good = [](uint32_t side) { return side >= 1 && side <= kMaximumSide; };
    if (!side_is_good(d.width) || !side_is_good(d.height)) return "width and height must be from 1 to 16384 pixels";
    if (d.rate_numerator == 0 || d.rate_denominator == 0) return "the frame rate must be above 0";
    if (d.drop_frame && !MayDropFrames(d.rate_numerator, d.rate_denominator)) {
        return "drop-frame timecode needs a frame rate of 30000/1001 or 60000/1001";
    }
    const TimecodeRate rate{NominalFps(d.rate_numerator, d.rate_denominator), d.drop_frame};
    if (d.start_frame >= FramesPerDay(rate)) return "the start timecode must be before 24 hours";
    if (d.coding != PictureCoding::Linear && d.coding != PictureCoding::Rec709 && d.coding != PictureCoding::Srgb) {
        return "unknown picture coding";
    }
    if (d.settings.version != 2 || d.settings.size != sizeof(DecodeSettingsRecord)) return "unknown settings record";
    if (d.sample_rate == 0) return nullptr;
    if (d.sample_size != 16 && d.sample_size != 24 && d.sample_size != 32) {
        return "the sample size must be 16, 24 or 32 bits";
    }
    if (d.channel_mask == 0 || d.channel_mask > 0xF) return "the channel mask must name one to four channels";
    return nullptr;
}

// A file under a temporary name, which goes with the object unless it has become the clip.
class TemporaryFile {
  public:
    TemporaryFile() = default;
    ~TemporaryFile() {
        if (path_.empty()) return;
        if (file_.IsOpen()) (void)file_.Close();
        // A second time, should the first have wanted memory that was short.
        if (!DeleteFileW(path_.c_str())) DeleteFileW(path_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    // In the folder of `target`.
    [[nodiscard]] bool Create(const std::filesystem::path& target) {
        path_ = platform::MakeTemporaryFile(target).wide;
        return !path_.empty() && file_.Create(path_);
    }
    [[nodiscard]] bool IsThere() const noexcept { return !path_.empty(); }
    [[nodiscard]] bool BecomeFile(const WString& path) noexcept {
        if (!MoveFileExW(path_.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING)) return false;
        path_.clear();
        return true;
    }
    [[nodiscard]] const WString& Path() const noexcept { return path_; }
    [[nodiscard]] OutputFile& File() noexcept { return file_; }

  private:
    WString path_;  // empty when there is none
    OutputFile file_;
};

}  // namespace

struct ClipWriter::Job {
    Job(std::filesystem::path file, const ClipDescription& d)
        : target(std::move(file)),
          path(platform::WidePath(target)),
          header(HeaderOf(d)),
          reduced(d.width, d.height, d.coding) {}

    [[nodiscard]] bool Start() {
        // The header is written last; until then its place holds zeros, which no reader takes for a clip.
        const std::vector<std::byte> zeros(sizeof(ClipHeader));
        return pictures.Create(target) && pictures.File().Write(zeros.data(), zeros.size());
    }

    [[nodiscard]] bool WriteFrame(const uint16_t* rgb) {
        const std::vector<uint16_t>& smaller = reduced.Make(rgb);
        const uint64_t bytes = LevelOffset(header.width, header.height, 1);
        if (!pictures.File().Write(rgb, bytes)) return false;
        if (!pictures.File().Write(smaller.data(), smaller.size() * sizeof(uint16_t))) return false;
        ++header.frameCount;
        return true;
    }

    // Sound waits in a file of its own, since it stands behind the last picture.
    [[nodiscard]] bool WriteSound(const int32_t* interleaved, size_t samples) {
        if (!sound.IsThere() && !sound.Create(target)) return false;
        copy.resize(kCopyBytes);
        const size_t values = samples * ChannelCount(header.channelMask);
        for (size_t done = 0; done < values;) {
            const size_t part = std::min(values - done, kCopyBytes / sizeof(int32_t));
            for (size_t i = 0; i < part; ++i) {
                platform::StoreBig(copy.data() + i * sizeof(int32_t), interleaved[done + i]);
            }
            if (!sound.File().Write(copy.data(), part * sizeof(int32_t))) return false;
            done += part;
        }
        header.sampleCount += samples;
        return true;
    }

    [[nodiscard]] bool AppendSound() {
        if (!sound.IsThere()) return true;
        if (!sound.File().Close()) return false;
        InputFile input;
        if (!input.Open(sound.Path())) return false;
        copy.resize(kCopyBytes);
        for (uint64_t done = 0; done < input.Size();) {
            const size_t part = input.ReadAt(done, copy.data(), copy.size());
            if (part == 0 || !pictures.File().Write(copy.data(), part)) return false;
            done += part;
        }
        return true;
    }

    [[nodiscard]] bool WriteHeader() {
        header.soundOffset = header.picturesOffset + header.frameCount * header.frameBytes;
        header.checksum = HeaderChecksum(header);
        return pictures.File().Rewind() && pictures.File().Write(&header, sizeof header);
    }

    std::filesystem::path target;
    WString path;  // the target's
    TemporaryFile pictures;
    TemporaryFile sound;
    ClipHeader header;
    ReducedSizes reduced;
    std::vector<std::byte> copy;
};

ClipWriter::ClipWriter() = default;
ClipWriter::~ClipWriter() = default;

bool ClipWriter::Fail(std::string_view text) {
    job_.reset();
    error_ = text;
    return false;
}

// For a call of the system that just failed.
bool ClipWriter::FailHere(std::string_view what) {
    const std::string_view reason = platform::ErrorText(GetLastError());
    return Fail(std::string(what) + ": " + std::string(reason));
}

template <class Step>
bool ClipWriter::Run(Step step) noexcept {
    try {
        if (!job_) {
            if (error_.empty()) error_ = "no clip is being written";
            return false;
        }
        return step();
    } catch (const std::exception&) {
        job_.reset();
        error_ = "out of memory";  // short enough to need none
        return false;
    }
}

bool ClipWriter::Open(WStringView path, const ClipDescription& description) noexcept {
    job_.reset();
    error_.clear();
    try {
        if (path.empty()) return Fail("the path is empty");
        if (const char* fault = FaultOf(description)) return Fail(fault);
        const platform::ResultTarget target = platform::FindResultTarget(platform::NativePath(platform::Utf8(path)));
        if (!target.fault.empty()) return Fail(target.fault);
        if (target.is_direct) return Fail("a clip cannot be written to a device or a pipe");
        job_ = std::make_unique<Job>(target.path, description);
        return job_->Start() || FailHere("the file cannot be made");
    } catch (const std::exception&) {
        job_.reset();
        error_ = "out of memory";
        return false;
    }
}

bool ClipWriter::AddFrame(const uint16_t* rgb) noexcept {
    return Run([&] {
        if (rgb == nullptr) return Fail("no picture was given");
        return job_->WriteFrame(rgb) || FailHere("a picture cannot be written");
    });
}

bool ClipWriter::AddAudio(const int32_t* interleaved, size_t samples) noexcept {
    return Run([&] {
        if (samples == 0) return true;
        if (interleaved == nullptr) return Fail("no sound was given");
        if (job_->header.sampleRate == 0) return Fail("the clip was described as one without sound");
        return job_->WriteSound(interleaved, samples) || FailHere("sound cannot be written");
    });
}

bool ClipWriter::Finish() noexcept {
    return Run([&] {
        if (!job_->AppendSound() || !job_->WriteHeader() || !job_->pictures.File().Close()) {
            return FailHere("the file cannot be completed");
        }
        if (!job_->pictures.BecomeFile(job_->path)) return FailHere("the finished file cannot take its name");
        job_.reset();
        return true;
    });
}

uint64_t ClipWriter::FrameCount() const noexcept { return job_ ? job_->header.frameCount : 0; }

}  // namespace clipfio::decoder
