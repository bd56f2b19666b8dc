#include "host/setting_edits.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "host/failure.h"
#include "host/numbers.h"
#include "settings/properties_panel.h"
#include "settings/property_table.h"

namespace clipfio::host {
namespace {

char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool SameIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, LowerAscii, LowerAscii);
}

const PropertyRow& RowOf(const std::string& key) {
    if (const PropertyRow* row = FindProperty(key)) return *row;
    std::string message = "there is no setting '" + key + "'";
    for (const PropertyRow& row : kPropertyTable) {
        if (SameIgnoringCase(row.key, key)) message += "; did you mean " + std::string(row.key) + "?";
    }
    throw UsageError(message + " (clipfio settings --keys lists them all)");
}

// Of a choice.
std::string DefaultText(const PropertyRow& row) { return std::to_string(FreshChoice(row)); }

bool OffersDefault(const PropertyRow& row) {
    return std::ranges::any_of(row.offered,
                               [&](const OfferedValue& offered) { return offered.value == FreshChoice(row); });
}

std::string Limits(const PropertyRow& row) {
    if (row.kind == PropertyKind::Boolean) return "0 or 1 (off, on)";
    if (row.offered.count == 0) return NumberText(row.minimum) + " to " + NumberText(row.maximum);
    std::string text;
    for (const OfferedValue& offered : row.offered) {
        const std::string number = std::to_string(offered.value);
        text += (text.empty() ? "" : ", ") + number;
        if (offered.text != number) text += " (" + std::string(offered.text) + ")";
    }
    return OffersDefault(row) ? text : text + ", " + DefaultText(row) + " (the default)";
}

std::optional<std::string> Accept(const PropertyRow& row, const std::string& text) {
    switch (row.kind) {
        case PropertyKind::Float:
        case PropertyKind::Coordinate: {
            const auto number = ReadNumber<double>(text);  // the module takes it so
            if (!number || !(*number >= row.minimum && *number <= row.maximum)) return std::nullopt;
            return text;
        }
        case PropertyKind::Boolean:
            if (text == "1" || SameIgnoringCase(text, "on")) return "1";
            if (text == "0" || SameIgnoringCase(text, "off")) return "0";
            return std::nullopt;
        case PropertyKind::StringCombo:
        case PropertyKind::IntCombo:
            break;
    }
    for (const OfferedValue& offered : row.offered) {
        const std::string number = std::to_string(offered.value);
        if (text == number || SameIgnoringCase(text, offered.text)) return number;
    }
    if (text == DefaultText(row)) return text;
    return std::nullopt;
}

std::pair<std::string, std::string> ParseAssignment(const std::string& assignment) {
    const std::size_t equals = assignment.find('=');
    if (equals == std::string::npos) throw UsageError("--set: '" + assignment + "' is not of the form Key=Value");
    const std::string key = assignment.substr(0, equals);
    const std::string text = assignment.substr(equals + 1);
    const PropertyRow& row = RowOf(key);
    if (auto value = Accept(row, text)) return {key, std::move(*value)};
    throw UsageError(key + ": '" + text + "' is not among its values: " + Limits(row));
}

}  // namespace

SettingEdits ParseEdits(bool reset, const std::vector<std::string>& unset,
                        const std::vector<std::string>& assignments) {
    SettingEdits edits{reset, unset, {}};
    for (const std::string& key : unset) RowOf(key);
    for (const std::string& assignment : assignments) {
        edits.set.push_back(ParseAssignment(assignment));
        const std::string& key = edits.set.back().first;
        if (std::ranges::find(unset, key) != unset.end()) throw UsageError(key + " is both set and unset");
    }
    return edits;
}

std::string DescribeKeys() {
    std::string text;
    for (std::size_t rank = 0; rank < kPropertyCount; ++rank) {
        const PropertyRow& row = PropertyAtRank(rank);
        std::string key(row.key);
        key.resize(24, ' ');
        text += key + Limits(row) + "\n" + std::string(24, ' ') + std::string(row.help) + "\n";
    }
    return text;
}

}  // namespace clipfio::host
