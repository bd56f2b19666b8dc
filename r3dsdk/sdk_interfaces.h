// The two tables that the loader hands into a decoder library, and the forms of what a library exports.
#pragma once

#include <cstdint>

#include "platform/base.h"

namespace clipfio {

// Settings shared between the client and its libraries: 64-bit keys to 64-bit values. Valid for as long as the client
// is initialised; either side may write.
struct SdkKeyValues {
    virtual void SetPointer(uint64_t key, const void* value) = 0;
    virtual void SetValue(uint64_t key, uint64_t value) = 0;
    virtual bool Has(uint64_t key) = 0;
    virtual uint64_t GetValue(uint64_t key) = 0;  // 0 when absent
    virtual void* GetPointer(uint64_t key) = 0;   // null when absent
    virtual void Dump() = 0;                      // one status line an entry
    virtual void* Destroy(uint32_t flags) = 0;    // bit 0: frees the object as well
};

// Further library files that a main library asks for. A flag of 1, 2 or 4 tells by which status a file that cannot be
// taken is reported.
struct SdkImportList {
    virtual void* Destroy(uint32_t flags) = 0;  // bit 0: frees the object as well
    // The file name is relative to the main library's folder; the text is copied.
    virtual void Add(const char* file_name, uint32_t id, uint32_t flags) = 0;
    virtual void Clear() = 0;
    virtual uint32_t Count() = 0;
    virtual const char* FileName(uint32_t row) = 0;  // null for a row that is not there
    virtual uint32_t Id(uint32_t row) = 0;
    virtual uint32_t Flags(uint32_t row) = 0;
};

using SdkNumberFunction = uint32_t (*)();
using SdkTextFunction = const char* (*)();
// `handles` and `count` name the libraries loaded so far; null and 0 in phase 0. 0 is good.
using SdkInitializeFunction = int32_t (*)(uint32_t phase, SdkKeyValues* values, const HMODULE* handles, uint32_t count);
using SdkFinalizeFunction = void (*)();
// Returns the option bits that the library did not understand.
using SdkImportsFunction = uint32_t (*)(SdkImportList* list);

// Keys that the client sets before it looks at a library. The texts live as long as the client's module.
enum SdkKey : uint64_t {
    kSdkKeyLogLevel = 0,
    kSdkKeyMajor = 10,
    kSdkKeyMinor = 11,
    kSdkKeyPatch = 12,
    kSdkKeyBuild = 13,      // text
    kSdkKeyDate = 14,       // text
    kSdkKeyVersion = 15,    // text
    kSdkKeyKind = 20,       // text
    kSdkKeyOptions = 30,    // the optional tables that are wanted
    kSdkKeyFirstPath = 31,  // text: the folder of the process's first initialisation
    kSdkKeySkipMatch = 1000,
    kSdkKeyRedirectMode = 1001,
};

// Bits of the options: tables that have to be bound beside the five required ones.
inline constexpr uint32_t kSdkOptionCuda = 1;
inline constexpr uint32_t kSdkOptionOpenCl = 2;
inline constexpr uint32_t kSdkOptionDecoder = 4;

inline constexpr uint32_t kMainLibraryId = 0x52334410;
inline constexpr char kMainLibraryFileName[] = "REDR3D-x64.dll";

}  // namespace clipfio
