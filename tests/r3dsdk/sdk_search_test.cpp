// Which of several libraries is taken, and what the status lines tell of the search.
#include <filesystem>

#include "platform/modules.h"
#include "r3dsdk/clip_operations.h"
#include "r3dsdk/sdk_loader.h"
#include "r3dsdk/sdk_test_values.h"
#include "tests/r3dsdk/candidate_scene.h"

namespace clipfio {
namespace {

class SdkSearch : public CandidateScene {};

const char kLine[] = "----------------------\n";
const char kTableLines[] =
    "[LOAD SYM  ] ClipApi\n[OK SYM    ] ClipApi\n"
    "[LOAD SYM  ] MetadataApi\n[OK SYM    ] MetadataApi\n"
    "[LOAD SYM  ] AsyncDecoderApi\n[OK SYM    ] AsyncDecoderApi\n"
    "[LOAD SYM  ] RedRocketApi\n[OK SYM    ] RedRocketApi\n"
    "[LOAD SYM  ] StreamApi\n[OK SYM    ] StreamApi\n"
    "[SKIP SYM  ] REDCLAPI\n[SKIP SYM  ] REDCUDAAPI\n[SKIP SYM  ] R3DDECODERAPI\n";
const char kStartLines[] = "[INIT1     ]\n[OK INIT1  ]\n[INIT2     ]\n[OK INIT2  ]\n";

std::string Begin(const std::string& folder) {
    return InFolders("[INIT LIB  ] 0x0 at " + folder + "\n-" + kClientText + "\n[LOAD PATH ] " + folder + "\n");
}

std::string EndLines(const std::string& build) {
    return "[FINALIZE  ] 52334410 " + build + "\n[UNLOAD LIB] 52334410 " + build + "\n";
}

std::string Listed(const std::string& rows) { return kLine + InFolders(rows) + kLine; }

TEST_F(SdkSearch, LinesOfSuccess) {
    EXPECT_EQ(Initialize("@good"), 0);
    const std::string list = Listed("0: idx = 0, status = 0, version = 7.0.3: @good\\\n");
    EXPECT_EQ(log, Begin("@good") + OpenedLines("good") + list + EndLines("good") + OpenedLines("good") + kTableLines +
                       kStartLines + list + "-" + kClientText + InFolders(" good [@good\\]\n[OK INIT   ]\n"));
    Capture([] { SdkFinalize(); });
    EXPECT_EQ(log, EndLines("good"));
    EXPECT_EQ(Loaded(), "");
}

TEST_F(SdkSearch, LinesOfAMissingFile) {
    const std::string file = InFolders("@nowhere\\REDR3D-x64.dll");
    ASSERT_EQ(LoadLibraryA(file.c_str()), nullptr);
    char reason[1024] = "";
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, GetLastError(), 0, reason, 1023,
                   nullptr);
    std::string text = reason;
    std::erase(text, '\r');

