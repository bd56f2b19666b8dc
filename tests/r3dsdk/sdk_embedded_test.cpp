// The client inside a library that another client has loaded, and libraries that are loaded late.
#include <array>

#include "platform/modules.h"
#include "platform/text.h"
#include "r3dsdk/clip_operations.h"
#include "r3dsdk/sdk_import_list.h"
#include "r3dsdk/sdk_key_values.h"
#include "r3dsdk/sdk_loader.h"
#include "support/failing_new.h"
#include "tests/r3dsdk/candidate_scene.h"

namespace clipfio {
namespace {

class SdkEmbedded : public CandidateScene {
  protected:
    void SetUp() override {
        CandidateScene::SetUp();
        values.SetValue(kSdkKeyLogLevel, 255);
    }
    void TearDown() override {
        CandidateScene::TearDown();
        for (HMODULE module : modules) FreeLibrary(module);
    }
    // A library of the other client.
    HMODULE Open(const char* candidate) {
        const std::string file = InFolders(std::string("@") + candidate + "/REDR3D-x64.dll");
        modules.push_back(LoadLibraryW(platform::Wide(file).c_str()));
        EXPECT_NE(modules.back(), nullptr);
        return modules.back();
    }
    int32_t Embed(uint32_t phase, const std::vector<HMODULE>& handles) {
        int32_t status = -1;
        Capture([&] {
            status = SdkInitializeEmbedded(phase, &values, handles.data(), static_cast<uint32_t>(handles.size()));
        });
        return status;
    }
    int32_t LoadLate(const char* folder, SdkImportList* list) {
        int32_t status = -1;
        Capture([&] { status = SdkLoadLate(folder ? InFolders(folder).c_str() : nullptr, list); });
        return status;
    }

