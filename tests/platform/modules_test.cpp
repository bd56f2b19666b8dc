#include "platform/modules.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/files.h"
#include "platform/resources.h"
#include "platform/scoped.h"
#include "platform/text.h"
#include "support/last_error.h"
#include "support/scoped_variable.h"
#include "support/temp_file.h"
#include "support/whole_file.h"

namespace {

using support::ErrorOf;

const WCHAR* const kModule = W("clipfio_test_module.so");

WString ProgramFolder() {
    WCHAR path[1024];
    const WString program(path, GetModuleFileNameW(nullptr, path, 1024));
    return program.substr(0, program.rfind('\\') + 1);
}

// A copy in a file of its own is a module of its own, whatever was loaded before.
class ModuleCopy {
  public:
    ModuleCopy() : file_(" \u00FC.so") {
        support::WriteWhole(file_.Path(), support::ReadWhole((ProgramFolder() + kModule).c_str()));
        module_.Reset(LoadLibraryW(file_.Path()));
    }
    [[nodiscard]] const WCHAR* Path() const { return file_.Path(); }
    [[nodiscard]] HMODULE Get() const { return module_.Get(); }
    void Free() { module_.Reset(); }

    template <class Function>
    Function* Find(const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module_.Get(), name)));
    }

  private:
    support::TempFile file_;
    platform::ScopedLibrary module_;
};

int g_detached = 0;
bool g_part_was_there = false;

TEST(Modules, TheEntryIsCalledInItsPlace) {
    ModuleCopy module;
    ASSERT_NE(module.Get(), nullptr);
    EXPECT_TRUE(module.Find<bool()>("TestModuleAttached")());
    EXPECT_TRUE(module.Find<bool()>("TestModuleEntryCameLast")());
    EXPECT_EQ(module.Find<HINSTANCE()>("TestModuleInstance")(), module.Get());
    WCHAR name[1024];
    EXPECT_NE(GetModuleFileNameW(module.Get(), name, 1024), 0u);
    EXPECT_EQ(lstrcmpW(name, module.Path()), 0);

    const HRSRC resource = FindResourceExW(module.Get(), MAKEINTRESOURCEW(10), MAKEINTRESOURCEW(1), 0);
    EXPECT_EQ(SizeofResource(module.Get(), resource), 2u);
    EXPECT_EQ(std::memcmp(LoadResource(module.Get(), resource), "ok", 2), 0);

    g_detached = 0;
    const auto on_detach = module.Find<void(void (*)(bool))>("TestModuleOnDetach");
    on_detach([](bool part_is_there) {
        ++g_detached;
        g_part_was_there = part_is_there;
    });
#ifdef CLIPFIO_KEEP_MODULES
    on_detach(nullptr);
#else
    const HMODULE freed = module.Get();
    module.Free();
    EXPECT_EQ(g_detached, 1);
    EXPECT_TRUE(g_part_was_there);
    EXPECT_EQ(FindResourceExW(freed, MAKEINTRESOURCEW(10), MAKEINTRESOURCEW(1), 0), nullptr);
#endif
}

TEST(Modules, ARefusedEntryIsRemembered) {
    const support::ScopedVariable refuse(W("CLIPFIO_TEST_REFUSE"), W("1"));
    ModuleCopy module;
    ASSERT_NE(module.Get(), nullptr);
    EXPECT_FALSE(module.Find<bool()>("TestModuleAttached")());
    g_detached = 0;
    module.Find<void(void (*)(bool))>("TestModuleOnDetach")([](bool) { ++g_detached; });
    module.Free();
    EXPECT_EQ(g_detached, 0);
}

TEST(Modules, ShareWhatCrossesTheirBoundary) {
    ModuleCopy module;
    const platform::ScopedHandle mutex(CreateMutexW(nullptr, FALSE, nullptr));
    EXPECT_EQ(module.Find<DWORD(HANDLE)>("TestModuleWait")(mutex.Get()), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(mutex.Get()));
    for (const UINT flags : {GPTR, GHND}) {
        EXPECT_EQ(module.Find<HGLOBAL(HGLOBAL)>("TestModuleFree")(GlobalAlloc(flags, 10)), nullptr);
    }
    module.Find<void(BSTR)>("TestModuleFreeText")(SysAllocString(W("text")));
}

TEST(Modules, NamesAndFunctions) {
    const platform::ScopedLibrary bare(LoadLibraryW(kModule));
    ASSERT_TRUE(bare) << "beside the program";
    WCHAR name[1024];
    const DWORD length = GetModuleFileNameW(bare.Get(), name, 1024);
    EXPECT_EQ(lstrcmpW(name, (ProgramFolder() + kModule).c_str()), 0);
    EXPECT_EQ(GetModuleFileNameW(bare.Get(), name, length), length);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(static_cast<DWORD>(lstrlenW(name)), length - 1);
    EXPECT_EQ(GetModuleFileNameW(bare.Get(), name, 0), 0u);

    // Not there, there only in what the module needs, an ordinal.
    for (const char* const missing : {"NoSuchFunction", "memcpy", "", reinterpret_cast<const char*>(1)}) {
        EXPECT_EQ(ErrorOf(GetProcAddress(bare.Get(), missing)), ERROR_PROC_NOT_FOUND);
    }
    EXPECT_NE(GetProcAddress(bare.Get(), "TestModuleInstance"), nullptr);

    int local = 0;
    for (const HMODULE wild : {HMODULE{}, reinterpret_cast<HMODULE>(&local), reinterpret_cast<HMODULE>(16)}) {
        EXPECT_EQ(GetProcAddress(wild, "TestModuleInstance"), nullptr);
        EXPECT_EQ(ErrorOf(FreeLibrary(wild)), ERROR_MOD_NOT_FOUND);
    }
    EXPECT_EQ(GetModuleFileNameW(reinterpret_cast<HMODULE>(&local), name, 1024), 0u);
}

TEST(Modules, WhatCannotBeLoaded) {
    const std::string good = support::ReadWhole((ProgramFolder() + kModule).c_str());
    std::string other_class = good;
    other_class[4] = 1;
    for (const std::string& content : {std::string(), std::string("none"), other_class, good.substr(0, 40)}) {
        const support::TempFile file(".so");
        support::WriteWhole(file.Path(), content);
        EXPECT_EQ(ErrorOf(LoadLibraryW(file.Path())), ERROR_BAD_EXE_FORMAT) << content.size();
    }
    const support::TempFile missing(".so");
    for (const WCHAR* const path : {missing.Path(), W("no_such_module_anywhere.so"), W(".\\no\\such.so"), W("Q:\\a")}) {
        EXPECT_EQ(ErrorOf(LoadLibraryW(path)), ERROR_MOD_NOT_FOUND);
    }
}

TEST(Modules, SystemMessages) {
    char text[128];
    constexpr DWORD kFlags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    const DWORD length = FormatMessageA(kFlags, nullptr, ERROR_MOD_NOT_FOUND, 0, text, sizeof text, nullptr);
    EXPECT_EQ(std::string(text, length), "The module, or a module that it needs, was not found.\r\n");
    EXPECT_EQ(ErrorOf(FormatMessageA(kFlags, nullptr, ERROR_MOD_NOT_FOUND, 0, text, length, nullptr)),
              ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(ErrorOf(FormatMessageA(kFlags, nullptr, 0xDEADBEEF, 0, text, sizeof text, nullptr)), 317u);
}

}  // namespace
