// What the leak checker of the sanitizers takes for lost and is not. It looks for this function by its name.

// fontconfig finds the parts of its patterns by their distance, and the checker knows pointers alone.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\n";
}
