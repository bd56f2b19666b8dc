// clipfio settings: shows and edits the decode settings of clips.
#include <nlohmann/json.hpp>

#include "host/clip.h"
#include "host/command.h"
#include "host/console.h"
#include "host/failure.h"
#include "host/frame_options.h"
#include "host/look.h"
#include "host/settings_pass.h"

namespace clipfio::host {
namespace {

using Json = nlohmann::ordered_json;

struct Options {
    std::vector<std::string> clips;
    std::vector<std::string> set;
    std::vector<std::string> unset;
    std::string copy_from;
    bool reset = false;
    bool print = false;
    bool json = false;
    bool dry_run = false;
    bool keys = false;

    [[nodiscard]] bool AsksForMore() const {
        const bool names = !clips.empty() || !set.empty() || !unset.empty() || !copy_from.empty();
        return names || reset || print || json || dry_run;
    }
};

std::string DescribeChanges(const std::string& path, const PassResult& pass) {
    std::string text = path + (pass.written ? "\n" : " (not written)\n");
    bool changed = false;
    for (const auto& [key, after] : pass.after.values) {
        const auto before = pass.before.values.find(key);
        if (before != pass.before.values.end() && before->second == after) continue;
        changed = true;
        text += "  " + key + ": " + (before != pass.before.values.end() ? before->second : "unknown") + " -> " + after +
                "\n";
    }
    return changed ? text : text + "  nothing changes\n";
}

Json ChangesEntry(const PassResult& pass) {
    Json changes = Json::object();
    for (const auto& [key, after] : pass.after.values) {
        const auto before = pass.before.values.find(key);
        if (before != pass.before.values.end() && before->second == after) continue;
        const bool known = before != pass.before.values.end();
        changes[key] = {{"from", known ? TypedValue(key, before->second) : Json(nullptr)},
                        {"to", TypedValue(key, after)}};
    }
    return changes;
}

class SettingsRun {
  public:
    SettingsRun(Context& context, const Options& options)
        : context_(context), options_(options), edits_(ParseEdits(options.reset, options.unset, options.set)) {}

    int Run() {
        const InterruptScope interrupts;
        if (!options_.copy_from.empty()) ReadSource();
        FileResults results(options_.json);
        for (const std::string& path : options_.clips) {
            results.Add(path, [&](Json& entry) { return Work(path, entry); });
        }
        return results.Finish();
    }

  private:
    // Before the first clip is written. With no source there is nothing to do for any of them, and each says so.
    void ReadSource() {
        try {
            Clip source = OpenClip(context_, options_.copy_from);
            snapshot_ = GatherSnapshot(source);
        } catch (const Failure& failure) {
            source_error_ = failure.what();
        }
    }

    std::string Work(const std::string& path, Json& entry) {
        InterruptScope::Check();
        if (!source_error_.empty()) throw Failure(source_error_);
        Clip clip(context_.GetModule(), path);
        const PassResult pass = Pass(clip);
        entry["decoder"] = pass.after.decoder.empty() ? Json(nullptr) : Json(pass.after.decoder);
        entry["written"] = pass.written;
        entry["changes"] = ChangesEntry(pass);
        entry["settings"] = SettingsEntry(path, pass.after);
        const bool edits = !edits_.Empty() || !options_.copy_from.empty();
        std::string text = edits ? DescribeChanges(path, pass) : path + "\n";
        if (!edits || options_.print) text += DescribeLook(pass.after, "  ");
        return text;
    }

    PassResult Pass(Clip& clip) {
        if (!options_.copy_from.empty()) return CopySettings(clip, snapshot_, options_.dry_run);
        if (!edits_.Empty()) return EditSettings(clip, edits_, options_.dry_run);
        const Look look = GatherLook(clip);
        return {look, look, false};
    }

    Context& context_;
    const Options& options_;
    const SettingEdits edits_;
    std::string snapshot_;
    std::string source_error_;
};

int Run(Context& context, const Options& options) {
    if (options.keys) {
        if (options.AsksForMore()) throw UsageError("--keys goes alone");
        const std::string text = DescribeKeys();
        static_cast<void>(WriteStandardOutput(text.data(), text.size()));
        return kExitDone;
    }
    if (options.clips.empty()) throw UsageError("settings: name at least one clip");
    if (!options.copy_from.empty() && (options.reset || !options.set.empty() || !options.unset.empty())) {
        throw UsageError("--copy-from goes alone: edit the clips in a second run");
    }
    return SettingsRun(context, options).Run();
}

}  // namespace

void AddSettings(CommandLine& line, Context& context) {
    const auto options = std::make_shared<Options>();
    Arguments arguments = line.Add("settings", "Shows and edits the decode settings of clips",
                                   [options, &context] { return Run(context, *options); });

    arguments.Texts("clips", options->clips, "The clips", "CLIP");
    arguments.Texts("--set", options->set, "Gives a setting a value; may be given again", "KEY=VALUE");
    arguments.Texts("--unset", options->unset, "Takes the clip's own value for a setting; may be given again", "KEY");
    arguments.Flag("--reset", options->reset, "Takes the clip's own values for all settings");
    arguments.Text("--copy-from", options->copy_from, "Takes all settings of another clip", "CLIP");
    arguments.Flag("--dry-run", options->dry_run, "Tells what would change and writes nothing");
    arguments.Flag("--print", options->print, "Prints all settings also after an edit");
    arguments.Flag("--json", options->json, "One JSON object for all clips");
    arguments.Flag("--keys", options->keys, "Lists the settings with their limits or choices");
}

}  // namespace clipfio::host
