// The record through the built module.
#include "kernel/link_project_info.h"

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

namespace {

using Info = CKtLinkProjectInfo;

static_assert(std::is_standard_layout_v<Info>);

// A getter and the operation that gives the field's address, with the place of the field in the record.
template <class Value>
struct Field {
    std::size_t offset;
    Value (Info::*get)() const noexcept;
    Value* (Info::*address)() noexcept;
};

template <class Value>
void ExpectFilledThroughItsAddress(const Field<Value>& field, Value value) {
    Info info{};
    Value* const address = (info.*field.address)();
    EXPECT_EQ(reinterpret_cast<const char*>(address) - reinterpret_cast<const char*>(&info),
              static_cast<std::ptrdiff_t>(field.offset));
    *address = value;
    EXPECT_EQ((info.*field.get)(), value) << field.offset;
}

TEST(LinkProjectInfo, GivesEachFieldAndItsAddress) {
    const Field<const WCHAR*> kTexts[] = {
        {16, &Info::GetProjectPath, &Info::GetProjectPathPtr},
        {32, &Info::GetCommandLineW, &Info::GetCommandLinePtr},
        {64, &Info::GetTemplateName, &Info::GetTemplateNamePtr},
        {112, &Info::GetCreatorAppInfo, &Info::GetCreatorAppInfoPtr},
        {128, &Info::GetCreatorAppWindowClassName, &Info::GetCreatorAppWindowClassNamePtr},
    };
    const Field<const uint8_t*> kBlocks[] = {
        {80, &Info::GetTemplateData, &Info::GetTemplateDataPtr},
        {96, &Info::GetAppTemplateData, &Info::GetAppTemplateDataPtr},
        {144, &Info::GetProjectData, &Info::GetProjectDataPtr},
    };
    const Field<uint32_t> kSizes[] = {
        {24, &Info::GetProjectPathSize, &Info::GetProjectPathSizePtr},
        {40, &Info::GetCommandLineSize, &Info::GetCommandLineSizePtr},
        {72, &Info::GetTemplateNameSize, &Info::GetTemplateNameSizePtr},
        {88, &Info::GetTemplateDataSize, &Info::GetTemplateDataSizePtr},
        {104, &Info::GetAppTemplateDataSize, &Info::GetAppTemplateDataSizePtr},
        {120, &Info::GetCreatorAppInfoSize, &Info::GetCreatorAppInfoSizePtr},
        {136, &Info::GetCreatorAppWindowClassNameSize, &Info::GetCreatorAppWindowClassNameSizePtr},
        {152, &Info::GetProjectDataSize, &Info::GetProjectDataSizePtr},
    };
    const uint8_t block[] = {1, 2, 3};
    for (const auto& field : kTexts) ExpectFilledThroughItsAddress<const WCHAR*>(field, W("text"));
    for (const auto& field : kBlocks) ExpectFilledThroughItsAddress<const uint8_t*>(field, block);
    for (const auto& field : kSizes) ExpectFilledThroughItsAddress<uint32_t>(field, 77);
}

TEST(LinkProjectInfo, IsCopiedWhole) {
    unsigned char bytes[sizeof(Info)];
    for (std::size_t i = 0; i < sizeof bytes; ++i) bytes[i] = static_cast<unsigned char>(i + 1);
    Info from{}, to{};
    std::memcpy(static_cast<void*>(&from), bytes, sizeof from);
    EXPECT_EQ(&(to = from), &to);
    // The leading word, which has no accessor, and the version.
    EXPECT_EQ(std::memcmp(&to, bytes, 12), 0);
    EXPECT_EQ(to.GetVersion(), 0x0C0B0A09u);
    EXPECT_EQ(reinterpret_cast<char*>(to.GetRendererGuid()) - reinterpret_cast<char*>(&to), 44);
    EXPECT_EQ(std::memcmp(to.GetRendererGuid(), &bytes[44], sizeof(GUID)), 0);
    EXPECT_EQ(to.GetProjectPath(), from.GetProjectPath());
    EXPECT_EQ(to.GetProjectDataSize(), from.GetProjectDataSize());
    const Info by_value(to);
    EXPECT_EQ(by_value.GetCommandLineW(), from.GetCommandLineW());
}

}  // namespace