    EXPECT_EQ(Initialize("@nowhere"), 2);
    std::erase(log, '\r');
    const std::string list = Listed("0: idx = 0, status = 2, version = 0.0.0: @nowhere\\\n");
    EXPECT_EQ(log, Begin("@nowhere") + "[LOAD LIB  ] " + file + "\n[FAIL LOAD ] " + text + "\n[FAIL LOAD ] 1 -> 2 - " +
                       file + "\n" + list + list + "[FAIL INIT ] error 2\n");
}

TEST_F(SdkSearch, NoPath) {
    int32_t status = 0;
    for (const char* folder : {"", static_cast<const char*>(nullptr)}) {
        Capture([&] { status = SdkInitialize(folder, 0x1F); });
        EXPECT_EQ(status, 15);
        EXPECT_EQ(log, std::string("[INIT LIB  ] 0x1F at ") + (folder ? "" : "(null)") + "\n-" + kClientText + "\n");
    }
    ASSERT_EQ(Initialize("@good"), 0);
    Capture([&] { status = SdkInitialize("", 0); });
    EXPECT_EQ(status, 15);
    EXPECT_TRUE(HasClipOperations()) << "what is there stays";
}

TEST_F(SdkSearch, WhichLibraryIsTaken) {
    const char* const kGood = " good [@good\\]";
    const char* const kTwin = " twin [@twin\\]";
    const char* const kDone = "[OK INIT   ]\n";
    const char* const kBelow = "[FAIL VER  ] (0) dynamic version below 7.0.3\n";
    const char* const kDemanding = "[FAIL VER  ] (0) static version too old: 7.0.3\n";
    const struct {
        const char *what, *folder, *environment, *says;
        int32_t status;
        const char *loaded, *line;
    } rows[] = {
        {"a plain library", "@plain", "", "", 0, " plain [@plain\\]", kDone},
        {"its separator is kept", "@good/", "", "", 0, " good [@good/]", ": @good/\n"},
        {"or a backslash", "@good\\", "", "", 0, kGood, ": @good\\\n"},
        {"at the same version the environment's", "@good", "@twin", "", 0, kTwin,
         "0: idx = 1, status = 0, version = 7.0.3: @twin\\\n1: idx = 0, status = 0, version = 7.0.3: @good\\\n"},
        {"patch before index", "@good", "@twin", "good.patch=4", 0, kGood, "0: idx = 0, status = 0, version = 7.0.4"},
        {"minor before patch", "@good", "@twin", "good.patch=9 twin.minor=1 twin.patch=0", 0, kTwin, "version = 7.1.0"},
        {"major before minor", "@good", "@twin", "good.major=8 twin.minor=9", 0, kGood, "0: idx = 0, status = 0"},
        {"unsigned numbers", "@good", "@twin", "good.major=4294967295", 0, kGood, "version = 4294967295.0.3"},
        {"nothing here", "@nowhere", "@good", "", 0, kGood, "1: idx = 0, status = 2, version = 0.0.0: @nowhere\\\n"},
        {"nothing there", "@good", "@nowhere", "", 0, kGood, "1: idx = 1, status = 2"},
        {"the same folder again", "@good", "@good", "", 0, kGood,
         "[FAIL INT. ] path '@good' already exists at index 0\n"},
        {"with a separator", "@good", "@good\\", "", 0, kGood, "path '@good\\' already exists at index 0\n"},
        {"too old by major", "@good", "", "good.major=6 good.minor=9", 6, "", kBelow},
        {"needs a newer minor", "@good", "", "good.minor=5 good.minimum-minor=1", 6, "", kDemanding},
        {"needs a newer patch", "@good", "", "good.minimum-patch=4", 6, "", kDemanding},
        {"needs a newer major", "@good", "", "good.minimum-major=8 good.minimum-patch=0", 6, "", kDemanding},
        {"needs just this client", "@good", "", "good.minimum-patch=3", 0, kGood, kDone},
        {"needs an older major", "@good", "", "good.minimum-major=6 good.minimum-minor=50", 0, kGood, kDone},
        {"another one fits", "@good", "@twin", "good.minor=5 good.minimum-minor=1", 0, kTwin,
         "0: idx = 0, status = 6, version = 7.5.3"},
        {"the first error stays", "@nowhere", "@good", "good.major=6", 2, "", "[FAIL INIT ] error 2\n"},
        {"an old one names a newer", "@good", "", "good.major=6 good>@twin", 0, kTwin,
         "1: idx = 0, status = 6, version = 6.0.3: @good\\\n"},
        {"an old one names nothing", "@good", "", "good.major=6 good>@nowhere", 2, "", "[FAIL INIT ] error 2\n"},
        {"an empty redirect", "@good", "", "good>", 0, kGood, kDone},
        {"to itself", "@good", "", "good>@good", 0, kGood,
         "[LOAD PATH ] @good\n[FAIL INT. ] path '@good' already exists at index 0\n"},
        {"to itself, and too old", "@good", "", "good.major=6 good>@good", 16, "", "[FAIL INIT ] error 16\n"},
        {"in a circle", "@good", "", "good>@twin twin>@good\\", 0, kTwin, "path '@good\\' already exists at index 0\n"},
        {"the environment redirects", "@twin", "@good", "good>@plain", 0, " plain [@plain\\]", "0: idx = 2"},
        {"another id", "@good", "", "good.id=1", 7, "",
         "[FAIL ID   ] 00000001\n[FINALIZE  ] 00000001 good\n[UNLOAD LIB] 00000001 good\n"},
        {"symbols missing", "@coreless", "", "", 7, "",
         "[LOAD LIB  ] @coreless\\REDR3D-x64.dll\n[NOT FOUND ] RED_MINIMUM_PATCH_VERSION\n[NOT FOUND ] "
         "RED_LIB_FINALIZE\n"
         "[UNLOAD LIB]\n[FAIL SYM  ] API\n[FAIL LOAD ] 7 -> 7 - @coreless\\REDR3D-x64.dll\n---"},
        {"no id", "@good", "", "good.id=0", 7, "", "[FAIL ID   ] 00000000\n[FINALIZE  ] 00000000 good\n[UNLOAD LIB]\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Say(row.says);
        EXPECT_EQ(Initialize(row.folder, row.environment), row.status) << log;
        EXPECT_EQ(Loaded(), InFolders(row.loaded));
        EXPECT_EQ(HasClipOperations(), row.status == 0);
        EXPECT_NE(log.find(InFolders(row.line)), std::string::npos) << log;
    }
}

TEST_F(SdkSearch, RedirectMode) {
    for (uint32_t mode : {0u, 1u, 2u, 3u}) {
        SdkSetTestValue(kSdkTestRedirectMode, mode);
        Say("good>@twin");
        EXPECT_EQ(Initialize("@good"), 0);
        EXPECT_EQ(Loaded(), InFolders(mode == 2 ? " good [@good\\]" : " twin [@twin\\]"));
        EXPECT_EQ(log.find(InFolders("[TEST  TEST] IGNORING REDIRECT @twin\n")) != std::string::npos, mode == 2);
    }
}

TEST_F(SdkSearch, TenPlacesForPaths) {
    std::string folder = "@good";
    for (int i = 0; i < 10; ++i) candidates["good"].redirects.push_back(folder += "/.");
    EXPECT_EQ(Initialize("@good", "@twin"), 0);
    EXPECT_EQ(Loaded(), InFolders(" good [@good/././././././././.\\]"));
    const std::string full = "[FAIL INT. ] too many paths\n";
    const size_t first = log.find(full);
    ASSERT_NE(first, std::string::npos) << log;
    EXPECT_EQ(log.find(InFolders("[LOAD PATH ] @twin\n") + full), first + full.size());
    EXPECT_NE(log.find("9: idx = 0, status = 0"), std::string::npos);
}

TEST_F(SdkSearch, NextOneWhenTheBestFailsToStart) {
    candidates["twin"].failures = {{2, 77}};
    EXPECT_EQ(Initialize("@good", "@twin"), 0);
    EXPECT_EQ(Loaded(), InFolders(" good [@good\\]"));
    ExpectEvents(
        "good init0\ngood finalize\ngood detach\n"
        "twin init0\ntwin finalize\ntwin detach\n"
        "twin init0\ntwin init1\ntwin init2\ntwin finalize\ntwin detach\n"
        "good init0\ngood init1\ngood init2\n");
    candidates["good"].failures = {{1, 78}};
    EXPECT_EQ(Initialize("@good", "@twin"), 78);
    candidates["good"].failures = {};
    candidates["good"].numbers = {{"patch", 1}};
    EXPECT_EQ(Initialize("@good", "@twin"), 77) << "a failed start counts more than what came before";
    EXPECT_FALSE(HasClipOperations());
}

TEST_F(SdkSearch, AgainAndAgain) {
    ASSERT_EQ(Initialize("@good"), 0);
    TakeEvents();
    ASSERT_EQ(Initialize("@twin"), 0);
    EXPECT_EQ(log.rfind(InFolders("[INIT LIB  ] 0x0 at @twin\n-") + kClientText + InFolders(" good [@good\\]\n") +
                            EndLines("good"),
                        0),
              0u)
        << log;
    Capture([] {
        SdkFinalize();
        SdkFinalize();
    });
    EXPECT_EQ(log, EndLines("twin"));
    ExpectEvents(
        "good finalize\ngood detach\ntwin init0\ntwin finalize\ntwin detach\n"
        "twin init0\ntwin init1\ntwin init2\ntwin finalize\ntwin detach\n");
}

TEST_F(SdkSearch, BuildNames) {
    candidates["good"].texts = {{"build", std::string(200, 'b')}, {"static-build", "(null)"}};
    ASSERT_EQ(Initialize("@good"), 0);
    EXPECT_EQ(Loaded(), " " + std::string(127, 'b') + InFolders(" [@good\\]"));
    EXPECT_NE(log.find("\tStatic lib in dyn name: \n"), std::string::npos);
}

TEST_F(SdkSearch, FoldersInAnyScript) {
    const std::string folder = CLIPFIO_CANDIDATES
        "/Gr\xC3\xB6\xC3\x9F"
        "e \xCE\xBB";
    const std::filesystem::path there(std::u8string(folder.begin(), folder.end()));
    std::filesystem::create_directories(there);
    std::filesystem::copy_file(InFolders("@good/REDR3D-x64.dll"), there / "REDR3D-x64.dll",
                               std::filesystem::copy_options::overwrite_existing);
    EXPECT_EQ(Initialize(folder), 0) << log;
    EXPECT_EQ(Loaded(), " good [" + folder + "\\]");
    EXPECT_EQ(Initialize("@nowhere", folder), 0) << log;
    EXPECT_EQ(Loaded(), " good [" + folder + "\\]");
    EXPECT_EQ(Initialize("@\xFF\xFE"), 2) << "bytes of no script at all";
    Capture([] { SdkFinalize(); });
    std::error_code ignored;
    std::filesystem::remove_all(there, ignored);
}

}  // namespace
}  // namespace clipfio
