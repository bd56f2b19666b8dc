#include "host/run.h"

#include <cstdio>
#include <exception>
#include <new>
#include <utility>

#include "host/command.h"
#include "host/console.h"
#include "host/failure.h"
#include "platform/program.h"

namespace clipfio::host {
namespace {

int RunCommandLine(std::vector<std::string> args) {
    Context context;
    CommandLine line("clipfio", "Reads camera clips through the clipfio module.", "clipfio " CLIPFIO_VERSION);
    line.Common().Text("--module", context.module_path,
                       "The module to load (else CLIPFIO_MODULE, or where it is installed)", "FILE");
    for (const auto add : {AddInfo, AddFrame, AddExport, AddPipe, AddAudio, AddWaveform, AddSheet, AddSettings,
                           AddMakeSample, AddMakeClip}) {
        add(line, context);
    }
    if (!args.empty()) args.erase(args.begin());
    return line.Run(std::move(args));
}

int Report(const char* message, int status) {
    Say(message);
    return status;
}

}  // namespace

int Main(std::vector<std::string> utf8_args) noexcept {
    platform::PrepareStandardStreams();
    int status = kExitDone;
    try {
        status = RunCommandLine(std::move(utf8_args));
        if (!FlushStandardOutput()) return status;
    } catch (const UsageError& error) {
        status = Report(error.what(), kExitUsage);
        std::fputs("clipfio: see clipfio --help, or clipfio COMMAND --help\n", stderr);
    } catch (const Failure& failure) {
        status = Report(failure.what(), kExitFailed);
    } catch (const std::bad_alloc&) {
        status = Report("out of memory", kExitFailed);
    } catch (const std::exception& error) {
        status = Report(error.what(), kExitFailed);
    }
    return status;
}

}  // namespace clipfio::host
