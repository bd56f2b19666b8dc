// The libraries that are loaded together, the main one first, and the tables bound to them.
#pragma once

#include <array>
#include <string>

#include "r3dsdk/sdk_library.h"
#include "r3dsdk/sdk_symbol_table.h"

namespace clipfio {

inline constexpr SdkVersion kSdkClientVersion = {7, 0, 3};

// Operations with a status give 0 or an SdkStatus and say in the log why they fail. What was loaded before a failure
// stays until Unload. Those that take a text may throw std::bad_alloc.
class SdkLibrarySet {
  public:
    static constexpr uint32_t kMostLibraries = 20;

    // The table that the libraries get; it must outlive them.
    void ShareValues(SdkKeyValues* values) noexcept { values_ = values; }

    // Opens one file (UTF-8) and runs phase 0 of its initialisation. `flags` select the status of a failure.
    [[nodiscard]] int32_t Load(const char* file, uint32_t expected_id, uint32_t flags) noexcept;
    // Loads all rows of the list and checks their versions, `folder` being put before each file name.
    [[nodiscard]] int32_t LoadImports(const std::string& folder, SdkImportList& list);
    // Takes modules that stay their owner's, without initialising them, in place of what is there.
    [[nodiscard]] int32_t Borrow(const HMODULE* handles, uint32_t count) noexcept;
    // Binds the required tables and those that the options select. Tables are empty from a failing one back.
    [[nodiscard]] int32_t LoadTables() noexcept;
    // Runs phases 1 and 2 of all libraries.
    [[nodiscard]] int32_t Initialize() noexcept;
    // True when library and client accept each other's version.
    [[nodiscard]] bool CheckVersions(uint32_t library) const noexcept;
    // Empties the tables and lets go of all libraries, last first.
    void Unload() noexcept;

    uint32_t Count() const noexcept { return count_; }
    const SdkLibraryEntry& operator[](uint32_t library) const noexcept { return libraries_[library]; }
    SdkTableSet& Tables() noexcept { return tables_; }

  private:
    void Keep() noexcept;
    const SdkLibraryEntry* Fill(SdkNamedSymbols& table) noexcept;
    int32_t FailTable(size_t table) noexcept;

    SdkKeyValues* values_ = nullptr;
    std::array<SdkLibraryEntry, kMostLibraries> libraries_;
    std::array<HMODULE, kMostLibraries> handles_{};
    uint32_t count_ = 0;
    SdkTableSet tables_;
};

}  // namespace clipfio
