#include "tests/r3dsdk/candidate_scene.h"

#include <sstream>
#include <utility>

#include "platform/modules.h"
#include "platform/text.h"
#include "r3dsdk/sdk_loader.h"
#include "r3dsdk/sdk_test_values.h"

namespace clipfio {

std::string InFolders(std::string text) {
    for (size_t at = 0; (at = text.find('@', at)) != std::string::npos;) text.replace(at, 1, CLIPFIO_CANDIDATES "/");
    return text;
}

std::string OpenedLines(const std::string& candidate, const std::string& version, const std::string& minimum) {
    return InFolders("[LOAD LIB  ] @" + candidate +
                     "\\REDR3D-x64.dll\n"
                     "[INIT0     ]\n"
                     "[OK INIT0  ]\n"
                     "\tLibrary ID            : 52334410\n"
                     "\tVersion               : " +
                     version + "\n\tMin static SDK version: " + minimum +
                     "\n\tStatic lib in dyn ver : 7.0.2\n"
                     "\tDynamic build name    : " +
                     candidate + "\n\tStatic lib in dyn name: static " + candidate + "\n[OK LOAD   ]\n");
}

void CandidateScene::SetUp() {
    const std::string address = std::to_string(reinterpret_cast<uintptr_t>(static_cast<candidate::Host*>(this)));
    SetEnvironmentVariableW(CANDIDATE_HOST_VARIABLE, platform::Wide(address).c_str());
    SdkSetTestValue(kSdkTestLogLevel, 255);
}

void CandidateScene::TearDown() {
    Capture([] { SdkFinalize(); });
    for (uint32_t number : {kSdkTestLogLevel, kSdkTestRedirectMode, kSdkTestSkipMatch}) SdkSetTestValue(number, 0);
    SetEnvironmentVariableW(CANDIDATE_HOST_VARIABLE, nullptr);
    SetEnvironmentVariableW(W("R3DSDKPATH"), nullptr);
}

int32_t CandidateScene::Initialize(const std::string& folder, const std::string& environment, uint32_t options) {
    const WString further = platform::Wide(InFolders(environment));
    SetEnvironmentVariableW(W("R3DSDKPATH"), environment.empty() ? nullptr : further.c_str());
    int32_t status = -1;
    Capture([&] { status = SdkInitialize(InFolders(folder).c_str(), options); });
    return status;
}

void CandidateScene::Capture(const std::function<void()>& action) {
    testing::internal::CaptureStdout();
    action();
    log = testing::internal::GetCapturedStdout();
}

std::string CandidateScene::Loaded() {
    const std::string text = SdkVersionText();
    EXPECT_EQ(text.rfind(kClientText, 0), 0u) << text;
    return text.substr(sizeof kClientText - 1);
}

std::string CandidateScene::TakeEvents() { return std::exchange(events_, {}); }

void CandidateScene::Say(const std::string& words) {
    candidates.clear();
    std::istringstream stream(words);
    for (std::string word; stream >> word;) {
        const size_t sign = word.find_first_of(".>!+");
        Answers& answers = candidates[word.substr(0, sign)];
        const std::string key = word.substr(sign + 1, word.find('=') - sign - 1);
        const std::string value = word.substr(word.find('=') + 1);
        switch (word[sign]) {
            case '>':
                answers.redirects.push_back(key);
                break;
            case '+':
                answers.imports.push_back({key});
                break;
            case '!':
                answers.failures[static_cast<uint32_t>(std::stoul(key))] = std::stoi(value);
                break;
            default:
                answers.numbers[key] = static_cast<uint32_t>(std::stoul(value));
        }
    }
}

void CandidateScene::ExpectEvents(const std::string& expected) {
#ifdef CLIPFIO_KEEP_MODULES
    std::istringstream lines(expected);
    std::string kept;
    for (std::string line; std::getline(lines, line);) {
        if (!line.ends_with(" detach")) kept += line + "\n";
    }
    EXPECT_EQ(TakeEvents(), kept);
#else
    EXPECT_EQ(TakeEvents(), expected);
#endif
}

uint32_t CandidateScene::Number(const char* candidate, const char* symbol, uint32_t usual) {
    const auto& numbers = candidates[candidate].numbers;
    const auto found = numbers.find(symbol);
    return found == numbers.end() ? usual : found->second;
}

const char* CandidateScene::Text(const char* candidate, const char* symbol, const char* usual) {
    Answers& answers = candidates[candidate];
    if (std::string(symbol) == "redirect") {
        if (answers.redirects.empty()) return usual;
        answer_ = InFolders(answers.redirects.front());
        answers.redirects.pop_front();
        return answer_.c_str();
    }
    const auto found = answers.texts.find(symbol);
    if (found == answers.texts.end()) return usual;
    return found->second == "(null)" ? nullptr : found->second.c_str();
}

int32_t CandidateScene::Initialize(const char* candidate, uint32_t phase, SdkKeyValues* values, const HMODULE* handles,
                                   uint32_t count) {
    Event(candidate, ("init" + std::to_string(phase)).c_str());
    if (on_initialize) on_initialize(phase, values, handles, count);
    const auto& failures = candidates[candidate].failures;
    const auto found = failures.find(phase);
    return found == failures.end() ? 0 : found->second;
}

uint32_t CandidateScene::Imports(const char* candidate, SdkImportList* list) {
    const Answers& answers = candidates[candidate];
    for (const Import& row : answers.imports) list->Add(row.file.c_str(), row.id, row.flags);
    return answers.unknown_options;
}

void CandidateScene::Event(const char* candidate, const char* event) {
    events_ += std::string(candidate) + " " + event + "\n";
}

}  // namespace clipfio
