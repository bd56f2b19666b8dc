// The 69 decode settings, as one table: keys, places in the decoder's record, limits, offered values, dialog controls.
// Everything that knows a setting by name is made from it. Constant data; any thread.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/base.h"

namespace clipfio {

enum class PropertyKind : uint8_t {
    Float,
    Coordinate,   // one x or y of a curve point; a float
    Boolean,      // a byte, 0 or 1
    StringCombo,  // a 32-bit number with a named choice
    IntCombo,     // a 64-bit field holding a number, chosen from a list of numbers
};

// A row of a combo box. The offered values steer the combo box only: clips and files carry others as well.
struct OfferedValue {
    uint32_t value;
    uint32_t stringId;      // string resource of `text`; 0 where the text is the number itself
    std::string_view text;  // English
};

struct OfferedValues {
    const OfferedValue* data = nullptr;
    size_t count = 0;
    constexpr const OfferedValue* begin() const noexcept { return data; }
    constexpr const OfferedValue* end() const noexcept { return data + count; }
};

// Ids of the dialog's controls; 0 where a setting has none of that sort.
struct PropertyControls {
    uint16_t control = 0;  // slider, curve, combo box, or the check box of a boolean
    uint16_t edit = 0;     // edit box of a slider; of a curve, that of x
    uint16_t yEdit = 0;    // edit box of a curve's y
    uint16_t check = 0;    // check box that applies the setting to all clips
};

struct PropertyKey {
    char text[24] = {};  // zero-terminated
    uint8_t length = 0;  // characters
    constexpr explicit PropertyKey(std::string_view name) noexcept {
        for (const char c : name) text[length++] = c;
    }
    // "name[index]", for an index of one digit.
    constexpr PropertyKey(std::string_view name, size_t index) noexcept : PropertyKey(name) {
        text[length++] = '[';
        text[length++] = static_cast<char>('0' + index);
        text[length++] = ']';
    }
    constexpr operator std::string_view() const noexcept { return {text, length}; }
};

struct PropertyRow {
    PropertyKey key;
    PropertyKind kind;
    uint16_t recordOffset;  // bytes into DecodeSettingsRecord
    float minimum = 0.0f;   // floats only
    float maximum = 0.0f;
    float defaultValue = 0.0f;  // every kind; exact in a float
    PropertyControls controls;
    OfferedValues offered;  // combos only
    std::string_view help;
};

// A curve of five points, x then y: ten coordinates that follow each other in the record.
struct CurveRow {
    std::string_view name;  // the keys are "name[0]" to "name[9]"
    uint16_t recordOffset;
    PropertyControls controls;
    std::string_view help;
};

inline constexpr size_t kCurvePointCount = 5;
inline constexpr size_t kCurveCoordinateCount = 2 * kCurvePointCount;

namespace property_table {

template <size_t N>
constexpr OfferedValues Offer(const OfferedValue (&rows)[N]) noexcept {
    return {rows, N};
}

inline constexpr OfferedValue kColorVersions[] = {{1, 126, "1"}, {2, 127, "2"}};
inline constexpr OfferedValue kImageDetails[] = {{0, 1103, "Low"}, {1, 1122, "Medium"}, {2, 1123, "High"}};
inline constexpr OfferedValue kOlpfCompensations[] = {
    {0, 1124, "Off"}, {1, 1125, "Low"}, {2, 1126, "Medium"}, {3, 1127, "High"}};
inline constexpr OfferedValue kDenoises[] = {{0, 119, "Off"},    {1, 120, "Minimum"}, {2, 121, "Milder"},
                                             {3, 122, "Mild"},   {4, 123, "Medium"},  {5, 124, "Strong"},
                                             {6, 125, "Maximum"}};
inline constexpr OfferedValue kGammaCurves[] = {
    {0, 112, "Linear"},     {1, 113, "Rec. 709"},   {2, 114, "RED space"},    {3, 115, "RED log"},
    {4, 128, "PD log 685"}, {5, 129, "PD log 985"}, {6, 130, "Custom PD log"}};
inline constexpr OfferedValue kColorSpaces[] = {
    {0, 116, "Camera RGB"}, {1, 117, "Rec. 709"}, {2, 118, "RED space"}, {3, 131, "RED color"}};
inline constexpr OfferedValue kIsoValues[] = {
    {50, 0, "50"},     {80, 0, "80"},     {100, 0, "100"},   {125, 0, "125"},    {160, 0, "160"},   {200, 0, "200"},
    {250, 0, "250"},   {320, 0, "320"},   {400, 0, "400"},   {500, 0, "500"},    {640, 0, "640"},   {800, 0, "800"},
    {1000, 0, "1000"}, {1280, 0, "1280"}, {1600, 0, "1600"}, {2000, 0, "2000"},  {2500, 0, "2500"}, {3200, 0, "3200"},
    {4000, 0, "4000"}, {5000, 0, "5000"}, {6400, 0, "6400"}, {12800, 0, "12800"}};

constexpr PropertyRow Float(std::string_view key, float minimum, float maximum, float defaultValue, uint16_t offset,
                            uint16_t slider, uint16_t edit, uint16_t check, std::string_view help) noexcept {
    return {PropertyKey(key), PropertyKind::Float,      offset, minimum, maximum,
            defaultValue,     {slider, edit, 0, check}, {},     help};
}
constexpr PropertyRow Combo(std::string_view key, PropertyKind kind, float defaultValue, uint16_t offset,
                            uint16_t combo, OfferedValues offered, std::string_view help) noexcept {
    return {PropertyKey(key), kind, offset, 0.0f, 0.0f, defaultValue, {combo, 0, 0, 0}, offered, help};
}

inline constexpr PropertyRow kFloats[] = {
    Float("ColorTemperature", 1700, 100000, 5600, 12, 1012, 1013, 1085, "White balance, in kelvin."),
    Float("Tint", -100, 100, 0, 16, 1018, 1019, 1088, "White balance between green (below 0) and magenta."),
    Float("ExposureCompensation", -7, 7, 0, 20, 1020, 1021, 1089, "Exposure, in stops."),
    Float("GainRed", 0, 10, 1, 24, 1028, 1029, 1090, "Factor on the red channel."),
    Float("GainGreen", 0, 10, 1, 28, 1030, 1031, 1091, "Factor on the green channel."),
    Float("GainBlue", 0, 10, 1, 32, 1032, 1033, 1092, "Factor on the blue channel."),
    Float("Saturation", 0, 4, 1, 36, 1034, 1035, 1093, "Colourfulness; 0 is grey."),
    Float("Contrast", -1, 1, 0, 40, 1036, 1037, 1094, "Contrast about middle grey."),
    Float("Brightness", -10, 10, 0, 44, 1038, 1039, 1095, "Brightness of the middle tones."),
    Float("DRX", 0, 1, 0, 48, 1040, 1041, 1096, "Rebuilding of blown highlights; 0 is off."),
    Float("Shadow", -2, 2, 0, 148, 1043, 1087, 1107, "Lift of the darkest tones."),
    Float("FLUT", -8, 8, 0, 152, 1114, 1115, 1112, "Exposure behind the look, in stops."),
    Float("LggLiftRed", -1, 1, 0, 276, 1189, 1190, 1187, "Lift of the red channel."),
    Float("LggLiftGreen", -1, 1, 0, 288, 1193, 1194, 1191, "Lift of the green channel."),
    Float("LggLiftBlue", -1, 1, 0, 300, 1197, 1198, 1195, "Lift of the blue channel."),
    Float("LggGammaRed", 0, 4, 1, 280, 1204, 1205, 1202, "Gamma of the red channel."),
    Float("LggGammaGreen", 0, 4, 1, 292, 1208, 1209, 1206, "Gamma of the green channel."),
    Float("LggGammaBlue", 0, 4, 1, 304, 1212, 1213, 1210, "Gamma of the blue channel."),
    Float("LggGainRed", 0, 2, 1, 284, 1218, 1219, 1216, "Gain of the red channel, behind lift and gamma."),
    Float("LggGainGreen", 0, 2, 1, 296, 1222, 1223, 1220, "Gain of the green channel, behind lift and gamma."),
    Float("LggGainBlue", 0, 2, 1, 308, 1226, 1227, 1224, "Gain of the blue channel, behind lift and gamma."),
};

// The dialog has no controls for the gamma curve and the colour space, though they have ids.
inline constexpr PropertyRow kOthers[] = {
    Combo("ImageGammaCurve", PropertyKind::StringCombo, 12, 64, 1045, Offer(kGammaCurves),
          "Transfer curve; frames are always decoded in one that their reader picks."),
    Combo("ImageColorSpace", PropertyKind::StringCombo, 11, 68, 1047, Offer(kColorSpaces),
          "Colour space; frames are always decoded in Rec. 709."),
    Combo("ImageDetail", PropertyKind::StringCombo, 2, 136, 1080, Offer(kImageDetails), "Detail of the demosaicing."),
    Combo("ImageOLPFCompensation", PropertyKind::StringCombo, 0, 140, 1082, Offer(kOlpfCompensations),
          "Sharpening against the sensor's low-pass filter."),
    Combo("ImageDenoise", PropertyKind::StringCombo, 0, 144, 1084, Offer(kDenoises), "Noise reduction."),
    Combo("ColorVersion", PropertyKind::StringCombo, 2, 8, 1117, Offer(kColorVersions),
          "Version of the colour science."),
    Combo("ImageISO", PropertyKind::IntCombo, 320, 56, 1086, Offer(kIsoValues), "Sensitivity, as an ISO number."),
    {PropertyKey("DEB"), PropertyKind::Boolean, 132, 0.0f, 0.0f, 0.0f, {1231, 0, 0, 0}, {}, "Dragon enhanced blacks."},
};

}  // namespace property_table

inline constexpr CurveRow kCurveTable[] = {
    {"UserCurve", 92, {1049, 1118, 1119, 1097}, "Luma curve: x (even index) or y (odd) of a point."},
    {"UserCurveRed", 156, {1132, 1135, 1137, 1131}, "Red curve: x (even index) or y (odd) of a point."},
    {"UserCurveGreen", 196, {1140, 1143, 1145, 1139}, "Green curve: x (even index) or y (odd) of a point."},
    {"UserCurveBlue", 236, {1150, 1153, 1155, 1149}, "Blue curve: x (even index) or y (odd) of a point."},
};

inline constexpr size_t kFloatCount = std::size(property_table::kFloats);
inline constexpr size_t kCurveCount = std::size(kCurveTable);
inline constexpr size_t kFirstCoordinateRow = kFloatCount;
inline constexpr size_t kFirstOtherRow = kFloatCount + kCurveCount * kCurveCoordinateCount;
inline constexpr size_t kPropertyCount = kFirstOtherRow + std::size(property_table::kOthers);

namespace property_table {

constexpr PropertyRow Coordinate(size_t curve, size_t index) noexcept {
    const CurveRow& row = kCurveTable[curve];
    return {PropertyKey(row.name, index),
            PropertyKind::Coordinate,
            static_cast<uint16_t>(row.recordOffset + 4 * index),
            0.0f,
            1.0f,
            static_cast<float>(index / 2) * 0.25f,
            row.controls,
            {},
            row.help};
}

constexpr PropertyRow Row(size_t row) noexcept {
    if (row < kFirstCoordinateRow) return kFloats[row];
    if (row >= kFirstOtherRow) return kOthers[row - kFirstOtherRow];
    const size_t coordinate = row - kFirstCoordinateRow;
    return Coordinate(coordinate / kCurveCoordinateCount, coordinate % kCurveCoordinateCount);
}

template <size_t... Rows>
constexpr std::array<PropertyRow, sizeof...(Rows)> Expand(std::index_sequence<Rows...>) noexcept {
    return {Row(Rows)...};
}

}  // namespace property_table

// All settings: the floats, the coordinates of the four curves in turn, then the combos and the boolean.
inline constexpr std::array<PropertyRow, kPropertyCount> kPropertyTable =
    property_table::Expand(std::make_index_sequence<kPropertyCount>());

namespace property_table {

constexpr std::array<uint8_t, kPropertyCount> OrderByKey() noexcept {
    std::array<uint8_t, kPropertyCount> order{};
    for (size_t row = 0; row < kPropertyCount; ++row) {
        size_t place = row;
        for (; place > 0; --place) {
            if (std::string_view(kPropertyTable[order[place - 1]].key) < kPropertyTable[row].key) break;
            order[place] = order[place - 1];
        }
        order[place] = static_cast<uint8_t>(row);
    }
    return order;
}

}  // namespace property_table

// Row numbers in ascending order of the keys' bytes: the order of the settings file, and of every walk over settings.
// A place in this order is called a rank.
inline constexpr std::array<uint8_t, kPropertyCount> kMapOrder = property_table::OrderByKey();

constexpr const PropertyRow& PropertyAtRank(size_t rank) noexcept { return kPropertyTable[kMapOrder[rank]]; }

// The rank of a key, compared byte for byte; kPropertyCount for a key that no setting has.
constexpr size_t FindPropertyRank(std::string_view key) noexcept {
    size_t low = 0;
    size_t high = kPropertyCount;
    while (low < high) {
        const size_t middle = low + (high - low) / 2;
        const int order = std::string_view(PropertyAtRank(middle).key).compare(key);
        if (order == 0) return middle;
        (order < 0 ? low : high) = order < 0 ? middle + 1 : middle;
    }
    return kPropertyCount;
}

// The row of a key, or null.
constexpr const PropertyRow* FindProperty(std::string_view key) noexcept {
    const size_t rank = FindPropertyRank(key);
    return rank < kPropertyCount ? &PropertyAtRank(rank) : nullptr;
}

namespace property_table {

constexpr size_t kRecordBytes = 384;
constexpr size_t kLongestKey = 21;

constexpr size_t FieldBytes(PropertyKind kind) noexcept {
    return kind == PropertyKind::Boolean ? 1 : kind == PropertyKind::IntCombo ? 8 : 4;
}

constexpr bool KeysAreUniqueAndSorted() noexcept {
    for (size_t rank = 1; rank < kPropertyCount; ++rank) {
        if (!(std::string_view(PropertyAtRank(rank - 1).key) < PropertyAtRank(rank).key)) return false;
    }
    return true;
}

constexpr bool FieldsLieApartInTheRecord() noexcept {
    std::array<bool, kRecordBytes> taken{};
    for (const PropertyRow& row : kPropertyTable) {
        const size_t bytes = FieldBytes(row.kind);
        if (row.recordOffset % bytes != 0 || row.recordOffset + bytes > kRecordBytes) return false;
        for (size_t i = row.recordOffset; i < row.recordOffset + bytes; ++i) {
            if (taken[i]) return false;
            taken[i] = true;
        }
    }
    return true;
}

}  // namespace property_table

static_assert(kFloatCount == 21 && kCurveCount == 4 && kPropertyCount == 69);
static_assert(property_table::KeysAreUniqueAndSorted());
static_assert(property_table::FieldsLieApartInTheRecord());
static_assert(PropertyAtRank(0).key.text[0] == 'B' && FindPropertyRank("UserCurve[9]") == kPropertyCount - 1);

}  // namespace clipfio
