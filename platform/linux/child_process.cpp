// Starting, watching and ending other programs, and the pipes to talk to them.
#include <fcntl.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "command_line.h"
#include "errors.h"
#include "handles.h"
#include "mappings.h"
#include "paths.h"
#include "platform/process.h"
#include "platform/text.h"

namespace {

using platform::Fail;
using platform::Guarded;
using platform::HandleType;
using platform::HandleUse;
using platform::Win32FromErrno;

constexpr int kFirstFree = 3;  // behind the three standard descriptors

class Descriptor {
  public:
    explicit Descriptor(int value = -1) noexcept : value_(value) {}
    Descriptor(Descriptor&& other) noexcept : value_(other.Release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    ~Descriptor() {
        if (value_ >= 0) close(value_);
    }
    [[nodiscard]] int Get() const noexcept { return value_; }
    int Release() noexcept { return std::exchange(value_, -1); }

  private:
    int value_;
};

class SpawnActions {
  public:
    SpawnActions() noexcept { posix_spawn_file_actions_init(&actions_); }
    ~SpawnActions() { posix_spawn_file_actions_destroy(&actions_); }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;

    // A handle that is no file gives the child nothing there.
    void SetStandard(int index, HANDLE handle) noexcept {
        const HandleUse use(handle, HandleType::kFile);
        if (use) moved_[index] = Descriptor(fcntl(use->number, F_DUPFD_CLOEXEC, kFirstFree));
        const int from = moved_[index].Get();
        Note(from >= 0 ? posix_spawn_file_actions_adddup2(&actions_, from, index)
                       : posix_spawn_file_actions_addopen(&actions_, index, "/dev/null", O_RDWR, 0));
    }
    void SetFolder(const char* folder) noexcept { Note(posix_spawn_file_actions_addchdir_np(&actions_, folder)); }
    void CloseOthers() noexcept { Note(posix_spawn_file_actions_addclosefrom_np(&actions_, kFirstFree)); }

    // Gives an errno number.
    int Spawn(pid_t& id, const char* program, char* const* arguments) noexcept {
        if (error_ != 0) return error_;
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
        platform::PthreadLock lock(platform::Shared().environment_lock);
        const int error = posix_spawn(&id, program, &actions_, &attributes, arguments, environ);
        posix_spawnattr_destroy(&attributes);
        return error;
    }

  private:
    void Note(int error) noexcept {
        if (error_ == 0) error_ = error;
    }

