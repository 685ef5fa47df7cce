// SPDX-License-Identifier: MIT
//
// Part of every program of ours that is built with the address sanitizer: which leaks are not ours.
// A leak is known by the library that allocated it, so no library is unloaded before the check.

extern "C" __attribute__((visibility("default"))) int dlclose(void*) {
    return 0;
}

// Desktops only: SDL's start of D-Bus and Wayland loses a few blocks, and libdecor a frame a
// window. fontconfig loses a pattern while it reads the files of the machine. libsndfile loses the
// record of an OGG file whose head is damaged.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libdbus-1\n"
           "leak:libdecor-0\n"
           "leak:libfontconfig\n"
           "leak:libvorbis\n"
           "leak:libwayland-client\n";
}

// Tests compare what programs print.
extern "C" const char* __lsan_default_options();
extern "C" const char* __lsan_default_options() {
    return "print_suppressions=0";
}
