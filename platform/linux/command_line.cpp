#include "command_line.h"

#include <algorithm>

#include "platform/text.h"

namespace platform {
namespace {

constexpr WCHAR kQuote = u'"';

class Splitter {
  public:
    explicit Splitter(WStringView text) noexcept : rest_(text) {}

    void SkipBlanks() noexcept {
        while (!rest_.empty() && IsBlank(rest_.front())) rest_.remove_prefix(1);
    }
    [[nodiscard]] bool AtEnd() const noexcept { return rest_.empty(); }

    WString TakeProgram() {
        WString program;
        for (bool quoted = false; InArgument(quoted); rest_.remove_prefix(1)) {
            if (rest_.front() == kQuote) {
                quoted = !quoted;
            } else {
                program.push_back(rest_.front());
            }
        }
        return program;
    }

    WString TakeArgument() {
        WString argument;
        for (bool quoted = false; InArgument(quoted);) {
            const std::size_t slashes = std::min(rest_.find_first_not_of(u'\\'), rest_.size());
            rest_.remove_prefix(slashes);
            if (rest_.empty() || rest_.front() != kQuote) {
                argument.append(slashes, u'\\');
                if (slashes == 0) Take(argument);
                continue;
            }
            argument.append(slashes / 2, u'\\');
            if (slashes % 2 != 0) {
                Take(argument);
            } else if (quoted && rest_.substr(1).starts_with(kQuote)) {
                rest_.remove_prefix(1);
                Take(argument);
            } else {
                quoted = !quoted;
                rest_.remove_prefix(1);
            }
        }
        return argument;
    }

  private:
    static bool IsBlank(WCHAR c) noexcept { return c == u' ' || c == u'\t'; }
    [[nodiscard]] bool InArgument(bool quoted) const noexcept {
        return !rest_.empty() && (quoted || !IsBlank(rest_.front()));
    }
    void Take(WString& argument) {
        argument.push_back(rest_.front());
        rest_.remove_prefix(1);
    }

    WStringView rest_;
};

}  // namespace

std::vector<std::string> SplitCommandLine(WStringView text) {
    Splitter splitter(text);
    std::vector<std::string> arguments{Utf8(splitter.TakeProgram())};
    for (splitter.SkipBlanks(); !splitter.AtEnd(); splitter.SkipBlanks()) {
        arguments.push_back(Utf8(splitter.TakeArgument()));
    }
    return arguments;
}

}  // namespace platform
