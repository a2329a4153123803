#pragma once

#include "sessionSummary.h"

#include <tesseraCore/render/tsShotRender.h>

#include <string>
#include <string_view>
#include <vector>

class HostSession;

// Writes what a session asks for, and remembers what it wrote (for the
// summary):
//   source, matte, status, foreground, comp   the keyer's view of the shown
//       node at full resolution at the viewer's frame (.exr, .png or .jpg,
//       see TsPlateIO::write), in `colourSpace` ("" for the format's
//       default); the other kinds take no colour space
//   viewer   the viewer as it shows now, the tools' overlay included (PNG)
//   setup    the keyer's setup (TsSetup)
//   summary  the session's summary (SessionSummary)
//   truth    the demo plate's ground truth: its true foreground (straight
//       colour) with the true alpha, as a foreground view is written
// Every file is written whole or not at all (FsAtomicFile): a write that
// fails (a full disk, a file size limit, a target that is not a regular
// file) answers false with the file and the reason, and leaves an earlier
// file as it was.
//
// A view written to a frame pattern (`write matte out/matte.####.exr`) is an
// output of the shot: it is kept, and written for every frame of a range by
// renderShot (tessera-run does that once the session has run).
class OutputWriter {
public:
    explicit OutputWriter(HostSession& session);

    static const std::vector<std::string>& getKinds();
    // Writes the file whole or not at all (FsAtomicFile): a failed write
    // leaves whatever was there, and `error` names the file and the reason.
    static bool writeBytes(std::string_view bytes, const std::string& path, std::string& error);

    bool write(const std::string& kind, const std::string& path, std::string& error,
               const std::string& colourSpace = {});
    const SessionSummary::Outputs& getWritten() const { return _written; }
    // An output another command wrote, for the summary's list.
    void addWritten(const std::string& kind, const std::string& path) {
        _written.emplace_back(kind, path);
    }

    const std::vector<TsShotRender::Output>& getShotOutputs() const { return _shotOutputs; }
    // The shot outputs are done with (a `render` line rendered them).
    void clearShotOutputs() { _shotOutputs.clear(); }
    // Renders the shot outputs over the frames with the shown node; a range
    // that is unbounded means the plate's (a still's: the current frame).
    TsShotRender::Result renderShot(TsShotRender::Options options) const;

private:
    bool writeView(const std::string& kind, const std::string& path, const std::string& colourSpace,
                   std::string& error);
    bool writeViewer(const std::string& path, std::string& error);
    bool writeTruth(const std::string& path, std::string& error);

    HostSession& _session;
    SessionSummary::Outputs _written;
    std::vector<TsShotRender::Output> _shotOutputs;
};
