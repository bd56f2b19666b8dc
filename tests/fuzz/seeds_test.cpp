// The fuzzers' seeds and finds, as ordinary cases.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include "fuzz/fuzzers.h"

// How a failure names its row.
void PrintTo(const Fuzzer& fuzzer, std::ostream* out) { *out << fuzzer.name; }

namespace {

const std::filesystem::path kSeeds = CLIPFIO_FUZZ_SEEDS;

std::vector<char> Bytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

class FuzzSeeds : public testing::TestWithParam<Fuzzer> {};

TEST_P(FuzzSeeds, AreTakenWithoutHarm) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(kSeeds / GetParam().name)) {
        SCOPED_TRACE(entry.path().filename().string());
        const std::vector<char> bytes = Bytes(entry.path());
        EXPECT_EQ(GetParam().run(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()), 0);
        ++count;
    }
    EXPECT_GT(count, 0);
}

INSTANTIATE_TEST_SUITE_P(All, FuzzSeeds, testing::ValuesIn(kFuzzers),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FuzzSeedFolders, BelongToAFuzzerEach) {
    std::set<std::string> names, folders;
    for (const Fuzzer& fuzzer : kFuzzers) names.insert(fuzzer.name);
    for (const auto& entry : std::filesystem::directory_iterator(kSeeds))
        folders.insert(entry.path().filename().string());
    EXPECT_EQ(folders, names);
}

}  // namespace
