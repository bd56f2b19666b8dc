// The leaf classes of the settings, one for each row of the table, made from the rows.
#pragma once

#include <array>
#include <bit>
#include <cstring>
#include <new>

#include "settings/media_property_item.h"

namespace clipfio {

// The place of a key in kPropertyTable. An unknown key does not compile.
consteval size_t RowOf(std::string_view key) { return kMapOrder.at(FindPropertyRank(key)); }

template <class T>
T LoadField(const DecodeSettingsRecord& record, size_t offset) noexcept {
    T field;
    std::memcpy(&field, reinterpret_cast<const char*>(&record) + offset, sizeof field);
    return field;
}
template <class T>
void StoreField(DecodeSettingsRecord& record, size_t offset, T field) noexcept {
    std::memcpy(reinterpret_cast<char*>(&record) + offset, &field, sizeof field);
}

template <class Leaf>
MediaPropertyItem* CloneLeaf(const Leaf& leaf, void* place) noexcept {
    // NOLINTNEXTLINE(misc-redundant-expression): not on every target
    static_assert(sizeof(Leaf) <= kItemBytes && alignof(Leaf) <= alignof(std::max_align_t));
    return place ? new (place) Leaf(leaf) : new (std::nothrow) Leaf(leaf);
}

template <size_t Row>
class FloatLeaf final : public FloatItem {
    static constexpr const PropertyRow& kRow = kPropertyTable[Row];
    static_assert(kRow.kind == PropertyKind::Float);

  public:
    [[nodiscard]] const char* GetName() const noexcept override { return kRow.key.text; }
    [[nodiscard]] MediaPropertyItem* Clone(void* place) const noexcept override { return CloneLeaf(*this, place); }
    void GetLimits(float& lowest, float& highest, float& initial) const noexcept override {
        lowest = kRow.minimum;
        highest = kRow.maximum;
        initial = kRow.defaultValue;
    }
    HRESULT GetSetting(float& out, const DecodeSettingsRecord& record) const noexcept override {
        out = LoadField<float>(record, kRow.recordOffset);
        return S_OK;
    }
    HRESULT SetSetting(DecodeSettingsRecord& record, float newValue) const noexcept override {
        StoreField(record, kRow.recordOffset, newValue);
        return S_OK;
    }
};

template <size_t Curve>
class CoordinateLeaf final : public Coordinate {
    static constexpr const CurveRow& kRow = kCurveTable[Curve];

  public:
    [[nodiscard]] MediaPropertyItem* Clone(void* place) const noexcept override { return CloneLeaf(*this, place); }
    HRESULT GetSetting(float& out, const DecodeSettingsRecord& record) const noexcept override {
        return ReadFrom(record, kRow.recordOffset, out);
    }
    HRESULT SetSetting(DecodeSettingsRecord& record, float newValue) const noexcept override {
        return WriteTo(record, kRow.recordOffset, newValue);
    }
    [[nodiscard]] const char* GetBaseName() const noexcept override { return kRow.name.data(); }
};

template <size_t Row>
class BooleanLeaf final : public BooleanItem {
    static constexpr const PropertyRow& kRow = kPropertyTable[Row];
    static_assert(kRow.kind == PropertyKind::Boolean);

  public:
    [[nodiscard]] const char* GetName() const noexcept override { return kRow.key.text; }
    [[nodiscard]] MediaPropertyItem* Clone(void* place) const noexcept override { return CloneLeaf(*this, place); }
    HRESULT GetSetting(bool& out, const DecodeSettingsRecord& record) const noexcept override {
        out = LoadField<uint8_t>(record, kRow.recordOffset) != 0;
        return S_OK;
    }
    HRESULT SetSetting(DecodeSettingsRecord& record, bool newValue) const noexcept override {
        StoreField<uint8_t>(record, kRow.recordOffset, newValue);
        return S_OK;
    }
};

template <size_t Row>
class StringComboLeaf final : public StringComboBoxItem {
    static constexpr const PropertyRow& kRow = kPropertyTable[Row];
    static_assert(kRow.kind == PropertyKind::StringCombo);
    static constexpr auto kOffered = [] {
        std::array<ValueRow, kRow.offered.count> rows{};
        for (size_t i = 0; i < rows.size(); ++i) rows[i] = {kRow.offered.data[i].value, kRow.offered.data[i].stringId};
        return rows;
    }();

