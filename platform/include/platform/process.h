// Processes, shared mappings and the memory of other processes.
#pragma once

#include "platform/base.h"
#include "platform/files.h"
#include "platform/sync.h"

#ifndef _WIN32

inline constexpr DWORD PROCESS_TERMINATE = 0x0001;
inline constexpr DWORD PROCESS_VM_OPERATION = 0x0008;
inline constexpr DWORD PROCESS_VM_READ = 0x0010;
inline constexpr DWORD PROCESS_VM_WRITE = 0x0020;
inline constexpr DWORD PROCESS_DUP_HANDLE = 0x0040;
inline constexpr DWORD DUPLICATE_SAME_ACCESS = 2;
inline constexpr DWORD PAGE_READWRITE = 4;
inline constexpr DWORD FILE_MAP_WRITE = 2;
inline constexpr DWORD FILE_MAP_READ = 4;
inline constexpr DWORD STARTF_USESTDHANDLES = 0x100;
inline constexpr DWORD HANDLE_FLAG_INHERIT = 1;
inline constexpr DWORD STILL_ACTIVE = 259;

// Only dwFlags and the three handles are looked at.
struct STARTUPINFOW {
    DWORD cb;
    WCHAR* lpReserved;
    WCHAR* lpDesktop;
    WCHAR* lpTitle;
    DWORD dwX;
    DWORD dwY;
    DWORD dwXSize;
    DWORD dwYSize;
    DWORD dwXCountChars;
    DWORD dwYCountChars;
    DWORD dwFillAttribute;
    DWORD dwFlags;
    WORD wShowWindow;
    WORD cbReserved2;
    BYTE* lpReserved2;
    HANDLE hStdInput;
    HANDLE hStdOutput;
    HANDLE hStdError;
};

struct PROCESS_INFORMATION {
    HANDLE hProcess;
    HANDLE hThread;
    DWORD dwProcessId;
    DWORD dwThreadId;
};

// The id of this process, and a handle that stands for it and need not be closed.
extern "C" DWORD GetCurrentProcessId() noexcept;
extern "C" HANDLE GetCurrentProcess() noexcept;

// Fails with ERROR_INVALID_PARAMETER when there is no such process and ERROR_ACCESS_DENIED when it may not be opened.
extern "C" HANDLE OpenProcess(DWORD access, BOOL inherit, DWORD id) noexcept;

// Duplicates a mapping of another process, whose handle value names it there, or any handle of this one.
extern "C" BOOL DuplicateHandle(HANDLE source_process, HANDLE source, HANDLE target_process, HANDLE* target,
                                DWORD access, BOOL inherit, DWORD options) noexcept;

// Only mappings without a file and without a name are made here. Making one opens this process's memory to the other
// processes of the user, where the kernel would keep it from them (see mappings.cpp).
extern "C" HANDLE CreateFileMappingW(HANDLE file, SECURITY_ATTRIBUTES* security, DWORD protect, DWORD size_high,
                                     DWORD size_low, const WCHAR* name) noexcept;
extern "C" void* MapViewOfFile(HANDLE mapping, DWORD access, DWORD offset_high, DWORD offset_low,
                               SIZE_T bytes) noexcept;
extern "C" BOOL UnmapViewOfFile(const void* view) noexcept;

// A transfer that cannot be made whole fails, with the bytes that were moved in the last argument.
extern "C" BOOL ReadProcessMemory(HANDLE process, const void* address, void* data, SIZE_T bytes, SIZE_T* read) noexcept;
extern "C" BOOL WriteProcessMemory(HANDLE process, void* address, const void* data, SIZE_T bytes,
                                   SIZE_T* written) noexcept;

// Starts a program without searching for it. The child's standard handles become its descriptors 0 to 2; of the handles
// that it may inherit, only mappings keep their value. Flags, an environment and thread rights are not served, and the
// thread handle stands for the process. The exit code has 8 bits. A child whose last handle is closed before it ends
// is not cleared away until this process ends.
extern "C" BOOL CreateProcessW(const WCHAR* application, WCHAR* command_line, SECURITY_ATTRIBUTES* process_security,
                               SECURITY_ATTRIBUTES* thread_security, BOOL inherit, DWORD flags, void* environment,
                               const WCHAR* folder, STARTUPINFOW* startup, PROCESS_INFORMATION* information) noexcept;
extern "C" BOOL CreatePipe(HANDLE* read, HANDLE* write, SECURITY_ATTRIBUTES* security, DWORD size) noexcept;
extern "C" BOOL SetHandleInformation(HANDLE handle, DWORD mask, DWORD flags) noexcept;
// STILL_ACTIVE while it runs. Of a process that is no child of this one the code cannot be had: ERROR_NOT_SUPPORTED.
extern "C" BOOL GetExitCodeProcess(HANDLE process, DWORD* code) noexcept;
extern "C" BOOL TerminateProcess(HANDLE process, UINT code) noexcept;

#endif
