// What a command takes, told to the parser of the command line. The parser's own headers are slow to compile and stay
// in one file.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace clipfio::host {

// The arguments of one command. The variables named here are filled before the command runs and must live that long;
// what they hold beforehand is the default where it is within the bounds, and else stands for none. Names are as in
// "-o,--output"; a name without a dash is a place in the order of the arguments. A value outside its bounds is told to
// the user.
class Arguments {
  public:
    enum Need { kOptional, kRequired };

    void Text(const char* name, std::string& value, const char* help, const char* type, Need need = kOptional);
    // As many as there are. An option among these takes one value each time it is given.
    void Texts(const char* name, std::vector<std::string>& values, const char* help, const char* type);
    void Number(const char* name, uint32_t& value, uint32_t lowest, uint32_t highest, const char* help,
                const char* type);
    // A number among a few.
    void Choice(const char* name, uint32_t& value, std::initializer_list<uint32_t> choices, const char* help);
    // Above or at the lower bound, as `open` says, up to the upper one.
    enum Bound { kIncluded, kExcluded };
    void Real(const char* name, double& value, double lowest, Bound bound, double highest, const char* help,
              const char* type);
    void Flag(const char* name, bool& value, const char* help);
    // A line below the help.
    void Footer(const char* text);

  private:
    friend class CommandLine;
    explicit Arguments(void* parser) : parser_(parser) {}
    void* parser_;  // the parser's command; owned by the command line
};

class CommandLine {
  public:
    CommandLine(const char* program, const char* text, const char* version);
    ~CommandLine();

    // Arguments of the program as a whole.
    [[nodiscard]] Arguments Common();
    // `run` gives the exit status.
    Arguments Add(const char* command, const char* text, std::function<int()> run);

    // `args` without the program's name. Runs the command that is asked for, or prints the help or the version. Throws
    // UsageError, and what the command throws.
    [[nodiscard]] int Run(std::vector<std::string> args);

  private:
    struct Parser;
    std::unique_ptr<Parser> parser_;
};

}  // namespace clipfio::host
