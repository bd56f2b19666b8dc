#include "test_module_part.h"

#include <string>

#include "platform/process.h"

namespace {
// Made when the module is loaded, and not before.
const std::string g_made_at_run_time = std::to_string(GetCurrentProcessId());
}  // namespace

bool PartWasMade() { return !g_made_at_run_time.empty(); }
