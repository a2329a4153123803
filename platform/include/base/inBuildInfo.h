#pragma once

#include <base/baseExport.h>

// What a library says about its build, for the host's build-information
// listing. Every text has static lifetime.
class TS_BASE_API InBuildInfo {
public:
    virtual ~InBuildInfo();
    virtual const char* getDescription() const = 0;
    virtual const char* getLibraryName() const = 0;
    virtual const char* getReleaseYear() const = 0;
    virtual const char* getVersion() const = 0;
    virtual const char* getBuildKind() const = 0;
    virtual int getMajorVersion() const = 0;
    virtual int getMinorVersion() const = 0;
    virtual int getBuildCode() const = 0;
    virtual const char* getBuildNumber() const = 0;
    virtual const char* getBuildDate() const = 0;
    virtual const char* getBuildFlavour() const = 0;
};
