#include "support/child_roles.h"

#include <map>
#include <string_view>

#include "platform/text.h"

namespace support {
namespace {

constexpr std::string_view kFlag = "--child-role=";

std::map<std::string, RoleFunction, std::less<>>& Roles() {
    static std::map<std::string, RoleFunction, std::less<>> roles;
    return roles;
}

std::string Quoted(const std::string& argument) {
    std::string quoted = "\"";
    std::size_t slashes = 0;
    for (const char c : argument) {
        if (c == '"') quoted.append(slashes + 1, '\\');
        slashes = c == '\\' ? slashes + 1 : 0;
        quoted.push_back(c);
    }
    return quoted.append(slashes, '\\') + '"';
}

// The end that stays here must not be inherited: the child would keep its own input open.
bool MakePipe(platform::ScopedHandle& ours, platform::ScopedHandle& theirs, bool they_read) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE read = nullptr;
    HANDLE write = nullptr;
    if (!CreatePipe(&read, &write, &inherited, 0)) return false;
    ours.Reset(they_read ? write : read);
    theirs.Reset(they_read ? read : write);
    return SetHandleInformation(ours.Get(), HANDLE_FLAG_INHERIT, 0) != FALSE;
}

}  // namespace

RoleRegistration::RoleRegistration(const char* name, RoleFunction function) { Roles()[name] = function; }

std::optional<int> RunChildRole(int argc, char** argv) {
    if (argc < 2 || !std::string_view(argv[1]).starts_with(kFlag)) return std::nullopt;
    constexpr int kNoSuchRole = 99;
    const auto role = Roles().find(std::string_view(argv[1]).substr(kFlag.size()));
    return role == Roles().end() ? kNoSuchRole : role->second(RoleArguments(argv + 2, argv + argc));
}

ChildProcess::ChildProcess(const std::string& role, const RoleArguments& arguments) {
    WCHAR program[1024];
    if (GetModuleFileNameW(nullptr, program, 1024) == 0) return;
    std::string line = Quoted(platform::Utf8(program)) + " " + Quoted(std::string(kFlag) + role);
    for (const std::string& argument : arguments) line += " " + Quoted(argument);
    WString wide_line = platform::Wide(line);

    platform::ScopedHandle input;
    platform::ScopedHandle output;
    if (!MakePipe(to_child_, input, true) || !MakePipe(from_child_, output, false)) return;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input.Get();
    startup.hStdOutput = output.Get();
    PROCESS_INFORMATION information{};
    if (!CreateProcessW(program, wide_line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                        &information)) {
        return;
    }
    CloseHandle(information.hThread);
    process_.Reset(information.hProcess);
    id_ = information.dwProcessId;
}

bool ChildProcess::WriteLine(const std::string& line) {
    const std::string text = line + "\n";
    DWORD written = 0;
    return WriteFile(to_child_.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != FALSE;
}

std::string ChildProcess::ReadLine() {
    std::string line;
    char c = 0;
    DWORD read = 0;
    while (ReadFile(from_child_.Get(), &c, 1, &read, nullptr) && read == 1 && c != '\n') line.push_back(c);
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

DWORD ChildProcess::Wait() {
    to_child_.Reset();
    WaitForSingleObject(process_.Get(), INFINITE);
    DWORD code = STILL_ACTIVE;
    GetExitCodeProcess(process_.Get(), &code);
    return code;
}

}  // namespace support
