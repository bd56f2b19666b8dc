#include "settings/media_property_item.h"

#include "settings/entry_stream.h"
#include "settings/property_items.h"
#include "settings/settings_fixture.h"

namespace clipfio {
namespace {

enum class Load { Same, Other };

constexpr struct {
    ItemState before;
    Load load;
    ItemState after;
} kTransitions[] = {
    {ItemState::Unset, Load::Same, ItemState::Loaded},   {ItemState::Unset, Load::Other, ItemState::Loaded},
    {ItemState::Loaded, Load::Same, ItemState::Agreed},  {ItemState::Loaded, Load::Other, ItemState::Mixed},
    {ItemState::Agreed, Load::Same, ItemState::Agreed},  {ItemState::Agreed, Load::Other, ItemState::Mixed},
    {ItemState::Mixed, Load::Same, ItemState::Mixed},    {ItemState::Mixed, Load::Other, ItemState::Mixed},
    {ItemState::Changed, Load::Same, ItemState::Agreed}, {ItemState::Changed, Load::Other, ItemState::Mixed},
};

// Two values that an item of each branch tells apart, and how a file has them.
template <class Item>
struct Samples {
    static constexpr uint32_t kValues[] = {800, 801};
    static constexpr const char* kTexts[] = {"800|", "801|"};
};
template <class Item>
requires std::is_base_of_v<FloatItem, Item>
struct Samples<Item> {
    static constexpr float kValues[] = {2.5f, -7.0f};
    static constexpr const char* kTexts[] = {"2.5|", "-7|"};
};
template <>
struct Samples<DEB> {
    static constexpr bool kValues[] = {true, false};
    static constexpr const char* kTexts[] = {"1|", "0|"};
};

template <class Item>
Item MakeItem() {
    Item item;
    if constexpr (std::is_base_of_v<Coordinate, Item>) item.SetIndex(3);
    item.Initialize();
    return item;
}

template <class Item>
class MediaPropertyItemTest : public testing::Test {};
using Branches = testing::Types<Tint, UserCurveRedCoordinate, DEB, ImageDenoise, ImageISO>;
TYPED_TEST_SUITE(MediaPropertyItemTest, Branches);

TYPED_TEST(MediaPropertyItemTest, LoadingMovesTheStateAndTakesTheValue) {
    using S = Samples<TypeParam>;
    for (const bool fromStream : {false, true}) {
        for (const auto& row : kTransitions) {
            SCOPED_TRACE(testing::Message() << "from " << static_cast<int>(row.before) << " stream " << fromStream);
            auto item = MakeItem<TypeParam>();
            item.SetValue(S::kValues[0]);
            item.SetState(row.before);
            const int loaded = row.load == Load::Same ? 0 : 1;
            if (fromStream) {
                MemoryStream stream(S::kTexts[loaded]);
                EntrySource source(&stream, EntrySource::Reading::ByteByByte);
                EXPECT_EQ(item.ReadFromStream(source), S_OK);
            } else {
                DecodeSettingsRecord record;
                EXPECT_EQ(item.SetSetting(record, S::kValues[loaded]), S_OK);
                EXPECT_EQ(item.LoadFromSettings(record), S_OK);
            }
            EXPECT_EQ(item.GetState(), row.after);
            EXPECT_EQ(item.GetValue(), S::kValues[loaded]);
        }
    }
}

TYPED_TEST(MediaPropertyItemTest, OnlyADifferentValueIsAChange) {
    using S = Samples<TypeParam>;
    auto item = MakeItem<TypeParam>();
    item.SetValue(S::kValues[0]);
    item.SetState(ItemState::Mixed);
    EXPECT_FALSE(item.SetValue(S::kValues[0]));
    EXPECT_EQ(item.GetState(), ItemState::Mixed);
    EXPECT_TRUE(item.SetValue(S::kValues[1]));
    EXPECT_EQ(item.GetState(), ItemState::Changed);
    EXPECT_EQ(item.GetValue(), S::kValues[1]);
}

TEST(MediaPropertyItem, CopyRefusesAnotherBranch) {
    Tint floating;
    ImageISO combo;
    DEB boolean;
    combo.SetValue(5);
    EXPECT_EQ(floating.CopyFrom(combo), E_UNEXPECTED);
    EXPECT_EQ(boolean.CopyFrom(combo), E_UNEXPECTED);
    EXPECT_EQ(combo.CopyFrom(floating), E_UNEXPECTED);
    EXPECT_EQ(floating.GetState(), ItemState::Unset);
    EXPECT_EQ(combo.GetState(), ItemState::Changed);
    ImageDetail otherCombo;
    EXPECT_EQ(otherCombo.CopyFrom(combo), S_OK);
    EXPECT_EQ(otherCombo.GetValue(), 5u);
}

TEST(MediaPropertyItem, FloatsAgreeWithinTheTolerance) {
    for (const auto& [second, state] : {std::pair(1.00005f, ItemState::Agreed), std::pair(1.0002f, ItemState::Mixed)}) {
        Saturation item;
        DecodeSettingsRecord record;
        record.saturation = 1.0f;
        item.LoadFromSettings(record);
        record.saturation = second;
        item.LoadFromSettings(record);
        EXPECT_EQ(item.GetState(), state);
        EXPECT_EQ(item.GetValue(), second) << "the last loaded value stands";
    }
}

TEST(MediaPropertyItem, CoordinateWithoutPlaceTouchesNothing) {
    for (const int32_t index : {-1, 10, INT_MAX, INT_MIN}) {
        UserCurveGreenCoordinate item;
        if (index != -1) item.SetIndex(index);
        DecodeSettingsRecord record;
        item.SetValue(0.9f);
        EXPECT_EQ(item.StoreToSettings(record), S_OK);
        EXPECT_TRUE(SameRecord(record, DecodeSettingsRecord{}));
        EXPECT_EQ(item.LoadFromSettings(record), E_UNEXPECTED);
        EXPECT_EQ(item.GetValue(), 0.9f);
    }
}

TEST(MediaPropertyItem, IsoKeepsTheLowHalfAndExtendsTheSign) {
    ImageISO item;
    DecodeSettingsRecord record;
    record.imageIso = 0x1234567800000141u;
    item.LoadFromSettings(record);
    EXPECT_EQ(item.GetValue(), 321u);
    item.StoreToSettings(record);
    EXPECT_EQ(record.imageIso, 321u);
    item.SetValue(0xFFFFFFFEu);
    item.StoreToSettings(record);
    EXPECT_EQ(record.imageIso, 0xFFFFFFFFFFFFFFFEu);
}

}  // namespace
}  // namespace clipfio
