// The operations of the decoder library, as tables of functions that are filled by name.
#pragma once

#include <array>
#include <span>

#include "r3dsdk/sdk_library.h"
#include "r3dsdk/sdk_symbols.h"

namespace clipfio {

// What makes one table.
struct SdkTableFacts {
    const char* name;
    uint32_t flags;                        // 0 for a required table, else its bit of the options
    std::span<const char* const> symbols;  // null for a name that is not known
};

#define SDK_CALLED(symbol, operation) operation,
#define SDK_OTHER(symbol) symbol,
// Places in the ClipApi table.
enum class SdkClipPlace : size_t { SDK_CLIP_API_SYMBOLS(SDK_CALLED, SDK_OTHER) Count };
#undef SDK_CALLED
#undef SDK_OTHER

// The slots of a symbol table, in order.
struct SdkSymbolTable {
    virtual void* Destroy(uint32_t flags) = 0;  // bit 0: frees the object as well
    virtual const char* Name() = 0;
    virtual uint32_t Flags() = 0;
    virtual bool IsLoaded() = 0;
    // Looks every symbol up and tells whether none was missing; only then the table counts as loaded.
    virtual bool Load(const SdkDynamicLibrary& library) = 0;
    virtual void Clear() = 0;
};

// The one implementation; its facts tell the tables apart. The function names of the three optional tables are nobody's
// knowledge but their maker's: those tables report each name as missing and never load.
class SdkNamedSymbols final : public SdkSymbolTable {
  public:
    static constexpr size_t kMostSymbols = static_cast<size_t>(SdkClipPlace::Count);

    explicit SdkNamedSymbols(const SdkTableFacts& facts) noexcept : facts_(&facts) {}

    void* Destroy(uint32_t flags) noexcept override;
    const char* Name() noexcept override { return facts_->name; }
    uint32_t Flags() noexcept override { return facts_->flags; }
    bool IsLoaded() noexcept override { return loaded_; }
    bool Load(const SdkDynamicLibrary& library) noexcept override;
    void Clear() noexcept override;

    // In the order of the names; null while the symbol is not resolved.
    void* Function(size_t place) const noexcept { return functions_[place]; }

  private:
    const SdkTableFacts* facts_;
    bool loaded_ = false;
    std::array<void*, kMostSymbols> functions_{};
};

inline constexpr size_t kSdkTableCount = 8;
// The facts of all tables, in the order in which the loader fills them.
std::span<const SdkTableFacts, kSdkTableCount> SdkTables() noexcept;

// One table of each kind.
class SdkTableSet {
  public:
    SdkTableSet() noexcept;

    SdkNamedSymbols& operator[](size_t table) noexcept { return tables_[table]; }
    const SdkNamedSymbols& ClipApi() const noexcept { return tables_[0]; }
    void Clear() noexcept;

  private:
    std::array<SdkNamedSymbols, kSdkTableCount> tables_;
};

// The tables of the loader in place; null while there is none.
SdkTableSet* ActiveSdkTables() noexcept;
void SetActiveSdkTables(SdkTableSet* tables) noexcept;

}  // namespace clipfio
