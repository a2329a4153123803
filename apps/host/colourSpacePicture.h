#pragma once

#include <tesseraCore/colourspace/tsCsCamera.h>
#include <tesseraCore/colourspace/tsCsCloud.h>
#include <tesseraCore/colourspace/tsCsRaster.h>
#include <tesseraCore/colourspace/tsCsScene.h>
#include <tesseraCore/tsKeyerSettings.h>

#include <pluginAPI/piImage.h>

#include <QImage>

#include <optional>
#include <vector>

class HostSession;

// The colour-space view of a session's key (see docs/colour-space.md): the
// plate's colours as a point cloud, the key colours and their blend, the
// softness axes, the matte's 0, 0.5 and 1 lines on a slice, the patch boxes
// and the degrain box, drawn from an orthographic camera. Both tessera-run's
// `write colorspace` and the studio's Colour Space panel draw through it.
class ColourSpacePicture {
public:
    // Follows the session's shown node at its frame: the cloud again when the
    // plate's image or the budget changed, the key's geometry and the points'
    // matte when the key did. Answers whether anything changed.
    bool follow(const HostSession& session);
    // The same for a plate (null for none) and a key.
    bool follow(const PiImagePtr& plate, const TsKeyerSettings& settings);
    // Frames the camera on the plate's colours and the key colours (the unit
    // cube without a plate), keeping its angles.
    void frame();

    // Draws into `image` (32-bit, the camera's size).
    void draw(QImage& image) const;
    QImage draw() const;

    TsCsCamera camera;
    TsCsRaster::Style style;
    int budget = TsCsCloud::DefaultBudget;
    int sliceNormal = 2;
    // Marked: a point of the cloud (-1 none) and a colour (the viewer's).
    int markedPoint = -1;
    std::optional<CoRgbColorTyped<float>> markedColour;
    // The colours the last pick took (the session's), highlighted.
    std::vector<CoRgbColorTyped<float>> picked;

    const TsCsCloud& getCloud() const { return _cloud; }
    const TsCsScene& getScene() const { return _scene; }
    const PiImagePtr& getPlate() const { return _plate; }
    bool hasPlate() const { return static_cast<bool>(_plate); }

private:
    TsCsCloud _cloud;
    TsCsScene _scene;
    PiImagePtr _plate;
    int _builtBudget = 0;
    int _builtSlice = -1;
    std::optional<TsKeyerSettings> _settings;
    mutable std::vector<float> _depth;
};
