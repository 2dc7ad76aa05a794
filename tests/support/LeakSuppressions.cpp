// Suppresses reports of leaks in libraries. This file is linked into every program that is built
// with the address sanitizer.

extern "C" const char* __lsan_default_options();
extern "C" const char* __lsan_default_suppressions();

extern "C" const char* __lsan_default_options() {
    return "print_suppressions=0"; // a test may have made standard error block
}

extern "C" const char* __lsan_default_suppressions() {
    // Since 6.8, Qt calls a desktop portal when a program with windows starts. It never deletes the
    // pending call if the program exits before the answer arrives.
    return "leak:QGenericUnixServices\n";
}
