// A second process for a test: this program again, started in a role instead of running tests.
//
//     CHILD_ROLE(echo) { ... arguments, std::cin, std::cout ...; return exit_code; }
//     ChildProcess child("echo", {"one"});  child.WriteLine(...);  child.ReadLine();  child.Wait();
//
// The two talk in lines through the child's standard input and output, and so need no sleeping.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/scoped.h"

namespace support {

using RoleArguments = std::vector<std::string>;
using RoleFunction = int (*)(const RoleArguments& arguments);

struct RoleRegistration {
    RoleRegistration(const char* name, RoleFunction function);
};

// Runs the role that the command line asks for and gives its exit code; nothing when it asks for none.
std::optional<int> RunChildRole(int argc, char** argv);

class ChildProcess {
  public:
    explicit ChildProcess(const std::string& role, const RoleArguments& arguments = {});

    [[nodiscard]] bool Started() const { return static_cast<bool>(process_); }
    [[nodiscard]] DWORD Id() const { return id_; }
    [[nodiscard]] HANDLE Process() const { return process_.Get(); }
    bool WriteLine(const std::string& line);
    // Without the line's end; empty when the child has closed its output.
    std::string ReadLine();
    // Ends the child's input, waits for its end and gives its exit code.
    DWORD Wait();

  private:
    platform::ScopedHandle process_;
    platform::ScopedHandle to_child_;
    platform::ScopedHandle from_child_;
    DWORD id_ = 0;
};

}  // namespace support

#define CHILD_ROLE(name)                                                                 \
    static int ChildRole_##name(const support::RoleArguments& arguments);                \
    static const support::RoleRegistration g_child_role_##name(#name, ChildRole_##name); \
    static int ChildRole_##name([[maybe_unused]] const support::RoleArguments& arguments)