    posix_spawn_file_actions_t actions_;
    // Away from 0, 1 and 2, so that none is overwritten before it stands in its place.
    Descriptor moved_[3];
    int error_ = 0;
};

std::vector<char*> Pointers(std::vector<std::string>& arguments) {
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    return pointers;
}

BOOL FillInformation(pid_t id, PROCESS_INFORMATION& information) noexcept {
    const int pidfd = static_cast<int>(syscall(SYS_pidfd_open, id, 0));
    if (pidfd < 0) return Fail(Win32FromErrno(errno));
    information.hProcess = platform::NewProcessHandle(pidfd, static_cast<DWORD>(id), platform::kAllProcessAccess, true);
    if (!information.hProcess) return FALSE;
    information.hThread = platform::NewAliasHandle(information.hProcess, platform::kAllProcessAccess);
    if (!information.hThread) {
        CloseHandle(std::exchange(information.hProcess, nullptr));
        return FALSE;
    }
    information.dwProcessId = information.dwThreadId = static_cast<DWORD>(id);
    return TRUE;
}

BOOL CreateProcessChecked(const WCHAR* application, const WCHAR* command_line, bool inherit, const WCHAR* folder,
                          const STARTUPINFOW& startup, PROCESS_INFORMATION& information) {
    std::vector<std::string> arguments = platform::SplitCommandLine(command_line ? command_line : application);
    const WString name = application ? WString(application) : platform::Wide(arguments.front());
    const auto program = platform::PosixPath(name.c_str());
    if (!program) return FALSE;

    SpawnActions actions;
    if (startup.dwFlags & STARTF_USESTDHANDLES) {
        const HANDLE handles[] = {startup.hStdInput, startup.hStdOutput, startup.hStdError};
        for (int i = 0; i < 3; ++i) actions.SetStandard(i, handles[i]);
    }
    if (!inherit) actions.CloseOthers();
    if (folder) {
        const auto posix = platform::PosixPath(folder);
        if (!posix) return FALSE;
        actions.SetFolder(posix->c_str());
    }
    pid_t id = 0;
    const std::vector<char*> pointers = Pointers(arguments);
    const int error = actions.Spawn(id, program->c_str(), pointers.data());
    if (error != 0) return Fail(platform::PathError(error, *program));
    return FillInformation(id, information);
}

// How the end of a process by a signal reads as an exit code.
DWORD CodeOfSignal(int signal) noexcept {
    switch (signal) {
        case SIGSEGV:
        case SIGBUS:
            return 0xC0000005;
        case SIGILL:
            return 0xC000001D;
        case SIGFPE:
            return 0xC0000094;
        case SIGABRT:
            return 3;
        default:
            return 128 + static_cast<DWORD>(signal);
    }
}

}  // namespace

extern "C" BOOL CreateProcessW(const WCHAR* application, WCHAR* command_line, SECURITY_ATTRIBUTES*,
                               SECURITY_ATTRIBUTES*, BOOL inherit, DWORD flags, void* environment, const WCHAR* folder,
                               STARTUPINFOW* startup, PROCESS_INFORMATION* information) noexcept {
    if ((!application && !command_line) || !startup || !information) return Fail(ERROR_INVALID_PARAMETER);
    *information = {};
    if (flags != 0 || environment) return Fail(ERROR_NOT_SUPPORTED);
    return Guarded(FALSE, [=] {
        return CreateProcessChecked(application, command_line, inherit != FALSE, folder, *startup, *information);
    });
}

extern "C" BOOL CreatePipe(HANDLE* read, HANDLE* write, SECURITY_ATTRIBUTES* security, DWORD) noexcept {
    if (!read || !write) return Fail(ERROR_INVALID_PARAMETER);
    *read = *write = nullptr;
    const bool inherit = security && security->bInheritHandle;
    int ends[2];
    if (pipe2(ends, inherit ? 0 : O_CLOEXEC) != 0) return Fail(Win32FromErrno(errno));
    *read = platform::NewFileHandle(ends[0], platform::kFileReadable | platform::kFilePipe);
    *write = platform::NewFileHandle(ends[1], platform::kFileWritable | platform::kFilePipe);
    if (*read && *write) return TRUE;
    if (*read) CloseHandle(std::exchange(*read, nullptr));
    if (*write) CloseHandle(std::exchange(*write, nullptr));
    return FALSE;
}

extern "C" BOOL SetHandleInformation(HANDLE handle, DWORD mask, DWORD flags) noexcept {
    if ((mask & ~HANDLE_FLAG_INHERIT) != 0) return Fail(ERROR_NOT_SUPPORTED);
    int descriptor = -1;
    const HandleUse use(handle, HandleType::kNone);
    if (use) {
        // Only what has a descriptor can be inherited at all.
        if (use->type != HandleType::kFile) return Fail(ERROR_NOT_SUPPORTED);
        descriptor = use->number;
    } else {
        descriptor = platform::LiveMappingDescriptor(handle);
    }
    if (descriptor < 0) return Fail(ERROR_INVALID_HANDLE);
    if ((mask & HANDLE_FLAG_INHERIT) == 0) return TRUE;
    const int close_on_exec = flags & HANDLE_FLAG_INHERIT ? 0 : FD_CLOEXEC;
    return fcntl(descriptor, F_SETFD, close_on_exec) == 0 ? TRUE : Fail(Win32FromErrno(errno));
}

extern "C" BOOL GetExitCodeProcess(HANDLE process, DWORD* code) noexcept {
    if (!code) return Fail(ERROR_INVALID_PARAMETER);
    *code = STILL_ACTIVE;
    if (process == GetCurrentProcess()) return TRUE;
    const HandleUse use(process, HandleType::kProcess);
    if (!use) return Fail(ERROR_INVALID_HANDLE);
    if (WaitForSingleObject(process, 0) == WAIT_TIMEOUT) return TRUE;
    const bool terminated = std::atomic_ref(use->process.terminated).load() != 0;
    // The child is left to be asked again; it is cleared away with its last handle.
    siginfo_t info{};
    const int result = waitid(P_PIDFD, static_cast<id_t>(use->number), &info, WEXITED | WNOHANG | WNOWAIT);
    if (terminated && (result != 0 || (info.si_code == CLD_KILLED && info.si_status == SIGKILL))) {
        *code = use->process.exit_code;
        return TRUE;
    }
    // Only its parent is told how a process ended.
    if (result != 0) return Fail(errno == ECHILD ? ERROR_NOT_SUPPORTED : Win32FromErrno(errno));
    *code = info.si_code == CLD_EXITED ? static_cast<DWORD>(info.si_status) : CodeOfSignal(info.si_status);
    return TRUE;
}

extern "C" BOOL TerminateProcess(HANDLE process, UINT code) noexcept {
    if (process == GetCurrentProcess()) _exit(static_cast<int>(code));
    const HandleUse use(process, HandleType::kProcess);
    if (!use) return Fail(ERROR_INVALID_HANDLE);
    if ((use.Rights() & PROCESS_TERMINATE) == 0) return Fail(ERROR_ACCESS_DENIED);
    // One that has ended already keeps the code it ended with.
    if (WaitForSingleObject(process, 0) == WAIT_OBJECT_0) return Fail(ERROR_ACCESS_DENIED);
    use->process.exit_code = code;
    std::atomic_ref(use->process.terminated).store(1);
    if (syscall(SYS_pidfd_send_signal, use->number, SIGKILL, nullptr, 0) != 0) return Fail(Win32FromErrno(errno));
    return TRUE;
}
