#include "outputWriter.h"

#include "hostSession.h"

#include <pluginAPI/piEventHandler.h>
#include <pluginAPI/piPath.h>
#include <tesseraCore/io/tsPlateIO.h>
#include <tesseraCore/render/tsViewRender.h>
#include <ui/uiViewer.h>

#include <QImage>
#include <QPixmap>

#include <cstdio>
#include <filesystem>
#include <fstream>

OutputWriter::OutputWriter(HostSession& session)
    : _session(session) {}

const std::vector<std::string>& OutputWriter::getKinds() {
    static const std::vector<std::string> kinds = {"source", "matte",  "status", "foreground",
                                                   "comp",   "viewer", "setup",  "summary"};
    return kinds;
}

bool OutputWriter::write(const std::string& kind, const std::string& path, std::string& error) {
    bool ok = false;
    if (kind == "viewer") {
        ok = writeViewer(path, error);
    } else if (kind == "setup") {
        ok = _session.saveSetup(path, error);
    } else if (kind == "summary") {
        ok = writeText(SessionSummary::text(_session, _written), path, error);
    } else {
        ok = writeView(kind, path, error);
    }
    if (ok) {
        _written.emplace_back(kind, path);
    }
    return ok;
}

bool OutputWriter::writeView(const std::string& kind, const std::string& path, std::string& error) {
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
    return TsPlateIO::write(*image, path, error);
}

bool OutputWriter::writeViewer(const std::string& path, std::string& error) {
    const std::string extension = std::filesystem::path(path).extension().string();
    if (extension != ".png" && extension != ".PNG") {
        error = "cannot write \"" + path + "\": a viewer snapshot is written as .png";
        return false;
    }
    const QImage image = _session.getViewer().grab().toImage();
    const std::string temporary = path + ".part";
    if (image.isNull() || !image.save(QString::fromStdString(temporary), "PNG")) {
        std::remove(temporary.c_str());
        error = "cannot write \"" + path + "\"";
        return false;
    }
    std::error_code ec;
    std::filesystem::rename(temporary, path, ec);
    if (ec) {
        std::remove(temporary.c_str());
        error = "cannot write \"" + path + "\": " + ec.message();
        return false;
    }
    return true;
}

bool OutputWriter::writeText(const std::string& text, const std::string& path, std::string& error) {
    const std::string temporary = path + ".part";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out << text;
        if (!out.flush()) {
            error = "cannot write \"" + path + "\"";
            out.close();
            std::remove(temporary.c_str());
            return false;
        }
    }
    std::error_code ec;
    std::filesystem::rename(temporary, path, ec);
    if (ec) {
        std::remove(temporary.c_str());
        error = "cannot write \"" + path + "\": " + ec.message();
        return false;
    }
    return true;
}
