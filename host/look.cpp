#include "host/look.h"

#include <algorithm>
#include <filesystem>

#include "host/memory_stream.h"
#include "host/numbers.h"
#include "host/output_file.h"
#include "host/result_text.h"
#include "platform/files.h"
#include "platform/text.h"
#include "settings/property_table.h"

namespace clipfio::host {
namespace {

constexpr std::size_t kNameColumn = 24;

std::string Padded(std::string text, std::size_t width) {
    if (text.size() < width) text.resize(width, ' ');
    return text;
}

const std::string* Find(const Look& look, std::string_view key) {
    const auto at = look.values.find(std::string(key));
    return at == look.values.end() ? nullptr : &at->second;
}

std::string ChoiceName(const PropertyRow& row, const std::string& text) {
    const auto number = ReadNumber<int32_t>(text);
    for (const OfferedValue& offered : row.offered) {
        if (number && static_cast<int32_t>(offered.value) == *number && offered.text != text) {
            return " (" + std::string(offered.text) + ")";
        }
    }
    return {};
}

std::string CurveLine(const Look& look, std::string_view name) {
    std::string line;
    for (std::size_t i = 0; i < kCurveCoordinateCount; i += 2) {
        const std::string* x = Find(look, PropertyKey(name, i));
        const std::string* y = Find(look, PropertyKey(name, i + 1));
        if (x == nullptr || y == nullptr) return {};
        line += (i > 0 ? "  " : "") + *x + "," + *y;
    }
    return line;
}

// The module's own reading of names, which takes no extension with a blank in it.
std::size_t NameStart(const WString& path) {
    const std::size_t separator = path.find_last_of(W(":\\/"));
    return separator == WString::npos ? 0 : separator + 1;
}

std::size_t ExtensionStart(const WString& path) {
    static const WString kBlanks = platform::Wide(
        " \t\n\v\f\r\u0085\u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009"
        "\u200A\u2028\u2029\u202F\u205F\u3000");
    const std::size_t dot = path.rfind(W('.'));
    const bool is_extension =
        dot != WString::npos && dot >= NameStart(path) && path.find_first_of(kBlanks, dot) == WString::npos;
    return is_extension ? dot : path.size();
}

WCHAR LowerAscii(WCHAR c) { return c >= W('A') && c <= W('Z') ? static_cast<WCHAR>(c - W('A') + W('a')) : c; }

}  // namespace

Look ParseLook(const std::string& snapshot) {
    Look look;
    std::size_t at = 0;
    while (at < snapshot.size()) {
        const std::size_t equals = snapshot.find('=', at);
        if (equals == std::string::npos) break;
        const std::size_t end = std::min(snapshot.find('|', equals), snapshot.size());
        const std::string key = snapshot.substr(at, equals - at);
        const std::string value = snapshot.substr(equals + 1, end - equals - 1);
        if (FindProperty(key) != nullptr) look.values[key] = value;
        if (key == "R3DSDK Version") look.decoder = value;
        at = end + 1;
    }
    return look;
}

std::string GatherSnapshot(Clip& clip) {
    MemoryStream snapshot;
    Require(clip.Properties().BeginProperties(), "the settings cannot be read");
    Require(clip.Properties().GatherProperties(&snapshot), "the settings cannot be read");
    return snapshot.Bytes();
}

Look GatherLook(Clip& clip) { return ParseLook(GatherSnapshot(clip)); }

std::string SettingsFileOf(const std::string& clip_path) {
    const WString path = platform::Wide(clip_path);
    const std::size_t name = NameStart(path);
    const WString file = path.substr(0, ExtensionStart(path)) + W(".KtDecProp");
    const bool is_clip = file.size() == path.size() && std::ranges::equal(file, path, {}, LowerAscii, LowerAscii);
    return name == path.size() || file.size() >= MAX_PATH || is_clip ? std::string() : platform::Utf8(file);
}

bool HasSettingsFile(const std::string& clip_path) {
    std::error_code ignored;
    return std::filesystem::is_regular_file(PathFromUtf8(SettingsFileOf(clip_path)), ignored);
}

std::string DescribeLook(const Look& look, const std::string& indent) {
    std::string lines;
    for (std::size_t rank = 0; rank < kPropertyCount; ++rank) {
        const PropertyRow& row = PropertyAtRank(rank);
        const std::string* text = Find(look, row.key);
        if (text == nullptr || row.kind == PropertyKind::Coordinate) continue;
        lines += indent + Padded(std::string(row.key), kNameColumn) + *text + ChoiceName(row, *text) + "\n";
    }
    for (const CurveRow& curve : kCurveTable) {
        const std::string line = CurveLine(look, curve.name);
        if (!line.empty()) lines += indent + Padded(std::string(curve.name), kNameColumn) + line + "\n";
    }
    return lines;
}

}  // namespace clipfio::host
