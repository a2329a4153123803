#pragma once

#include <OpenColorIO/OpenColorIO.h>

#include <cstdint>
#include <string>
#include <vector>

namespace OCIO = OCIO_NAMESPACE;

// The process's configuration as the colour room's classes share it.
namespace TsOcio {

struct Current {
    OCIO::ConstConfigRcPtr config;
    std::string path;           // the file it came from ("" for the built-in fallback)
    std::uint64_t revision = 0; // TsColour::getConfigRevision
};

// The configuration in use, read on first call (see TsColour).
Current current();

// `subject` ("colour space \"NAME\"") followed by "is not in the colour
// configuration "FILE" (it has: ...)", listing `available`.
std::string notFound(const Current& c, const std::string& subject,
                     const std::vector<std::string>& available);

// The space's own name; "" when the configuration does not hold it.
std::string spaceName(const OCIO::ConstConfigRcPtr& config, const std::string& name);

} // namespace TsOcio
