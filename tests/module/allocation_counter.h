// Counts the memory that this thread takes, in the program and in the module alike.
#pragma once

// Calls of malloc, calloc and realloc so far.
long Allocations() noexcept;
