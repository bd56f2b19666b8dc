// The commands, and what they share.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/clip.h"
#include "host/module_client.h"

namespace clipfio::host {

class Context {
  public:
    // Loaded at the first call. Throws Failure.
    Module& GetModule();

    std::string module_path;   // as the user gave it
    std::function<int()> run;  // the command that was chosen; gives the exit status

  private:
    std::unique_ptr<Module> module_;
};

// Each adds its command to the program. They live in files of their own, named after them.
void AddInfo(CLI::App& app, Context& context);
void AddFrame(CLI::App& app, Context& context);
void AddExport(CLI::App& app, Context& context);
void AddPipe(CLI::App& app, Context& context);
void AddAudio(CLI::App& app, Context& context);
void AddWaveform(CLI::App& app, Context& context);
void AddSheet(CLI::App& app, Context& context);
void AddSettings(CLI::App& app, Context& context);
void AddMakeSample(CLI::App& app, Context& context);
void AddMakeClip(CLI::App& app, Context& context);

// The clip, open; a failure's message begins with its path.
[[nodiscard]] Clip OpenClip(Context& context, const std::string& path);

// A line on standard error, with the program's name before it.
void Say(const std::string& line);

// The results of a command over several files: one text for each, or one JSON object for all. A file that fails does
// not stop the others.
class FileResults {
  public:
    explicit FileResults(bool json) : json_(json) {}

    // `work` fills the file's JSON entry and gives its text.
    void Add(const std::string& path, const std::function<std::string(nlohmann::ordered_json& entry)>& work);
    // Writes what is to be written at the end; gives the exit status.
    [[nodiscard]] int Finish();

  private:
    bool json_;
    bool failed_ = false;
    nlohmann::ordered_json files_ = nlohmann::ordered_json::array();
};

}  // namespace clipfio::host
