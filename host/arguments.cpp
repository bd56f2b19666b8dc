#include "host/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <set>
#include <sstream>

#include "host/console.h"
#include "host/failure.h"
#include "host/numbers.h"

namespace clipfio::host {

struct CommandLine::Parser {
    CLI::App app;
    std::function<int()> run;
};

namespace {

CLI::App& App(void* parser) { return *static_cast<CLI::App*>(parser); }

// The parser takes "[a,b]" among several values for a list. A mark in front keeps it from that, and is taken off again
// where the value arrives; nobody types one.
constexpr char kMark = '\x1F';

std::string Marked(const std::string& argument) {
    return argument.starts_with('[') && argument.ends_with(']') ? kMark + argument : argument;
}

std::string Unmarked(std::string text) {
    if (text.starts_with(kMark) && text.substr(1) != Marked(text.substr(1))) text.erase(0, 1);
    return text;
}

// A message quotes arguments as the parser has them.
std::string UnmarkedMessage(std::string text) {
    std::erase(text, kMark);
    return text;
}

}  // namespace

void Arguments::Text(const char* name, std::string& value, const char* help, const char* type, Need need) {
    CLI::Option* option =
        App(parser_).add_option(name, value, help)->type_name(type)->transform(Unmarked)->required(need == kRequired);
    if (!value.empty()) option->capture_default_str();
}

void Arguments::Texts(const char* name, std::vector<std::string>& values, const char* help, const char* type) {
    CLI::Option* option = App(parser_).add_option(name, values, help)->type_name(type)->transform(Unmarked);
    if (name[0] == '-') option->allow_extra_args(false);
}

void Arguments::Number(const char* name, uint32_t& value, uint32_t lowest, uint32_t highest, const char* help,
                       const char* type) {
    CLI::Option* option =
        App(parser_).add_option(name, value, help)->check(CLI::Range(lowest, highest))->type_name(type);
    if (value >= lowest) option->capture_default_str();
}

void Arguments::Choice(const char* name, uint32_t& value, std::initializer_list<uint32_t> choices, const char* help) {
    App(parser_)
        .add_option(name, value, help)
        ->check(CLI::IsMember(std::set<uint32_t>(choices)))
        ->capture_default_str();
}

void Arguments::Real(const char* name, double& value, double lowest, Bound bound, double highest, const char* help,
                     const char* type) {
    // Not CLI::Range, which lets through what is not a number.
    const auto check = [=](const std::string& text) {
        const auto number = ReadNumber<double>(text);
        if (number && *number <= highest && (bound == kIncluded ? *number >= lowest : *number > lowest)) {
            return std::string();
        }
        return "'" + text + "' is not " + (bound == kIncluded ? "from " : "above ") + NumberText(lowest) + " up to " +
               NumberText(highest);
    };
    CLI::Option* option = App(parser_).add_option(name, value, help)->check(check, "")->type_name(type);
    if (check(NumberText(value)).empty()) option->capture_default_str();
}

void Arguments::Flag(const char* name, bool& value, const char* help) { App(parser_).add_flag(name, value, help); }

void Arguments::Footer(const char* text) { App(parser_).footer(text); }

CommandLine::CommandLine(const char* program, const char* text, const char* version)
    : parser_(std::make_unique<Parser>()) {
    CLI::App& app = parser_->app;
    // A path may begin with a slash on every target. Commands inherit this.
    app.allow_windows_style_options(false);
    app.description(text);
    app.name(program);
    app.set_version_flag("--version", version);
    app.require_subcommand(1);
    app.fallthrough();
    app.footer("Exit status: 0 done, 1 something failed, 2 the command line makes no sense.");
}

CommandLine::~CommandLine() = default;

Arguments CommandLine::Common() { return Arguments(&parser_->app); }

Arguments CommandLine::Add(const char* command, const char* text, std::function<int()> run) {
    CLI::App* app = parser_->app.add_subcommand(command, text);
    app->callback([parser = parser_.get(), run = std::move(run)] { parser->run = run; });
    return Arguments(app);
}

int CommandLine::Run(std::vector<std::string> args) {
    std::ranges::transform(args, args.begin(), Marked);
    std::reverse(args.begin(), args.end());
    try {
        parser_->app.parse(std::move(args));
    } catch (const CLI::Success& wanted) {
        std::ostringstream text;
        parser_->app.exit(wanted, text, std::cerr);
        static_cast<void>(WriteStandardOutput(text.view().data(), text.view().size()));
        return kExitDone;
    } catch (const CLI::ParseError& error) {
        const std::vector<std::string> unknown = parser_->app.remaining();
        if (parser_->app.get_subcommands().empty() && !unknown.empty() && unknown[0][0] != '-') {
            throw UsageError(UnmarkedMessage("there is no command '" + unknown[0] + "'"));
        }
        throw UsageError(UnmarkedMessage(error.what()));
    }
    return parser_->run();
}

}  // namespace clipfio::host
