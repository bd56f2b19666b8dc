#include "r3dsdk/sdk_symbol_table.h"

#include <utility>

#include "r3dsdk/sdk_log.h"

namespace clipfio {
namespace {

#define SDK_NAME(symbol) #symbol,
#define SDK_CALLED_NAME(symbol, operation) #symbol,
constexpr const char* kClipApi[] = {SDK_CLIP_API_SYMBOLS(SDK_CALLED_NAME, SDK_NAME)};
constexpr const char* kMetadataApi[] = {SDK_METADATA_API_SYMBOLS(SDK_NAME)};
constexpr const char* kAsyncDecoderApi[] = {SDK_ASYNC_DECODER_API_SYMBOLS(SDK_NAME)};
constexpr const char* kRedRocketApi[] = {SDK_RED_ROCKET_API_SYMBOLS(SDK_NAME)};
constexpr const char* kStreamApi[] = {SDK_STREAM_API_SYMBOLS(SDK_NAME)};
#undef SDK_NAME
#undef SDK_CALLED_NAME
constexpr const char* kUnknownNames[18] = {};

constexpr SdkTableFacts kTables[kSdkTableCount] = {
    {"ClipApi", 0, kClipApi},
    {"MetadataApi", 0, kMetadataApi},
    {"AsyncDecoderApi", 0, kAsyncDecoderApi},
    {"RedRocketApi", 0, kRedRocketApi},
    {"StreamApi", 0, kStreamApi},
    {"REDCLAPI", kSdkOptionOpenCl, {kUnknownNames, 9}},
    {"REDCUDAAPI", kSdkOptionCuda, {kUnknownNames, 9}},
    {"R3DDECODERAPI", kSdkOptionDecoder, {kUnknownNames, 18}},
};
static_assert(std::size(kClipApi) == 62 && std::size(kMetadataApi) == 13 && std::size(kAsyncDecoderApi) == 8 &&
              std::size(kRedRocketApi) == 13 && std::size(kStreamApi) == 14);

template <size_t... table>
std::array<SdkNamedSymbols, kSdkTableCount> MakeTables(std::index_sequence<table...>) noexcept {
    return {SdkNamedSymbols(kTables[table])...};
}

SdkTableSet* active_tables;

}  // namespace

void* SdkNamedSymbols::Destroy(uint32_t flags) noexcept {
    Clear();
    if (!(flags & 1)) return this;
    delete this;
    return nullptr;
}

bool SdkNamedSymbols::Load(const SdkDynamicLibrary& library) noexcept {
    loaded_ = true;
    for (size_t place = 0; place < facts_->symbols.size(); ++place) {
        const char* const symbol = facts_->symbols[place];
        functions_[place] = library.Find(symbol);
        if (functions_[place]) continue;
        SdkLog("[NOT FOUND ] %s\n", symbol ? symbol : "(name not known)");
        loaded_ = false;
    }
    return loaded_;
}

void SdkNamedSymbols::Clear() noexcept {
    loaded_ = false;
    functions_.fill(nullptr);
}

std::span<const SdkTableFacts, kSdkTableCount> SdkTables() noexcept { return kTables; }

SdkTableSet::SdkTableSet() noexcept : tables_(MakeTables(std::make_index_sequence<kSdkTableCount>())) {}

void SdkTableSet::Clear() noexcept {
    for (SdkNamedSymbols& table : tables_) table.Clear();
}

SdkTableSet* ActiveSdkTables() noexcept { return active_tables; }

void SetActiveSdkTables(SdkTableSet* tables) noexcept { active_tables = tables; }

}  // namespace clipfio
