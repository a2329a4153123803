#pragma once

#include <resmgt/liString.h>
#include <resmgt/resmgtExport.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

// A message catalogue: one entry a line, `ID "text"`, where ID is made of
// letters, digits and underscores and the text is double-quoted with the
// escapes \" \\ and \n. Blank lines and lines whose first non-blank character
// is '#' are ignored.
class TS_RESMGT_API MsgCatalogue {
public:
    struct Error {
        std::string file;
        int line; // 0 for a file-level error
        std::string message;
        std::string text() const;
    };

    // Parses a file. Malformed lines are recorded as errors and skipped; the
    // well-formed entries are kept. A file that cannot be read gives one
    // file-level error and an empty catalogue.
    static MsgCatalogue load(const std::string& path);
    static MsgCatalogue parse(const std::string& contents, const std::string& name);

    std::optional<LiString> find(const std::string& id) const;
    const std::map<std::string, LiString>& entries() const { return _entries; }
    const std::vector<Error>& errors() const { return _errors; }
    const std::string& name() const { return _name; }
    bool isReadable() const { return _readable; }

private:
    std::string _name;
    std::map<std::string, LiString> _entries;
    std::vector<Error> _errors;
    bool _readable = true;
};
