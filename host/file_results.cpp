#include <exception>
#include <nlohmann/json.hpp>
#include <utility>

#include "host/command.h"
#include "host/console.h"
#include "host/failure.h"
#include "host/look.h"
#include "host/numbers.h"
#include "settings/property_table.h"

namespace clipfio::host {

FileResults::FileResults(bool json)
    : json_(json), files_(std::make_unique<nlohmann::ordered_json>(nlohmann::ordered_json::array())) {}

FileResults::~FileResults() = default;

void FileResults::Add(const std::string& path, const std::function<std::string(nlohmann::ordered_json& entry)>& work) {
    nlohmann::ordered_json entry = {{"path", path}, {"error", nullptr}};
    try {
        const std::string text = work(entry);
        if (!json_ && !WriteStandardOutput(text.data(), text.size())) return;
    } catch (const UsageError&) {
        throw;
    } catch (const std::exception& failure) {
        failed_ = true;
        Say(path + ": " + failure.what());
        entry = {{"path", path}, {"error", failure.what()}};
    }
    files_->push_back(std::move(entry));
}

int FileResults::Finish() {
    if (json_) {
        const nlohmann::ordered_json all = {{"schema", 1}, {"files", std::move(*files_)}};
        const std::string text = all.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
        static_cast<void>(WriteStandardOutput(text.data(), text.size()));  // a reader that left has seen enough
    }
    return failed_ ? kExitFailed : kExitDone;
}

nlohmann::ordered_json TypedValue(const std::string& key, const std::string& text) {
    const PropertyRow* row = FindProperty(key);
    if (row == nullptr) return nullptr;
    if (row->kind == PropertyKind::Boolean) return text == "1";
    if (row->kind == PropertyKind::Float || row->kind == PropertyKind::Coordinate) {
        const auto number = ReadNumber<double>(text);
        return number ? nlohmann::ordered_json(*number) : nlohmann::ordered_json(nullptr);
    }
    const auto number = ReadNumber<int32_t>(text);
    return number ? nlohmann::ordered_json(*number) : nlohmann::ordered_json(nullptr);
}

nlohmann::ordered_json TypedValues(const Look& look) {
    auto values = nlohmann::ordered_json::object();
    for (std::size_t rank = 0; rank < kPropertyCount; ++rank) {
        const std::string key(PropertyAtRank(rank).key);
        const auto text = look.values.find(key);
        values[key] = text != look.values.end() ? TypedValue(key, text->second) : nlohmann::ordered_json(nullptr);
    }
    return values;
}

nlohmann::ordered_json SettingsEntry(const std::string& clip_path, const Look& look) {
    const bool from_file = HasSettingsFile(clip_path);
    return {{"source", from_file ? "file" : "clip"},
            {"file", from_file ? nlohmann::ordered_json(SettingsFileOf(clip_path)) : nlohmann::ordered_json(nullptr)},
            {"values", TypedValues(look)}};
}

}  // namespace clipfio::host
