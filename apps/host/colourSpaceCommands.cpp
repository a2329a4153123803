#include "colourSpaceCommands.h"

#include "colourSpacePicture.h"
#include "outputWriter.h"
#include "sessionArgs.h"
#include "sessionInterpreter.h"

#include <tesseraCore/io/tsSequence.h>

#include <QBuffer>
#include <QByteArray>

#include <cmath>
#include <filesystem>

void ColourSpaceCommands::write(SessionInterpreter& in, SessionArgs& a, OutputWriter& writer) {
    const std::string path = in.outputPath(a.word("output file"));
    ColourSpacePicture picture;
    while (!a.atEnd()) {
        const std::string angle = a.choice("camera angle", {"azimuth", "elevation"});
        const double degrees = a.number(angle + " in degrees");
        if (!std::isfinite(degrees) || std::fabs(degrees) > 360.0) {
            throw SessionArgs::Error(angle + " is in degrees, -360 to 360");
        }
        (angle == "azimuth" ? picture.camera.azimuth : picture.camera.elevation) = degrees;
    }
    const std::string extension = std::filesystem::path(path).extension().string();
    if (extension != ".png" && extension != ".PNG") {
        throw SessionArgs::Error("cannot write \"" + path +
                                 "\": a colour-space picture is written as .png");
    }
    if (TsSequence::isPattern(path)) {
        throw SessionArgs::Error("cannot write \"" + path +
                                 "\": a colour-space picture is one picture, of the viewer's "
                                 "frame, not a frame sequence");
    }
    picture.follow(in.getSession());
    if (!picture.hasPlate()) {
        throw SessionArgs::Error("there is no plate to show in colour space");
    }
    picture.frame();
    const QImage image = picture.draw();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "PNG")) {
        throw SessionArgs::Error("cannot write \"" + path + "\": the picture could not be encoded");
    }
    std::string error;
    if (!OutputWriter::writeBytes(
            std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())), path,
            error)) {
        throw SessionArgs::Error(error);
    }
    writer.addWritten("colorspace", path);
}