    SdkKeyValueTable values;
    std::vector<HMODULE> modules;
};

TEST_F(SdkEmbedded, BindsWhatTheOtherClientLoaded) {
    const std::vector<HMODULE> handles = {Open("streamless"), Open("twin")};
    {
        values.SetValue(kSdkKeyLogLevel, 0);
        FailingNew fail(0);
        EXPECT_EQ(SdkInitializeEmbedded(0, &values, nullptr, 0), 0);
        EXPECT_FALSE(fail.Hit()) << "there may be no heap yet";
        values.SetValue(kSdkKeyLogLevel, 255);
    }
    EXPECT_EQ(Embed(0, {}), 0);
    EXPECT_EQ(log, "[INIT INT0 ]\n[OK INT0   ]\n");
    EXPECT_FALSE(HasClipOperations());

    EXPECT_EQ(Embed(1, handles), 0);
    const std::string client = kClientText;
    EXPECT_EQ(log.rfind("[INIT INT1 ]\n+" + client + "\n\tLibrary ID            : 52334410\n", 0), 0u) << log;
    const std::string end = "+" + client + " streamless twin\n[OK INT1   ]\n";
    EXPECT_TRUE(log.ends_with("[SKIP SYM  ] R3DDECODERAPI\n" + end)) << log;
    EXPECT_EQ(log.find("[INIT0"), std::string::npos);
    EXPECT_TRUE(HasClipOperations());
    EXPECT_EQ(CreateClip(), 5u);
    EXPECT_EQ(Embed(2, {}), 0);
    EXPECT_EQ(log, "[INIT INT2 ]\n[OK INT2   ]\n");
    EXPECT_EQ(Loaded(), " streamless twin");
    EXPECT_EQ(TakeEvents(), "") << "initialising is the other client's affair";

    Capture([] { SdkFinalize(); });
    EXPECT_EQ(log, "[UNLOAD LIB] 52334410 twin\n[UNLOAD LIB] 52334410 streamless\n");
    EXPECT_EQ(TakeEvents(), "") << "and so is ending";
    EXPECT_NE(GetProcAddress(handles[1], "R3D_AAB"), nullptr);

    EXPECT_EQ(Embed(1, {handles[1]}), 0) << "a second life";
    EXPECT_EQ(Embed(1, {handles[1], handles[1]}), 0) << "in place of what was there";
    EXPECT_EQ(Loaded(), " twin twin");
}

TEST_F(SdkEmbedded, Refusals) {
    const HMODULE good = Open("good");
    EXPECT_EQ(SdkInitializeEmbedded(1, nullptr, &good, 1), 1);
    EXPECT_EQ(Embed(1, std::vector<HMODULE>(20, good)), 0);
    EXPECT_EQ(Embed(1, std::vector<HMODULE>(21, good)), 16);
    EXPECT_TRUE(log.ends_with("[FAIL INT. ] too many handles 21\n[FAIL LOAD ] 16\n")) << log;
    EXPECT_FALSE(HasClipOperations());
    EXPECT_EQ(Loaded(), "");
    Capture([&] { EXPECT_EQ(SdkInitializeEmbedded(1, &values, nullptr, 2), 1); });

    EXPECT_EQ(Embed(1, {good, nullptr}), 7);
    EXPECT_TRUE(log.ends_with("[NOT FOUND ] RED_LIB_FINALIZE\n[FAIL SYM  ] API\n[FAIL LOAD ] 7\n")) << log;
    EXPECT_EQ(Loaded(), " good");
    EXPECT_EQ(Embed(1, {}), 7) << "no library, no tables";
    EXPECT_TRUE(log.ends_with("[LOAD SYM  ] ClipApi\n[FAIL SYM  ] ClipApi\n")) << log;

    values.SetValue(kSdkKeyOptions, kSdkOptionCuda);
    EXPECT_EQ(Embed(1, {good}), 8) << "the options are the other client's";
    EXPECT_FALSE(HasClipOperations());
}

TEST_F(SdkEmbedded, TakesThePlaceOfALoaderAndBack) {
    ASSERT_EQ(Initialize("@good"), 0);
    TakeEvents();
    EXPECT_EQ(Embed(1, {Open("twin")}), 0);
    EXPECT_EQ(Loaded(), " twin");
    ExpectEvents("good finalize\ngood detach\n");
    EXPECT_EQ(Initialize("@good"), 0);
    EXPECT_EQ(Loaded(), InFolders(" good [@good\\]"));
}

TEST_F(SdkEmbedded, LoadsLate) {
    SdkImportRows list;
    EXPECT_EQ(SdkLoadLate("", &list), 2) << "there is no loader";

    const HMODULE good = Open("good");
    ASSERT_EQ(Embed(1, std::vector<HMODULE>(5, good)), 0);
    ASSERT_EQ(Embed(1, {good}), 0);
    on_initialize = [](uint32_t phase, SdkKeyValues*, const HMODULE* handles, uint32_t count) {
        for (uint32_t i = 0; phase && i < 20; ++i) EXPECT_EQ(handles[i] != nullptr, i < count) << i;
    };
    TakeEvents();
    list.Add("twin/REDR3D-x64.dll", kMainLibraryId, 0);
    EXPECT_EQ(LoadLate("@", &list), 0) << log;
    EXPECT_EQ(Loaded(), " good twin");
    EXPECT_EQ(TakeEvents(), "twin init0\ngood init1\ntwin init1\ngood init2\ntwin init2\n");
    Capture([] { SdkFinalize(); });
    ExpectEvents("twin finalize\ntwin detach\n");

    ASSERT_EQ(Initialize("@good"), 0);
    EXPECT_EQ(LoadLate(nullptr, nullptr), 0) << "nothing to load";
    list.Add("nothing.dll", kMainLibraryId, 2);
    EXPECT_EQ(LoadLate("@", &list), 4);
    EXPECT_TRUE(log.ends_with("[FAIL LOAD ]\n")) << log;
    EXPECT_EQ(Loaded(), InFolders(" good twin [@good\\]")) << "what could be loaded stays";
    EXPECT_TRUE(HasClipOperations());

    list.Clear();
    list.Add("plain/REDR3D-x64.dll", kMainLibraryId, 0);
    candidates["plain"].failures = {{1, 14}};
    EXPECT_EQ(LoadLate("@", &list), 14);
    EXPECT_TRUE(log.ends_with("[INIT1     ]\n[FAIL INIT1] library 52334410\n")) << log;
}

}  // namespace
}  // namespace clipfio
