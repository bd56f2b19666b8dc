// A test of the loader: what each candidate library says, what it was asked, and the status lines.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "r3dsdk/sdk_interfaces.h"
#include "tests/r3dsdk/candidate.h"

namespace clipfio {

// "@good" in a text becomes the folder of that candidate, without a separator at its end.
std::string InFolders(std::string text);

// The status lines of a library that could be opened, from its file name to its acceptance.
std::string OpenedLines(const std::string& candidate, const std::string& version = "7.0.3",
                        const std::string& minimum = "7.0.1");

// The bare version text of the client.
inline constexpr char kClientText[] = "LEIDUP 7.0.3-35I46 (20171005 W64S)";

struct Import {
    std::string file;
    uint32_t id = kMainLibraryId;
    uint32_t flags = 0;
};

class CandidateScene : public testing::Test, public candidate::Host {
  protected:
    void SetUp() override;
    void TearDown() override;

    // Runs SdkInitialize with the folders written as in InFolders; its lines are in `log` afterwards.
    int32_t Initialize(const std::string& folder, const std::string& environment = "", uint32_t options = 0);
    // Runs anything with its status lines captured in `log`.
    void Capture(const std::function<void()>& action);
    // What the version text tells beyond the client's own version.
    static std::string Loaded();
    // The events so far, one a line, which are forgotten with it.
    std::string TakeEvents();
    // Compares them. Where the layer keeps modules mapped, no library sees its end, and those lines are passed over.
    void ExpectEvents(const std::string& expected);

    // Answers of one candidate, by the words of candidate.cpp.
    struct Answers {
        std::map<std::string, uint32_t> numbers;
        std::map<std::string, std::string> texts;
        std::deque<std::string> redirects;     // one a call, in turn
        std::map<uint32_t, int32_t> failures;  // phase and status
        std::vector<Import> imports;
        uint32_t unknown_options = 0;
    };
    std::map<std::string, Answers> candidates;
    // Forgets all answers and sets new ones, blanks between them: "good.patch=2" a number, "good>@twin" a redirect,
    // "good!1=14" a failing phase, "good+x.dll" an import.
    void Say(const std::string& words);
    std::function<void(uint32_t phase, SdkKeyValues*, const HMODULE*, uint32_t count)> on_initialize;
    std::string log;

    uint32_t Number(const char* candidate, const char* symbol, uint32_t usual) override;
    const char* Text(const char* candidate, const char* symbol, const char* usual) override;
    int32_t Initialize(const char* candidate, uint32_t phase, SdkKeyValues* values, const HMODULE* handles,
                       uint32_t count) override;
    uint32_t Imports(const char* candidate, SdkImportList* list) override;
    void Event(const char* candidate, const char* event) override;

  private:
    std::string events_;
    std::string answer_;
};

}  // namespace clipfio
