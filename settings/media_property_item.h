// One setting of the look: its key, its field in the decoder's record, its value, and how that value stands to the
// clips being edited.
//
// The value and the state are words that decoding threads may read while the dialog's thread changes them; everything
// else of an item is fixed before a second thread sees it. Nothing here throws.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <new>
#include <string_view>

#include "platform/base.h"
#include "platform/com.h"
#include "r3dsdk/sdk_records.h"
#include "settings/property_table.h"
#include "settings/shared_word.h"

namespace clipfio {

class EntrySource;

enum class ItemState : uint32_t {
    Unset = 0,    // no value of its own: reaches neither a record nor a file
    Loaded = 1,   // one value was loaded
    Mixed = 2,    // loads gave different values
    Agreed = 3,   // loads gave the same value
    Changed = 4,  // set by the user
};

// Floats closer than this count as equal.
inline constexpr float kFloatTolerance = 0.0001f;
inline bool SameValue(float a, float b) noexcept { return std::fabs(a - b) < kFloatTolerance; }
inline bool SameValue(uint32_t a, uint32_t b) noexcept { return a == b; }
inline bool SameValue(bool a, bool b) noexcept { return a == b; }

// Room for any item.
inline constexpr size_t kItemBytes = 64;

class MediaPropertyItem {
  public:
    virtual ~MediaPropertyItem() = default;
    MediaPropertyItem& operator=(const MediaPropertyItem&) = delete;

    [[nodiscard]] virtual const char* GetName() const noexcept = 0;
    // A copy of all fields: in `place`, kItemBytes large, or on the heap when that is null. Null when out of memory.
    [[nodiscard]] virtual MediaPropertyItem* Clone(void* place) const noexcept = 0;
    virtual HRESULT Initialize() noexcept;
    virtual HRESULT LoadFromSettings(const DecodeSettingsRecord& record) noexcept = 0;
    virtual HRESULT StoreToSettings(DecodeSettingsRecord& record) const noexcept = 0;
    // Takes state and value; a value that differs makes the state Changed. E_UNEXPECTED for an item that holds another
    // type of value.
    virtual HRESULT CopyFrom(const MediaPropertyItem& other) noexcept = 0;
    // Writes "key=value|" with one call, or nothing while unset.
    virtual HRESULT WriteToStream(IStream* stream) const noexcept = 0;
    // Takes the value up to its "|". The result is that of the last read: S_FALSE at the end of the stream, which still
    // delivers the text so far.
    virtual HRESULT ReadFromStream(EntrySource& source) noexcept = 0;

    [[nodiscard]] ItemState GetState() const noexcept { return state.Get(); }
    void SetState(ItemState newState) noexcept { state.Set(newState); }

  protected:
    MediaPropertyItem() noexcept = default;
    MediaPropertyItem(const MediaPropertyItem&) noexcept = default;

    // The state after one more value has been loaded.
    void AdvanceState(bool sameValue) noexcept;

  private:
    SharedWord<ItemState> state = ItemState::Unset;
};

// What the branches have in common: a value of type T. A branch declares GetSetting and SetSetting itself, each at its
// own place among its virtual functions.
template <class Branch, class T>
class ValueItem : public MediaPropertyItem {
  public:
    HRESULT LoadFromSettings(const DecodeSettingsRecord& record) noexcept final;
    HRESULT StoreToSettings(DecodeSettingsRecord& record) const noexcept final;
    HRESULT CopyFrom(const MediaPropertyItem& other) noexcept final;
    HRESULT WriteToStream(IStream* stream) const noexcept final;
    HRESULT ReadFromStream(EntrySource& source) noexcept final;

    [[nodiscard]] T GetValue() const noexcept { return value.Get(); }
    // False, and nothing happens, when the value is the same; else the item is Changed. Limits are not applied.
    bool SetValue(T newValue) noexcept;

  private:
    void Take(T newValue) noexcept;

    SharedWord<T> value;
};

class FloatItem : public ValueItem<FloatItem, float> {
  public:
    HRESULT Initialize() noexcept final;

    virtual void GetLimits(float& lowest, float& highest, float& initial) const noexcept = 0;
    virtual HRESULT GetSetting(float& out, const DecodeSettingsRecord& record) const noexcept = 0;
    virtual HRESULT SetSetting(DecodeSettingsRecord& record, float newValue) const noexcept = 0;

    [[nodiscard]] float GetMinimum() const noexcept { return minimum; }
    [[nodiscard]] float GetMaximum() const noexcept { return maximum; }
    [[nodiscard]] float GetDefault() const noexcept { return defaultValue; }

  private:
    float minimum = 0.0f;
    float maximum = 0.0f;
    float defaultValue = 0.0f;
};

// The x or y of a curve point.
class Coordinate : public FloatItem {
  public:
    [[nodiscard]] const char* GetName() const noexcept final { return name; }
    void GetLimits(float& lowest, float& highest, float& initial) const noexcept final;
    [[nodiscard]] virtual const char* GetBaseName() const noexcept = 0;

    // Even: the x of point newIndex / 2, odd: its y. Composes the key "base[index]".
    void SetIndex(int32_t newIndex) noexcept;

  protected:
    // E_UNEXPECTED, and nothing happens, while the index is no place in a curve.
    HRESULT ReadFrom(const DecodeSettingsRecord& record, size_t curveOffset, float& out) const noexcept;
    HRESULT WriteTo(DecodeSettingsRecord& record, size_t curveOffset, float newValue) const noexcept;

  private:
    int32_t index = -1;
    char name[24] = {};
};

class BooleanItem : public ValueItem<BooleanItem, bool> {
  public:
    virtual HRESULT GetSetting(bool& out, const DecodeSettingsRecord& record) const noexcept = 0;
    virtual HRESULT SetSetting(DecodeSettingsRecord& record, bool newValue) const noexcept = 0;

    [[nodiscard]] bool GetDefault() const noexcept { return defaultValue; }

  private:
    bool defaultValue = false;
};

// Values outside the offered ones pass through unchanged.
class ComboBoxItem : public ValueItem<ComboBoxItem, uint32_t> {
  public:
    virtual HRESULT GetSetting(uint32_t& out, const DecodeSettingsRecord& record) const noexcept = 0;
    virtual HRESULT SetSetting(DecodeSettingsRecord& record, uint32_t newValue) const noexcept = 0;

    [[nodiscard]] uint64_t GetCount() const noexcept { return count; }  // rows in the table of offered values

  protected:
    ComboBoxItem(uint32_t initial, uint64_t rows) noexcept : defaultValue(initial), count(rows) {}

  private:
    uint32_t defaultValue;
    uint64_t count;
};

struct ValueRow {
    uint32_t value;
    uint32_t stringId;
};

class StringComboBoxItem : public ComboBoxItem {
  public:
    [[nodiscard]] const ValueRow* GetTable() const noexcept { return table; }

  protected:
    StringComboBoxItem(uint32_t initial, uint64_t rows, const ValueRow* offered) noexcept
        : ComboBoxItem(initial, rows), table(offered) {}

  private:
    const ValueRow* table;
};

class IntComboBoxItem : public ComboBoxItem {
  public:
    [[nodiscard]] const int64_t* GetTable() const noexcept { return table; }

  protected:
    IntComboBoxItem(uint32_t initial, uint64_t rows, const int64_t* offered) noexcept
        : ComboBoxItem(initial, rows), table(offered) {}

  private:
    const int64_t* table;
};

}  // namespace clipfio
