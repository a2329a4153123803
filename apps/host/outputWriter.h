#pragma once

#include "sessionSummary.h"

#include <string>
#include <vector>

class HostSession;

// Writes what a session asks for, and remembers what it wrote (for the
// summary):
//   source, matte, status, foreground, comp   the keyer's view of the shown
//       node at full resolution at the viewer's frame (.exr or .png, see
//       TsPlateIO::write)
//   viewer   the viewer as it shows now, the tools' overlay included (PNG)
//   setup    the keyer's setup (TsSetup)
//   summary  the session's summary (SessionSummary)
// A write that fails answers false and says why; nothing is left half
// written where the writer can help it.
class OutputWriter {
public:
    explicit OutputWriter(HostSession& session);

    static const std::vector<std::string>& getKinds();
    // Writes text beside the file, then renames it over the file, so that a
    // failed write leaves whatever was there.
    static bool writeText(const std::string& text, const std::string& path, std::string& error);

    bool write(const std::string& kind, const std::string& path, std::string& error);
    const SessionSummary::Outputs& getWritten() const { return _written; }

private:
    bool writeView(const std::string& kind, const std::string& path, std::string& error);
    bool writeViewer(const std::string& path, std::string& error);

    HostSession& _session;
    SessionSummary::Outputs _written;
};