  public:
    StringComboLeaf() noexcept
        : StringComboBoxItem(static_cast<uint32_t>(kRow.defaultValue), kOffered.size(), kOffered.data()) {}
    [[nodiscard]] const char* GetName() const noexcept override { return kRow.key.text; }
    [[nodiscard]] MediaPropertyItem* Clone(void* place) const noexcept override { return CloneLeaf(*this, place); }
    HRESULT GetSetting(uint32_t& out, const DecodeSettingsRecord& record) const noexcept override {
        out = LoadField<uint32_t>(record, kRow.recordOffset);
        return S_OK;
    }
    HRESULT SetSetting(DecodeSettingsRecord& record, uint32_t newValue) const noexcept override {
        StoreField(record, kRow.recordOffset, newValue);
        return S_OK;
    }
};

// The record's field has 64 bits, of which the item knows the low half.
template <size_t Row>
class IntComboLeaf final : public IntComboBoxItem {
    static constexpr const PropertyRow& kRow = kPropertyTable[Row];
    static_assert(kRow.kind == PropertyKind::IntCombo);
    static constexpr auto kOffered = [] {
        std::array<int64_t, kRow.offered.count> rows{};
        for (size_t i = 0; i < rows.size(); ++i) rows[i] = kRow.offered.data[i].value;
        return rows;
    }();

  public:
    IntComboLeaf() noexcept
        : IntComboBoxItem(static_cast<uint32_t>(kRow.defaultValue), kOffered.size(), kOffered.data()) {}
    [[nodiscard]] const char* GetName() const noexcept override { return kRow.key.text; }
    [[nodiscard]] MediaPropertyItem* Clone(void* place) const noexcept override { return CloneLeaf(*this, place); }
    HRESULT GetSetting(uint32_t& out, const DecodeSettingsRecord& record) const noexcept override {
        out = static_cast<uint32_t>(LoadField<uint64_t>(record, kRow.recordOffset));
        return S_OK;
    }
    HRESULT SetSetting(DecodeSettingsRecord& record, uint32_t newValue) const noexcept override {
        StoreField<int64_t>(record, kRow.recordOffset, static_cast<int32_t>(newValue));
        return S_OK;
    }
};

// The class of a row that is no coordinate.
template <size_t Row, PropertyKind Kind = kPropertyTable[Row].kind>
struct LeafSelector;
template <size_t Row>
struct LeafSelector<Row, PropertyKind::Float> {
    using Type = FloatLeaf<Row>;
};
template <size_t Row>
struct LeafSelector<Row, PropertyKind::Boolean> {
    using Type = BooleanLeaf<Row>;
};
template <size_t Row>
struct LeafSelector<Row, PropertyKind::StringCombo> {
    using Type = StringComboLeaf<Row>;
};
template <size_t Row>
struct LeafSelector<Row, PropertyKind::IntCombo> {
    using Type = IntComboLeaf<Row>;
};
template <size_t Row>
using LeafOf = typename LeafSelector<Row>::Type;

using ColorTemperature = FloatLeaf<RowOf("ColorTemperature")>;
using Tint = FloatLeaf<RowOf("Tint")>;
using ExposureCompensation = FloatLeaf<RowOf("ExposureCompensation")>;
using GainRed = FloatLeaf<RowOf("GainRed")>;
using GainGreen = FloatLeaf<RowOf("GainGreen")>;
using GainBlue = FloatLeaf<RowOf("GainBlue")>;
using Saturation = FloatLeaf<RowOf("Saturation")>;
using Contrast = FloatLeaf<RowOf("Contrast")>;
using Brightness = FloatLeaf<RowOf("Brightness")>;
using DRX = FloatLeaf<RowOf("DRX")>;
using Shadow = FloatLeaf<RowOf("Shadow")>;
using FLUT = FloatLeaf<RowOf("FLUT")>;
using LggLiftRed = FloatLeaf<RowOf("LggLiftRed")>;
using LggLiftGreen = FloatLeaf<RowOf("LggLiftGreen")>;
using LggLiftBlue = FloatLeaf<RowOf("LggLiftBlue")>;
using LggGammaRed = FloatLeaf<RowOf("LggGammaRed")>;
using LggGammaGreen = FloatLeaf<RowOf("LggGammaGreen")>;
using LggGammaBlue = FloatLeaf<RowOf("LggGammaBlue")>;
using LggGainRed = FloatLeaf<RowOf("LggGainRed")>;
using LggGainGreen = FloatLeaf<RowOf("LggGainGreen")>;
using LggGainBlue = FloatLeaf<RowOf("LggGainBlue")>;
using UserCurveCoordinate = CoordinateLeaf<0>;
using UserCurveRedCoordinate = CoordinateLeaf<1>;
using UserCurveGreenCoordinate = CoordinateLeaf<2>;
using UserCurveBlueCoordinate = CoordinateLeaf<3>;
using DEB = BooleanLeaf<RowOf("DEB")>;
using ColorVersion = StringComboLeaf<RowOf("ColorVersion")>;
using ImageGammaCurve = StringComboLeaf<RowOf("ImageGammaCurve")>;
using ImageColorSpace = StringComboLeaf<RowOf("ImageColorSpace")>;
using ImageDetail = StringComboLeaf<RowOf("ImageDetail")>;
using ImageOLPFCompensation = StringComboLeaf<RowOf("ImageOLPFCompensation")>;
using ImageDenoise = StringComboLeaf<RowOf("ImageDenoise")>;
using ImageISO = IntComboLeaf<RowOf("ImageISO")>;

}  // namespace clipfio
