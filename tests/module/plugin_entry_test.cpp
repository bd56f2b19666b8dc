// The start and the end of the module in a process, seen by the decoder library.
#include <cstdio>
#include <iostream>

#include "kernel/runtime/lifecycle.h"
#include "platform/text.h"
#include "reader/plugin_exports.h"
#include "support/child_roles.h"
#include "tests/reader/reader_scene.h"

namespace {

using namespace reader_tests;

std::vector<std::string> LinesUntilTheEnd(support::ChildProcess& child) {
    std::vector<std::string> lines;
    for (std::string line = child.ReadLine(); !line.empty(); line = child.ReadLine()) lines.push_back(line);
    return lines;
}

TEST(PluginEntry, StartsTheDecoderWithTheModuleAndEndsItBeforeTheKernel) {
    support::ChildProcess child("events_of_the_decoder");
    const std::vector<std::string> lines = LinesUntilTheEnd(child);
    ASSERT_GE(lines.size(), 5u);
    const std::vector<std::string> last(lines.end() - 5, lines.end());
    EXPECT_EQ(last, (std::vector<std::string>{"initialize 0", "initialize 1", "initialize 2", "main",
                                              "finalize, with the kernel"}));
    EXPECT_EQ(child.Wait(), 0u);
}

}  // namespace

CHILD_ROLE(events_of_the_decoder) {
    for (const std::string& event : Decoder().script.events) std::puts(event.c_str());
    std::puts("main");
    Decoder().script.on_event = [](const char* event) {
        std::printf("%s%s\n", event, KtKernel_GetAppKernel() ? ", with the kernel" : "");
    };
    return 0;
}
