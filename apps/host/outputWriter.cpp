#include "outputWriter.h"

#include "hostSession.h"

#include <pluginAPI/piEventHandler.h>
#include <pluginAPI/piPath.h>
#include <tesseraCore/demo/tsDemoPlate.h>
#include <tesseraCore/io/tsPlateIO.h>
#include <tesseraCore/io/tsSequence.h>
#include <tesseraCore/render/tsViewRender.h>
#include <ui/uiViewer.h>

#include <base/fsAtomicFile.h>

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QPixmap>

#include <filesystem>

OutputWriter::OutputWriter(HostSession& session)
    : _session(session) {}

const std::vector<std::string>& OutputWriter::getKinds() {
    static const std::vector<std::string> kinds = {
        "source", "matte", "status", "foreground", "comp", "viewer", "setup", "summary", "truth"};
    return kinds;
}

bool OutputWriter::write(const std::string& kind, const std::string& path, std::string& error,
                         const std::string& colourSpace) {
    bool ok = false;
    if (!colourSpace.empty() &&
        (kind == "viewer" || kind == "setup" || kind == "summary" || kind == "truth")) {
        error = "a " + kind + " output takes no colour space";
        return false;
    }
    TsViewMode mode = TsViewMode::Composite;
    if (TsSequence::isPattern(path)) {
        if (kind != "comp" && !TsViewRender::parseView(kind, mode)) {
            error =
                "a " + kind + " is not written frame by frame (\"" + path + "\" names a sequence)";
            return false;
        }
        _shotOutputs.push_back({kind, mode, path, colourSpace});
        return true;
    }
    if (kind == "viewer") {
        ok = writeViewer(path, error);
    } else if (kind == "setup") {
        ok = _session.saveSetup(path, error);
    } else if (kind == "summary") {
        ok = writeBytes(SessionSummary::text(_session, _written), path, error);
    } else if (kind == "truth") {
        ok = writeTruth(path, error);
    } else {
        ok = writeView(kind, path, colourSpace, error);
    }
    if (ok) {
        _written.emplace_back(kind, path);
    }
    return ok;
}

bool OutputWriter::writeView(const std::string& kind, const std::string& path,
                             const std::string& colourSpace, std::string& error) {
    TsViewMode mode = TsViewMode::Composite;
    if (kind != "comp" && !TsViewRender::parseView(kind, mode)) {
        error = "unknown output \"" + kind + "\"";
        return false;
    }
    const RCShdPtr<TsKeyerNode> node = _session.getShownNode();
    if (!node) {
        error = "the viewer shows no keyer node";
        return false;
    }
    const PiImagePtr image = TsViewRender::render(*node, _session.getFrame(), mode);
    if (!image) {
        error = "there is no plate to key";
        return false;
    }
    return TsViewRender::write(*image, mode, path, error, colourSpace);
}

bool OutputWriter::writeTruth(const std::string& path, std::string& error) {
    const auto& demo = _session.getDemo();
    if (!demo) {
        error = "there is no ground truth: the plate is not the demo plate";
        return false;
    }
    return TsPlateIO::write(*demo->getTruthForeground(), path, error);
}

bool OutputWriter::writeViewer(const std::string& path, std::string& error) {
    const std::string extension = std::filesystem::path(path).extension().string();
    if (extension != ".png" && extension != ".PNG") {
        error = "cannot write \"" + path + "\": a viewer snapshot is written as .png";
        return false;
    }
    const QImage image = _session.getViewer().grab().toImage();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (image.isNull() || !image.save(&buffer, "PNG")) {
        error = "cannot write \"" + path + "\": the viewer gave no image to encode";
        return false;
    }
    return writeBytes(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())),
                      path, error);
}

bool OutputWriter::writeBytes(std::string_view bytes, const std::string& path, std::string& error) {
    std::string reason;
    if (!FsAtomicFile::write(path, bytes, reason)) {
        error = "cannot write \"" + path + "\": " + reason;
        return false;
    }
    return true;
}

TsShotRender::Result OutputWriter::renderShot(TsShotRender::Options options) const {
    const RCShdPtr<TsKeyerNode> node = _session.getShownNode();
    TsShotRender::Result result;
    if (!node) {
        result.error = "the viewer shows no keyer node";
        return result;
    }
    if (options.frames.unbounded) {
        const PiClipPtr& plate = _session.getPlate();
        const PiFrameRange range = plate ? plate->getFrameRange() : PiFrameRange();
        const int frame = PiClip::frameOf(_session.getFrame());
        options.frames = range.unbounded ? PiFrameRange{frame, frame, false} : range;
    }
    return TsShotRender::run(*node, _shotOutputs, options);
}
