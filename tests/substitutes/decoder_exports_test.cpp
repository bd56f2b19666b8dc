// What a client's loader demands of the library.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/modules.h"
#include "r3dsdk/sdk_interfaces.h"
#include "r3dsdk/sdk_symbols.h"
#include "substitutes/decoder_library.h"

namespace clipfio::decoder::test {
namespace {

#define NAME(symbol) #symbol,
#define CALLED_NAME(symbol, operation) #symbol,

constexpr const char* kLibrarySymbols[] = {SDK_LIBRARY_SYMBOLS(NAME)};
constexpr const char* kClipSymbols[] = {SDK_CLIP_API_SYMBOLS(CALLED_NAME, NAME)};
constexpr const char* kOtherSymbols[] = {SDK_METADATA_API_SYMBOLS(NAME) SDK_ASYNC_DECODER_API_SYMBOLS(NAME)
                                             SDK_RED_ROCKET_API_SYMBOLS(NAME) SDK_STREAM_API_SYMBOLS(NAME)};
static_assert(std::size(kLibrarySymbols) == 14 && std::size(kClipSymbols) == 62 && std::size(kOtherSymbols) == 48);

template <class Function>
Function Find(const char* symbol) {
    const FARPROC address = GetProcAddress(DecoderLibrary::Get().module, symbol);
    EXPECT_NE(address, nullptr) << symbol;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(address));
}

uint32_t Ask(const char* symbol) { return Find<SdkNumberFunction>(symbol)(); }

TEST(DecoderExports, EverySymbolOfTheRequiredTablesIsThere) {
    for (const char* symbol : kLibrarySymbols) Find<void*>(symbol);
    for (const char* symbol : kClipSymbols) Find<void*>(symbol);
    for (const char* symbol : kOtherSymbols) Find<void*>(symbol);
    EXPECT_EQ(GetProcAddress(DecoderLibrary::Get().module, "CreateFileW"), nullptr);
}

TEST(DecoderExports, SymbolsThatNobodyCallsGiveNothing) {
    for (const char* symbol : kOtherSymbols) EXPECT_EQ(Find<uintptr_t (*)()>(symbol)(), 0u) << symbol;
}

TEST(DecoderExports, VersionFitsTheClient) {
    EXPECT_EQ(Ask("RED_LIB_ID"), kMainLibraryId);
    EXPECT_EQ(Ask("RED_LIB_MAJOR_VERSION"), 7u);
    EXPECT_EQ(Ask("RED_LIB_MINOR_VERSION"), 0u);
    EXPECT_GE(Ask("RED_LIB_PATCH_VERSION"), 3u);
    EXPECT_EQ(Ask("RED_MINIMUM_MAJOR_VERSION"), 7u);
    EXPECT_EQ(Ask("RED_MINIMUM_MINOR_VERSION"), 0u);
    EXPECT_LE(Ask("RED_MINIMUM_PATCH_VERSION"), 3u);
    for (const char* symbol : {"RED_LIB_BUILD_NAME", "RED_STATICLIB_BUILD_NAME"}) {
        EXPECT_GT(std::strlen(Find<SdkTextFunction>(symbol)()), 0u) << symbol;
    }
}

TEST(DecoderExports, StartsInThreePhasesAndEndsClipsThatWereLeft) {
    const auto initialize = Find<SdkInitializeFunction>("RED_LIB_INITIALIZE");
    for (uint32_t phase = 0; phase < 3; ++phase) EXPECT_EQ(initialize(phase, nullptr, nullptr, 0), 0) << phase;
    EXPECT_NE(initialize(3, nullptr, nullptr, 0), 0);

    const DecoderLibrary& library = DecoderLibrary::Get();
    const TestFile file;
    WriteClip(file, {.width = 2, .height = 2}, {NoisePicture(2, 2, 1)});
    const TestClip left(file);
    ASSERT_EQ(library.clip_status(left.Handle()), 0u);
    Find<SdkFinalizeFunction>("RED_LIB_FINALIZE")();
    EXPECT_EQ(library.clip_status(left.Handle()), Number(Status::NoClip));
}

}  // namespace
}  // namespace clipfio::decoder::test
