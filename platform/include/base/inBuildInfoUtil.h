#pragma once

#include <base/baseExport.h>
#include <base/inBuildInfo.h>
#include <base/oPtr.h>

#include <string>
#include <vector>

// The registry of build information records.
class TS_BASE_API InBuildInfoUtil {
public:
    struct Entry {
        const InBuildInfo* info;
        std::string package; // the package whose start-up registered it, or ""
    };

    // Takes ownership of the record (the pointer is left empty) and answers
    // the registered record. A null record is ignored and answers a record of
    // empty texts.
    static const InBuildInfo& registerInfo(OPtr<InBuildInfo> info);

    static std::vector<Entry> list();
    static std::vector<const InBuildInfo*> listFor(const std::string& package);
    // Destroys the records of a package (before the module that defines their
    // class is unloaded).
    static void dropFor(const std::string& package);
};
