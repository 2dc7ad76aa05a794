// Linked into every program that is built with the address sanitizer: suppresses leaks that are not
// ours.

extern "C" const char* __lsan_default_options();
extern "C" const char* __lsan_default_suppressions();

extern "C" const char* __lsan_default_options() {
    return "print_suppressions=0"; // a test may have blocked standard error
}

extern "C" const char* __lsan_default_suppressions() {
    // From 6.8 on, Qt calls a desktop portal when a program with windows starts, and never deletes
    // the pending call if the program ends before the answer.
    return "leak:QGenericUnixServices\n";
}
