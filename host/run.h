// The program behind its entry.
#pragma once

#include <string>
#include <vector>

namespace clipfio::host {

// `utf8_args` begins with the program's name. Gives the exit status: 0 done, 1 failed, 2 for a command line that makes
// no sense. Lets no exception out.
int Main(std::vector<std::string> utf8_args) noexcept;

}  // namespace clipfio::host
