#pragma once

#include <base/baseExport.h>
#include <base/exBase.h>

#include <string>

// Failures of the host's iterators.
struct TS_BASE_API IteratorEx {
    // An iterator asked to move past its ends or for an item it does not have.
    // Carries the host source path and line where the iterator failed.
    class ExOutOfRange : public ExBase {
    public:
        ExOutOfRange(std::string path, int line);
        ~ExOutOfRange() override; // out of line: its type information lives in base
        const std::string& getPath() const { return _path; }
        int getLine() const { return _line; }

    private:
        std::string _path;
        int _line;
    };
};
