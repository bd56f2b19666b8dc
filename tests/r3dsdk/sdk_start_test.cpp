// What happens to the library that was chosen: its imports, the tables, and the phases of its initialisation.
#include "r3dsdk/clip_operations.h"
#include "r3dsdk/sdk_loader.h"
#include "r3dsdk/sdk_test_values.h"
#include "tests/r3dsdk/candidate_scene.h"

namespace clipfio {
namespace {

constexpr char kTwinFile[] = "../twin/REDR3D-x64.dll";

class SdkStart : public CandidateScene {};

TEST_F(SdkStart, WhatALibraryIsTold) {
    SdkSetTestValue(kSdkTestSkipMatch, 5);
    SdkSetTestValue(kSdkTestRedirectMode, 2);
    candidates["good"].imports = {{kTwinFile, kMainLibraryId, 0}};
    std::string counts;
    std::string first_path;
    on_initialize = [&](uint32_t phase, SdkKeyValues* values, const HMODULE* handles, uint32_t count) {
        counts += std::to_string(count);
        EXPECT_EQ(handles == nullptr, phase == 0);
        if (phase == 1) {
            for (uint32_t i = 0; i < 20; ++i) EXPECT_EQ(handles[i] != nullptr, i < count) << i;
            EXPECT_NE(handles[0], handles[1]);
        }
        const std::pair<uint64_t, uint64_t> numbers[] = {{0, 255},    {10, 7},   {11, 0},  {12, 3},
                                                         {30, 0x100}, {1000, 1}, {1001, 2}};
        for (const auto& [key, value] : numbers) {
            EXPECT_TRUE(values->Has(key)) << key;
            EXPECT_EQ(values->GetValue(key), value) << key;
        }
        const std::pair<uint64_t, const char*> texts[] = {
            {13, "35I46"}, {14, "20171005"}, {15, kClientText}, {20, "S"}};
        for (const auto& [key, text] : texts) EXPECT_STREQ(static_cast<const char*>(values->GetPointer(key)), text);
        const char* const path = static_cast<const char*>(values->GetPointer(31));
        ASSERT_NE(path, nullptr);
        EXPECT_STRNE(path, "");
        if (first_path.empty()) first_path = path;
        EXPECT_EQ(first_path, path);
    };
    ASSERT_EQ(Initialize("@good", "", 0x100), 0) << log;
    EXPECT_EQ(counts, "0002222");
    EXPECT_EQ(Loaded(), InFolders(" good twin [@good\\]"));
    ASSERT_EQ(Initialize("@twin", "", 0x100), 0) << "with the path of the first time";
}

TEST_F(SdkStart, ImportsThatFail) {
    const struct {
        const char *file, *says;
        int32_t by_flags[4];  // flags 0, 1, 2, 4
        const char* line;
    } rows[] = {
        {"nothing.dll", "", {2, 3, 4, 5}, "[FAIL LOAD ] 1 -> "},
        {"", "", {2, 3, 4, 5}, "[FAIL LOAD ] 1 -> "},
        {"../coreless/REDR3D-x64.dll", "", {7, 8, 9, 10}, "[FAIL SYM  ] API\n[FAIL LOAD ] 7 -> "},
        {kTwinFile, "twin.id=1", {7, 8, 9, 10}, "[FAIL ID   ] 00000001\n[FINALIZE  ] 00000001 twin\n"},
        {kTwinFile, "twin!0=14", {14, 11, 12, 13}, "[UNLOAD LIB]\n[FAIL INIT0] 14\n[FAIL LOAD ] 14 -> "},
        {kTwinFile, "twin!0=-9", {-9, -9, -9, -9}, "[FAIL INIT0] -9\n[FAIL LOAD ] -9 -> -9 - "},
        {kTwinFile, "twin.patch=2", {6, 6, 6, 6}, "[FAIL VER  ] (1) dynamic version below 7.0.3\n[FAIL LOAD ]\n"},
        {kTwinFile, "twin.minimum-minor=2", {6, 6, 6, 6}, "(1) static version too old: 7.0.3\n[FAIL LOAD ]\n"},
    };
    for (const auto& row : rows) {
        for (size_t i = 0; i < 4; ++i) {
            const uint32_t flags = i ? 1u << (i - 1) : 0;
            SCOPED_TRACE(std::string(row.file) + " " + row.says + ", flags " + std::to_string(flags));
            Say(row.says);
            candidates["good"].imports = {{row.file, kMainLibraryId, flags}};
            EXPECT_EQ(Initialize("@good"), row.by_flags[i]) << log;
            EXPECT_NE(log.find(row.line), std::string::npos) << log;
            EXPECT_NE(log.find("[FAIL LOAD ]\n---"), std::string::npos) << log;
        }
    }
}

TEST_F(SdkStart, OptionsThatALibraryDoesNotKnow) {
    candidates["good"].unknown_options = 0xAB;
    EXPECT_EQ(Initialize("@good"), 0);
    EXPECT_NE(log.find("[WARN INT. ] unknown options: AB\n"), std::string::npos) << log;
}

TEST_F(SdkStart, TwentyPlacesForLibraries) {
    candidates["good"].imports.assign(19, {kTwinFile});
    EXPECT_EQ(Initialize("@good"), 0);
    candidates["good"].imports.push_back({kTwinFile});
    EXPECT_EQ(Initialize("@good"), 16);
    EXPECT_NE(log.find("[FAIL INT. ] loading too many libraries[FAIL LOAD ]\n"), std::string::npos) << log;
}

TEST_F(SdkStart, WhereATableComesFrom) {
    const struct {
        const char *folder, *says;
        uint32_t options, skip_match;
        int32_t status;
        const char* lines;
    } rows[] = {
        {"@streamless", "", 0, 0, 7, "[LOAD SYM  ] StreamApi\n[NOT FOUND ] R3D_FAC\n[FAIL SYM  ] StreamApi\n"},
        {"@streamless", "streamless+../twin/REDR3D-x64.dll", 0, 0, 0,
         "[LOAD SYM  ] StreamApi\n[NOT FOUND ] R3D_FAC\n[OK SYM    ] StreamApi\n"},
        {"@streamless", "streamless+../twin/REDR3D-x64.dll twin.patch=9", 0, 0, 0, "[OK SYM    ] StreamApi\n"},
        {"@streamless", "streamless+../twin/REDR3D-x64.dll twin.minor=1", 0, 0, 7,
         "[OK SYM    ] RedRocketApi\n[LOAD SYM  ] StreamApi\n[NOT FOUND ] R3D_FAC\n[FAIL MATCH] version 7.1.3\n---"},
        {"@streamless", "streamless+../twin/REDR3D-x64.dll twin.major=8", 0, 0, 7, "[FAIL MATCH] version 8.0.3\n"},
        {"@streamless", "streamless+../twin/REDR3D-x64.dll twin.major=8", 0, 1, 0,
         "[NOT FOUND ] R3D_FAC\n[TEST  TEST] SKIPPING MATCH\n[OK SYM    ] StreamApi\n"},
        {"@good", "", 0xFFFFFFF8, 0, 0, "[SKIP SYM  ] REDCLAPI\n[SKIP SYM  ] REDCUDAAPI\n[SKIP SYM  ] R3DDECODERAPI\n"},
        {"@good", "", 1, 0, 8, "[SKIP SYM  ] REDCLAPI\n[LOAD SYM  ] REDCUDAAPI\n[NOT FOUND ] (name not known)\n"},
        {"@good", "", 2, 0, 9, "[NOT FOUND ] (name not known)\n[FAIL SYM  ] REDCLAPI\n---"},
        {"@good", "", 4, 0, 10, "[SKIP SYM  ] REDCUDAAPI\n[LOAD SYM  ] R3DDECODERAPI\n"},
        {"@good", "", 7, 0, 9, "[FAIL SYM  ] REDCLAPI\n---"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.says) + ", options " + std::to_string(row.options));
        Say(row.says);
        SdkSetTestValue(kSdkTestSkipMatch, row.skip_match);
        EXPECT_EQ(Initialize(row.folder, "", row.options), row.status) << log;
        EXPECT_NE(log.find(row.lines), std::string::npos) << log;
        EXPECT_EQ(HasClipOperations(), row.status == 0);
    }
}

TEST_F(SdkStart, PhasesThatFail) {
    const struct {
        const char* says;
        int32_t status;
        const char* lines;
        const char* events;  // between the search and the end of the main library
    } rows[] = {
        {"twin!0=5", 5, "[FAIL INIT0] 5\n[FAIL LOAD ] 5 -> 5 - ", "good init0\ntwin init0\ntwin detach\n"},
        {"good!1=14", 14, "[INIT1     ]\n[FAIL INIT1] library 52334410\n---",
         "good init0\ntwin init0\ngood init1\ntwin finalize\ntwin detach\n"},
        {"twin!1=1", 1, "[INIT1     ]\n[FAIL INIT1] library 52334410\n---",
         "good init0\ntwin init0\ngood init1\ntwin init1\ntwin finalize\ntwin detach\n"},
        {"twin!2=-3", -3, "[OK INIT1  ]\n[INIT2     ]\n[FAIL INIT2] library 52334410\n---",
         "good init0\ntwin init0\ngood init1\ntwin init1\ngood init2\ntwin init2\ntwin finalize\ntwin detach\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.says);
        Say(row.says);
        candidates["good"].imports = {{kTwinFile}};
        EXPECT_EQ(Initialize("@good"), row.status) << log;
        EXPECT_NE(log.find(row.lines), std::string::npos) << log;
        EXPECT_FALSE(HasClipOperations());
        ExpectEvents(std::string("good init0\ngood finalize\ngood detach\n") + row.events +
                     "good finalize\ngood detach\n");
    }
    Say("good!0=14");
    EXPECT_EQ(Initialize("@good"), 14) << "the main library itself, already in the search";
    ExpectEvents("good init0\ngood detach\n");
}

}  // namespace
}  // namespace clipfio
