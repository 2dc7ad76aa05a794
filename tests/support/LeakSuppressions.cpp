// Linked into every program that is built with the address sanitizer: leaks that are not ours.

extern "C" const char* __lsan_default_options();
extern "C" const char* __lsan_default_suppressions();

extern "C" const char* __lsan_default_options() {
    return "print_suppressions=0"; // onto a standard error that a test may have stopped
}

extern "C" const char* __lsan_default_suppressions() {
    // From 6.8 on Qt asks a desktop portal about itself at the start of a program with windows, and
    // never deletes what waits for the answer if the program ends before there is one.
    return "leak:QGenericUnixServices\n";
}
