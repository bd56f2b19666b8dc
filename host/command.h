// The commands, and what they share.
#pragma once

#include <functional>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "host/arguments.h"
#include "host/clip.h"
#include "host/module_client.h"

namespace clipfio::host {

class Context {
  public:
    // Loaded at the first call. Throws Failure.
    Module& GetModule();

    std::string module_path;  // as the user gave it

  private:
    std::unique_ptr<Module> module_;
};

// Each adds its command to the program. They live in files of their own, named after them.
void AddInfo(CommandLine& line, Context& context);
void AddFrame(CommandLine& line, Context& context);
void AddExport(CommandLine& line, Context& context);
void AddPipe(CommandLine& line, Context& context);
void AddAudio(CommandLine& line, Context& context);
void AddWaveform(CommandLine& line, Context& context);
void AddSheet(CommandLine& line, Context& context);
void AddSettings(CommandLine& line, Context& context);
void AddMakeSample(CommandLine& line, Context& context);
void AddMakeClip(CommandLine& line, Context& context);

// The clip, open; a failure's message begins with its path.
[[nodiscard]] Clip OpenClip(Context& context, const std::string& path);

// A line on standard error, with the program's name before it.
void Say(const std::string& line);

// The results of a command over several files: one text for each, or one JSON object for all. A file that fails does
// not stop the others.
class FileResults {
  public:
    explicit FileResults(bool json);
    ~FileResults();

    // `work` fills the file's JSON entry and gives its text.
    void Add(const std::string& path, const std::function<std::string(nlohmann::ordered_json& entry)>& work);
    // Writes what is to be written at the end; gives the exit status.
    [[nodiscard]] int Finish();

  private:
    bool json_;
    bool failed_ = false;
    std::unique_ptr<nlohmann::ordered_json> files_;
};

}  // namespace clipfio::host
