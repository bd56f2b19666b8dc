// Memory that runs out in the loader: a status, nothing half done, and nothing that stands in the way of another try.
#include "platform/modules.h"
#include "platform/text.h"
#include "r3dsdk/clip_operations.h"
#include "r3dsdk/sdk_import_list.h"
#include "r3dsdk/sdk_loader.h"
#include "r3dsdk/sdk_test_values.h"
#include "support/fail_each.h"
#include "tests/r3dsdk/candidate_scene.h"

namespace clipfio {
namespace {

class SdkMemory : public CandidateScene {
  protected:
    void SetUp() override {
        CandidateScene::SetUp();
        // The candidates have nobody to report to, since a report would take memory.
        SetEnvironmentVariableW(CANDIDATE_HOST_VARIABLE, nullptr);
        SetEnvironmentVariableW(W("R3DSDKPATH"), platform::Wide(further).c_str());
        SdkSetTestValue(kSdkTestLogLevel, 0);
    }

    const std::string folder = InFolders("@good");
    const std::string further = InFolders("@twin/");
};

TEST_F(SdkMemory, Initialize) {
    int failures = 0;
    support::FailEach<FailingNew>([&] { return SdkInitialize(folder.c_str(), 0); },
                                  [&](int32_t status, bool hit) {
                                      failures += status != 0;
                                      EXPECT_EQ(HasClipOperations(), status == 0);
                                      EXPECT_TRUE(hit || status == 0);
                                      SdkFinalize();
                                  });
    EXPECT_GT(failures, 12) << "the table alone has twelve keys";
}

TEST_F(SdkMemory, LoadLate) {
    ASSERT_EQ(SdkInitialize(folder.c_str(), 0), 0);
    support::FailEach<FailingNew>(
        [&] {
            SdkImportRows list;
            list.Add("REDR3D-x64.dll", kMainLibraryId, 0);
            EXPECT_EQ(list.Count(), list.LostRows() ? 0u : 1u);
            return SdkLoadLate(further.c_str(), &list);
        },
        [&](int32_t status, bool hit) {
            EXPECT_TRUE(HasClipOperations());
            EXPECT_TRUE(hit || status == 0);
            EXPECT_EQ(SdkInitialize(folder.c_str(), 0), 0);
        });
}

}  // namespace
}  // namespace clipfio
