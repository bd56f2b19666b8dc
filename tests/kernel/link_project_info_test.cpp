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
#define FIELD(offset, name) \
    { offset, &Info::Get##name, &Info::Get##name##Ptr }
    const Field<const WCHAR*> kTexts[] = {{32, &Info::GetCommandLineW, &Info::GetCommandLinePtr},
                                          FIELD(16, ProjectPath),
                                          FIELD(64, TemplateName),
                                          FIELD(112, CreatorAppInfo),
                                          FIELD(128, CreatorAppWindowClassName)};
    const Field<const uint8_t*> kBlocks[] = {FIELD(80, TemplateData), FIELD(96, AppTemplateData),
                                             FIELD(144, ProjectData)};
    const Field<uint32_t> kSizes[] = {FIELD(24, ProjectPathSize),
                                      FIELD(40, CommandLineSize),
                                      FIELD(72, TemplateNameSize),
                                      FIELD(88, TemplateDataSize),
                                      FIELD(104, AppTemplateDataSize),
                                      FIELD(120, CreatorAppInfoSize),
                                      FIELD(136, CreatorAppWindowClassNameSize),
                                      FIELD(152, ProjectDataSize)};
#undef FIELD
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
    EXPECT_EQ(to.GetProjectDataSize(), from.GetProjectDataSize());
}

}  // namespace
