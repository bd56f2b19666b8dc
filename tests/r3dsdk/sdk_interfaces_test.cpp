// The tables that cross the boundary to the library, called as the library calls them: by slot number.
#include <gtest/gtest.h>

#include <memory>

#include "r3dsdk/sdk_import_list.h"
#include "r3dsdk/sdk_key_values.h"
#include "r3dsdk/sdk_loader.h"
#include "r3dsdk/sdk_log.h"
#include "r3dsdk/sdk_symbol_table.h"
#include "r3dsdk/sdk_test_values.h"
#include "tests/r3dsdk/candidate_scene.h"

namespace clipfio {
namespace {

template <class Result, class... Arguments>
Result CallSlot(void* object, size_t slot, Arguments... arguments) {
    void** const table = *static_cast<void***>(object);
    return reinterpret_cast<Result (*)(void*, Arguments...)>(table[slot])(object, arguments...);
}

class SdkInterfaces : public CandidateScene {};

TEST_F(SdkInterfaces, KeyValueTableBySlots) {
    void* const table = new SdkKeyValueTable;
    const uint64_t top = 0xFFFFFFFFFFFFFFFF;
    int target = 0;
    CallSlot<void>(table, 0, uint64_t{20}, static_cast<const void*>(&target));
    CallSlot<void>(table, 1, top, uint64_t{0xFEDCBA9876543210});
    CallSlot<void>(table, 1, uint64_t{0}, uint64_t{7});
    CallSlot<void>(table, 1, uint64_t{0}, uint64_t{255});

    EXPECT_TRUE(CallSlot<bool>(table, 2, top));
    EXPECT_FALSE(CallSlot<bool>(table, 2, uint64_t{1}));
    EXPECT_EQ(CallSlot<uint64_t>(table, 3, top), 0xFEDCBA9876543210u);
    EXPECT_EQ(CallSlot<uint64_t>(table, 3, uint64_t{0}), 255u);
    EXPECT_EQ(CallSlot<uint64_t>(table, 3, uint64_t{1}), 0u);
    EXPECT_EQ(CallSlot<void*>(table, 4, uint64_t{20}), &target);
    EXPECT_EQ(CallSlot<void*>(table, 4, uint64_t{1}), nullptr);
    CallSlot<void>(table, 1, uint64_t{20}, uint64_t{0});
    EXPECT_TRUE(CallSlot<bool>(table, 2, uint64_t{20})) << "0 is a value";

    Capture([&] { CallSlot<void>(table, 5); });
    EXPECT_EQ(log,
              "\tkey = 0, value = 0xFF\n"
              "\tkey = 20, value = 0x0\n"
              "\tkey = 18446744073709551615, value = 0xFEDCBA9876543210\n");

    EXPECT_EQ(CallSlot<void*>(table, 6, uint32_t{0}), table);
    EXPECT_FALSE(CallSlot<bool>(table, 2, top)) << "emptied, and still there";
    EXPECT_EQ(CallSlot<void*>(table, 6, uint32_t{1}), nullptr);
}

TEST_F(SdkInterfaces, ImportListBySlots) {
    void* const list = new SdkImportRows;
    char name[] = "extra.dll";
    CallSlot<void>(list, 1, static_cast<const char*>(name), uint32_t{0x52334411}, uint32_t{4});
    CallSlot<void>(list, 1, static_cast<const char*>(nullptr), uint32_t{2}, uint32_t{3});
    name[0] = '?';

    EXPECT_EQ(CallSlot<uint32_t>(list, 3), 2u);
    EXPECT_STREQ(CallSlot<const char*>(list, 4, uint32_t{0}), "extra.dll");
    EXPECT_STREQ(CallSlot<const char*>(list, 4, uint32_t{1}), "");
    EXPECT_EQ(CallSlot<uint32_t>(list, 5, uint32_t{0}), 0x52334411u);
    EXPECT_EQ(CallSlot<uint32_t>(list, 6, uint32_t{0}), 4u);
    for (uint32_t row : {2u, 0xFFFFFFFFu}) {
        EXPECT_EQ(CallSlot<const char*>(list, 4, row), nullptr);
        EXPECT_EQ(CallSlot<uint32_t>(list, 5, row), 0u);
        EXPECT_EQ(CallSlot<uint32_t>(list, 6, row), 0u);
    }
    CallSlot<void>(list, 2);
    EXPECT_EQ(CallSlot<uint32_t>(list, 3), 0u);
    EXPECT_EQ(CallSlot<void*>(list, 0, uint32_t{0}), list);
    EXPECT_EQ(CallSlot<void*>(list, 0, uint32_t{1}), nullptr);
}

TEST_F(SdkInterfaces, SymbolTablesBySlots) {
    const struct {
        const char* name;
        size_t symbols;
        uint32_t flags;
        const char *first, *last;
    } rows[] = {{"ClipApi", 62, 0, "R3D_AAB", "R3D_HAF"},        {"MetadataApi", 13, 0, "R3D_BAB", "R3D_BAM"},
                {"AsyncDecoderApi", 8, 0, "R3D_CAB", "R3D_CAG"}, {"RedRocketApi", 13, 0, "R3D_DAB", "R3D_DAP"},
                {"StreamApi", 14, 0, "R3D_EAB", "R3D_GAD"},      {"REDCLAPI", 9, 2, nullptr, nullptr},
                {"REDCUDAAPI", 9, 1, nullptr, nullptr},          {"R3DDECODERAPI", 18, 4, nullptr, nullptr}};
    const auto library = SdkDynamicLibrary::Open(InFolders("@good/REDR3D-x64.dll").c_str());
    ASSERT_TRUE(library);
    ASSERT_EQ(SdkTables().size(), std::size(rows));
    for (size_t i = 0; i < std::size(rows); ++i) {
        const SdkTableFacts& facts = SdkTables()[i];
        SCOPED_TRACE(rows[i].name);
        const bool known = rows[i].first != nullptr;
        ASSERT_EQ(facts.symbols.size(), rows[i].symbols);
        if (known) {
            EXPECT_STREQ(facts.symbols.front(), rows[i].first);
            EXPECT_STREQ(facts.symbols.back(), rows[i].last);
        }

        auto* const table = new SdkNamedSymbols(facts);
        EXPECT_STREQ(CallSlot<const char*>(table, 1), rows[i].name);
        EXPECT_EQ(CallSlot<uint32_t>(table, 2), rows[i].flags);
        EXPECT_FALSE(CallSlot<bool>(table, 3));
        Capture([&] { EXPECT_EQ(CallSlot<bool>(table, 4, &library), known); });
        EXPECT_EQ(CallSlot<bool>(table, 3), known);
        EXPECT_EQ(table->Function(0) != nullptr, known);
        std::string missing;
        for (size_t n = known ? 0 : rows[i].symbols; n; --n) missing += "[NOT FOUND ] (name not known)\n";
        EXPECT_EQ(log, missing);
        CallSlot<void>(table, 5);
        EXPECT_FALSE(CallSlot<bool>(table, 3));
        EXPECT_EQ(table->Function(0), nullptr);
        EXPECT_EQ(CallSlot<void*>(table, 0, uint32_t{0}), table);
        EXPECT_EQ(CallSlot<void*>(table, 0, uint32_t{1}), nullptr);
    }
}

TEST_F(SdkInterfaces, StatusOfAFailedLoad) {
    const struct {
        int32_t status;
        int32_t by_flags[8];
    } rows[] = {{0, {0, 0, 0, 0, 0, 0, 0, 0}},          {1, {2, 3, 4, 3, 5, 3, 4, 3}},
                {2, {2, 2, 2, 2, 2, 2, 2, 2}},          {6, {6, 6, 6, 6, 6, 6, 6, 6}},
                {7, {7, 8, 9, 8, 10, 8, 9, 8}},         {14, {14, 11, 12, 11, 13, 11, 12, 11}},
                {16, {16, 16, 16, 16, 16, 16, 16, 16}}, {-5, {-5, -5, -5, -5, -5, -5, -5, -5}}};
    for (const auto& row : rows) {
        for (uint32_t flags = 0; flags < 8; ++flags) {
            EXPECT_EQ(MapLoadStatus(row.status, flags), row.by_flags[flags]) << row.status << " with " << flags;
        }
        EXPECT_EQ(MapLoadStatus(row.status, 0xFFFFFFF8), row.by_flags[0]);
    }
}

TEST_F(SdkInterfaces, TestValuesAndTheLogLevel) {
    EXPECT_FALSE(SdkSetTestValue(665, 1));
    EXPECT_FALSE(SdkSetTestValue(669, 1));
    EXPECT_EQ(SdkGetTestValue(665), 0u);
    EXPECT_EQ(SdkGetTestValue(669), 0u);
    for (uint32_t number : {666u, 667u, 668u}) {
        EXPECT_TRUE(SdkSetTestValue(number, number * 2));
        EXPECT_EQ(SdkGetTestValue(number), number * 2);
    }
    for (uint32_t level : {0u, 254u, 255u, 256u}) {
        SdkSetTestValue(kSdkTestLogLevel, level);
        Capture([] { SdkLog("line %d\n", 5); });
        EXPECT_EQ(log, level == 255 ? "line 5\n" : "") << level;
    }
    SdkKeyValueTable values;
    SetSdkLogValues(&values);
    SdkSetTestValue(kSdkTestLogLevel, 255);
    Capture([] { SdkLog("silent: the table says nothing\n"); });
    EXPECT_EQ(log, "");
    values.SetValue(kSdkKeyLogLevel, 255);
    SdkSetTestValue(kSdkTestLogLevel, 0);
    Capture([] { SdkLog("%s\n", "the table counts"); });
    EXPECT_EQ(log, "the table counts\n");
    SetSdkLogValues(nullptr);
}

}  // namespace
}  // namespace clipfio
