#pragma once

#include <array>
#include <cstdio>
#include <string>
#include <sys/wait.h>

// What a program run through the shell wrote on its standard output, and its
// exit status (-1 when it could not be run or did not exit).
struct ProgramResult {
    std::string out;
    int status = -1;
};

// Runs a shell command; append "2>&1" to read standard error too.
inline ProgramResult runProgram(const std::string& command) {
    ProgramResult r;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) {
        return r;
    }
    std::array<char, 4096> buffer{};
    while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), pipe)) {
        r.out += buffer.data();
    }
    const int status = pclose(pipe);
    r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return r;
}
