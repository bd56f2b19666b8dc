#include "host/run.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <new>

#include "host/command.h"
#include "host/console.h"
#include "host/failure.h"

namespace clipfio::host {
namespace {

int RunCommandLine(std::vector<std::string> args) {
    CLI::App app("Reads camera clips through the clipfio module.", "clipfio");
    Context context;
    app.set_version_flag("--version", "clipfio " CLIPFIO_VERSION);
    app.add_option("--module", context.module_path,
                   "The module to load (else CLIPFIO_MODULE, or where it is installed)")
        ->type_name("FILE");
    app.require_subcommand(1);
    app.fallthrough();
    app.footer("Exit status: 0 done, 1 something failed, 2 the command line makes no sense.");
    for (const auto add : {AddInfo, AddFrame, AddExport, AddPipe, AddAudio, AddWaveform, AddSheet, AddSettings,
                           AddMakeSample, AddMakeClip}) {
        add(app, context);
    }

    args.erase(args.begin(), args.begin() + std::min<std::ptrdiff_t>(1, std::ssize(args)));
    std::reverse(args.begin(), args.end());
    try {
        app.parse(std::move(args));
    } catch (const CLI::Success& wanted) {
        app.exit(wanted, std::cout, std::cerr);
        std::cout.flush();
        return kExitDone;
    } catch (const CLI::ParseError& error) {
        throw UsageError(error.what());
    }
    return context.run();
}

int Report(const char* message, int status) {
    Say(message);
    return status;
}

}  // namespace

int Main(std::vector<std::string> utf8_args) noexcept {
    PrepareConsole();
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
