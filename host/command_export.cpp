// clipfio export: many frames as picture files, by several threads.
#include <algorithm>
#include <atomic>
#include <exception>
#include <filesystem>
#include <mutex>
#include <thread>

#include "host/clip.h"
#include "host/command.h"
#include "host/console.h"
#include "host/failure.h"
#include "host/frame_options.h"
#include "host/frames.h"
#include "host/output_file.h"
#include "host/positions.h"
#include "host/progress.h"

namespace clipfio::host {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kFewestDigits = 6;
constexpr uint32_t kMostJobs = 256;

struct Options {
    std::string clip;
    std::string folder;
    RangeText range;
    uint32_t jobs = std::max(1u, std::thread::hardware_concurrency());
    FrameOptions frame;
};

// "000012.png": names sort as the frames do.
std::string FrameFile(const std::string& folder, uint64_t number) {
    std::string digits = std::to_string(number);
    if (digits.size() < kFewestDigits) digits.insert(0, kFewestDigits - digits.size(), '0');
    return Utf8FromPath(PathFromUtf8(folder) / (digits + ".png"));
}

// Hands out the frames of a range to threads, each with a clip of its own, until they are done, one fails or the user
// stops.
class ExportJob {
  public:
    ExportJob(const Options& options, Range range)
        : options_(options), range_(range), next_(range.first), progress_("export", range.Count()) {}

    void Run(std::vector<Clip>& clips) {
        {
            std::vector<std::jthread> threads;
            for (Clip& clip : clips) threads.emplace_back([this, &clip] { Work(clip); });
        }
        if (failure_) std::rethrow_exception(failure_);
    }

    [[nodiscard]] uint64_t Done() const { return done_; }

  private:
    void Work(Clip& clip) noexcept {
        try {
            Frame frame;
            while (!failed_ && !InterruptScope::Requested()) {
                const uint64_t number = next_++;
                if (number > range_.last) return;
                ReadFrame(clip.Video(), number, options_.frame, frame);
                WritePng(FrameFile(options_.folder, number), ToRgb8(frame));
                ++done_;
                progress_.Step();
            }
        } catch (...) {
            const std::lock_guard lock(mutex_);
            if (!failure_) failure_ = std::current_exception();
            failed_ = true;
        }
    }

    const Options& options_;
    const Range range_;
    std::atomic<uint64_t> next_;
    std::atomic<uint64_t> done_{0};
    std::atomic<bool> failed_{false};
    std::mutex mutex_;
    std::exception_ptr failure_;
    Progress progress_;
};

void MakeFolder(const std::string& folder) {
    std::error_code error;
    fs::create_directories(PathFromUtf8(folder), error);
    if (error || !fs::is_directory(PathFromUtf8(folder))) {
        throw Failure("cannot make the folder " + folder + ": " +
                      (error ? error.message() : "a file of that name is there"));
    }
}

int Run(Context& context, const Options& options) {
    const InterruptScope interrupts;
    std::vector<Clip> clips;
    clips.push_back(OpenClip(context, options.clip));
    const Range range = ParseFrameRange(options.range.from, options.range.to, clips[0]);
    for (uint64_t number = range.first; number <= range.last; ++number) {
        CheckOutput(FrameFile(options.folder, number), options.clip);
    }
    MakeFolder(options.folder);
    const uint64_t jobs = std::min<uint64_t>(options.jobs, range.Count());
    while (clips.size() < jobs) clips.push_back(clips[0].Duplicate());

    uint64_t done = 0;
    {
        ExportJob job(options, range);
        job.Run(clips);
        done = job.Done();
    }
    const std::string count =
        std::to_string(done) + " of " + std::to_string(range.Count()) + " frames in " + options.folder;
    if (InterruptScope::Requested()) throw Failure("stopped; " + count);
    Say(count);
    return kExitDone;
}

}  // namespace

void AddExport(CommandLine& line, Context& context) {
    const auto options = std::make_shared<Options>();
    Arguments arguments = line.Add("export", "Writes frames as PNG files into a folder",
                                   [options, &context] { return Run(context, *options); });

    AddClip(arguments, options->clip);
    arguments.Text("folder", options->folder, "The folder, made where it is missing", "DIR", Arguments::kRequired);
    AddFrameRange(arguments, options->range);
    arguments.Number("--jobs", options->jobs, 1, kMostJobs, "Frames that are worked on at a time", "N");
    AddFrameOptions(arguments, options->frame);
}

}  // namespace clipfio::host
