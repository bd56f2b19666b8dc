// What a module can ask about its own loading.
#pragma once

namespace platform {

#ifdef _WIN32
inline bool ModuleAttached() noexcept { return true; }
#else
// False when the module's entry refused the process. Here a refused module stays loaded all the same, and its exports
// have to refuse in its stead.
bool ModuleAttached() noexcept;
#endif

}  // namespace platform
