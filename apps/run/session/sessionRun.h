#pragma once

// The entry of tessera-run's session part (libtessera-run-session), which the
// program loads at run time; plain data across the boundary.
struct SessionRunArgs {
    bool listPackages = false;
    const char* session = ""; // empty: the built-in demo session
    const char* out = "";
    bool outGiven = false;
    bool quiet = false;
    const char* frames = "";  // FIRST-LAST, or empty: the plate's range
    bool resume = false;      // skip frames that are already complete
    const char* missing = ""; // refuse, hold or black; empty: refuse
    const char* command = ""; // the command line, for the resume hint
};

// Answers the program's exit status. The library's one export: the rest of it,
// the host session included, is hidden (apps/CMakeLists.txt).
extern "C" __attribute__((visibility("default"))) int tesseraRunSession(const SessionRunArgs* args);
using TesseraRunSessionEntry = int (*)(const SessionRunArgs*);
