// The settings in force of a clip, as the module tells them in a snapshot.
#pragma once

#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "host/clip.h"

namespace clipfio::host {

struct Look {
    std::string decoder;                        // the decoder library's version text; empty when it is not known
    std::map<std::string, std::string> values;  // by key, as the module writes them
};

// The text of a snapshot: entries "key=value|".
[[nodiscard]] Look ParseLook(const std::string& snapshot);

// The look of an open clip, through an editing pass that applies nothing: as the module's text, and read. The pass is
// then ready for its dialog. Throw Failure.
[[nodiscard]] std::string GatherSnapshot(Clip& clip);
[[nodiscard]] Look GatherLook(Clip& clip);

// The decode-properties file of a clip, there or not, as the module names it; empty where the module gives it none.
[[nodiscard]] std::string SettingsFileOf(const std::string& clip_path);
[[nodiscard]] bool HasSettingsFile(const std::string& clip_path);

// A value with its type: a number for floats and choices, true or false for switches, null for what is no value.
[[nodiscard]] nlohmann::ordered_json TypedValue(const std::string& key, const std::string& text);
[[nodiscard]] nlohmann::ordered_json TypedValues(const Look& look);

// {"source", "file", "values"}: where the settings come from, and what they are.
[[nodiscard]] nlohmann::ordered_json SettingsEntry(const std::string& clip_path, const Look& look);

// For people: the settings but the curves a line each, with the names of choices, then a line for each curve.
[[nodiscard]] std::string DescribeLook(const Look& look, const std::string& indent);

}  // namespace clipfio::host
