#pragma once

// The entry of tessera-run's session part (libtessera-run-session), which the
// program loads at run time; plain data across the boundary.
struct SessionRunArgs {
    bool listPackages = false;
    const char* session = ""; // empty: the built-in demo session
    const char* out = "";
    bool outGiven = false;
    bool quiet = false;
};

// Answers the program's exit status.
extern "C" int tesseraRunSession(const SessionRunArgs* args);
using TesseraRunSessionEntry = int (*)(const SessionRunArgs*);
