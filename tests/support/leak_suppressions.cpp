// What the leak checker of the sanitizers takes for lost and is not. It looks for this function by its name.

// fontconfig finds the parts of its patterns by their distance, and the checker knows pointers alone. The system's own
// cursors and icons stay for the whole process, behind the handle table, where it does not look.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\n"
           "leak:MakeArrow\n";
}
