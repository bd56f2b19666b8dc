#include "host/command.h"

#include <cstdio>
#include <utility>

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

}  // namespace clipfio::host
