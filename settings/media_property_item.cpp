#include "settings/media_property_item.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <sstream>

#include "kernel/guard.h"
#include "settings/entry_stream.h"
#include "settings/property_items.h"

namespace clipfio {
namespace {

// `long` differs between the targets: numbers outside 32 bits become the nearest one inside on both.
int32_t ParseInteger(const char* text) noexcept {
    constexpr long kLowest = std::numeric_limits<int32_t>::min();
    constexpr long kHighest = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::clamp(std::strtol(text, nullptr, 10), kLowest, kHighest));
}

void Parse(const EntrySource& source, float& out) noexcept { out = static_cast<float>(source.Number()); }
void Parse(const EntrySource& source, uint32_t& out) noexcept {
    out = static_cast<uint32_t>(ParseInteger(source.Text().data()));
}
void Parse(const EntrySource& source, bool& out) noexcept { out = ParseInteger(source.Text().data()) == 1; }

void Format(std::ostream& out, float value) { out << value; }
void Format(std::ostream& out, uint32_t value) { out << static_cast<int32_t>(value); }
void Format(std::ostream& out, bool value) { out << (value ? '1' : '0'); }

// The table's offsets against the record: a fresh record holds each row's default. It alone knows a third colour
// version, which no clip is set to by hand.
constexpr bool DefaultsAreThoseOfTheRecord() {
    const auto bytes = std::bit_cast<std::array<uint8_t, sizeof(DecodeSettingsRecord)>>(DecodeSettingsRecord{});
    for (const PropertyRow& row : kPropertyTable) {
        const size_t at = row.recordOffset;
        const uint32_t word = row.kind == PropertyKind::Boolean
                                  ? bytes[at]
                                  : bytes[at] | uint32_t{bytes[at + 1]} << 8 | uint32_t{bytes[at + 2]} << 16 |
                                        uint32_t{bytes[at + 3]} << 24;
        const bool isFloat = row.kind == PropertyKind::Float || row.kind == PropertyKind::Coordinate;
        const float value = isFloat ? std::bit_cast<float>(word) : static_cast<float>(word);
        const bool isColorVersion = at == offsetof(DecodeSettingsRecord, colorVersion);
        if (value != (isColorVersion ? 3.0f : row.defaultValue)) return false;
    }
    return true;
}
static_assert(DefaultsAreThoseOfTheRecord());

}  // namespace

HRESULT MediaPropertyItem::Initialize() noexcept { return S_OK; }

void MediaPropertyItem::AdvanceState(bool sameValue) noexcept {
    switch (GetState()) {
        case ItemState::Unset:
            SetState(ItemState::Loaded);
            break;
        case ItemState::Mixed:
            break;
        default:
            SetState(sameValue ? ItemState::Agreed : ItemState::Mixed);
    }
}

template <class Branch, class T>
void ValueItem<Branch, T>::Take(T newValue) noexcept {
    AdvanceState(SameValue(value.Get(), newValue));
    value.Set(newValue);
}

template <class Branch, class T>
bool ValueItem<Branch, T>::SetValue(T newValue) noexcept {
    if (SameValue(value.Get(), newValue)) return false;
    value.Set(newValue);
    SetState(ItemState::Changed);
    return true;
}

template <class Branch, class T>
HRESULT ValueItem<Branch, T>::LoadFromSettings(const DecodeSettingsRecord& record) noexcept {
    T field{};
    const HRESULT hr = static_cast<const Branch*>(this)->GetSetting(field, record);
    if (SUCCEEDED(hr)) Take(field);
    return hr;
}

template <class Branch, class T>
HRESULT ValueItem<Branch, T>::StoreToSettings(DecodeSettingsRecord& record) const noexcept {
    if (GetState() != ItemState::Unset) static_cast<const Branch*>(this)->SetSetting(record, value.Get());
    return S_OK;
}

template <class Branch, class T>
HRESULT ValueItem<Branch, T>::CopyFrom(const MediaPropertyItem& other) noexcept {
    const auto* source = dynamic_cast<const Branch*>(&other);
    if (!source) return E_UNEXPECTED;
    SetState(source->GetState());
    SetValue(source->GetValue());
    return S_OK;
}

template <class Branch, class T>
HRESULT ValueItem<Branch, T>::WriteToStream(IStream* stream) const noexcept {
    if (GetState() == ItemState::Unset) return S_OK;
    return Guarded([&] {
        std::ostringstream entry;
        entry << GetName() << '=';
        Format(entry, value.Get());
        entry << '|';
        return entry ? WriteText(stream, entry.str()) : E_OUTOFMEMORY;
    });
}

template <class Branch, class T>
HRESULT ValueItem<Branch, T>::ReadFromStream(EntrySource& source) noexcept {
    const HRESULT hr = source.ReadUntil('|');
    T parsed{};
    Parse(source, parsed);
    Take(parsed);
    return hr;
}

template class ValueItem<FloatItem, float>;
template class ValueItem<BooleanItem, bool>;
template class ValueItem<ComboBoxItem, uint32_t>;

HRESULT FloatItem::Initialize() noexcept {
    GetLimits(minimum, maximum, defaultValue);
    return S_OK;
}

void Coordinate::GetLimits(float& lowest, float& highest, float& initial) const noexcept {
    lowest = 0.0f;
    highest = 1.0f;
    initial = static_cast<float>(index / 2) * 0.25f;
}

void Coordinate::SetIndex(int32_t newIndex) noexcept {
    index = newIndex;
    const std::string_view base = GetBaseName();
    char* out = std::copy_n(base.data(), base.size(), name);
    *out++ = '[';
    out = std::to_chars(out, name + sizeof name - 2, newIndex).ptr;
    *out++ = ']';
    *out = '\0';
}

HRESULT Coordinate::ReadFrom(const DecodeSettingsRecord& record, size_t curveOffset, float& out) const noexcept {
    if (index < 0 || index >= static_cast<int32_t>(kCurveCoordinateCount)) return E_UNEXPECTED;
    out = LoadField<float>(record, curveOffset + sizeof(float) * static_cast<size_t>(index));
    return S_OK;
}

HRESULT Coordinate::WriteTo(DecodeSettingsRecord& record, size_t curveOffset, float newValue) const noexcept {
    if (index < 0 || index >= static_cast<int32_t>(kCurveCoordinateCount)) return E_UNEXPECTED;
    StoreField(record, curveOffset + sizeof(float) * static_cast<size_t>(index), newValue);
    return S_OK;
}

}  // namespace clipfio
