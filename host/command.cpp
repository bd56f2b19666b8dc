#include "host/command.h"

#include <cstdio>
#include <exception>
#include <utility>

#include "host/console.h"
#include "host/failure.h"

namespace clipfio::host {

Module& Context::GetModule() {
    if (!module_) {
        OfferDecoderBesideProgram();
        module_ = std::make_unique<Module>(module_path);
    }
    return *module_;
}

Clip OpenClip(Context& context, const std::string& path) {
    const Module& module = context.GetModule();
    try {
        return Clip(module, path);
    } catch (const Failure& failure) {
        throw Failure(path + ": " + failure.what());
    }
}

void Say(const std::string& line) { std::fprintf(stderr, "clipfio: %s\n", line.c_str()); }

void FileResults::Add(const std::string& path, const std::function<std::string(nlohmann::ordered_json& entry)>& work) {
    nlohmann::ordered_json entry = {{"path", path}, {"error", nullptr}};
    try {
        const std::string text = work(entry);
        if (!json_ && !WriteStandardOutput(text.data(), text.size())) return;
    } catch (const UsageError&) {
        throw;
    } catch (const std::exception& failure) {
        failed_ = true;
        Say(path + ": " + failure.what());
        entry = {{"path", path}, {"error", failure.what()}};
    }
    files_.push_back(std::move(entry));
}

int FileResults::Finish() {
    if (json_) {
        const nlohmann::ordered_json all = {{"schema", 1}, {"files", std::move(files_)}};
        const std::string text = all.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
        if (!WriteStandardOutput(text.data(), text.size())) return kExitDone;
    }
    return failed_ ? kExitFailed : kExitDone;
}

}  // namespace clipfio::host
