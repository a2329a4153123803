// The colour-space view in tessera-studio's Colour Space panel and in
// tessera-run's `write colorspace`: it follows a bar drag, its undo and its
// redo; a point clicked in it is marked in the viewer, and the colour under
// the pointer in the viewer is marked in it; the pictures tessera-run writes
// from two cameras are those the same geometry draws here.
#include "colourSpaceDock.h"
#include "studioWindow.h"

#include "host/hostSession.h"
#include "host/viewerDriver.h"

#include <ui/uiApplication.h>
#include <ui/uiViewer.h>

#include <QApplication>
#include <QMouseEvent>

#include "support/runProgram.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace {

// The demo plate keyed on its screen (a drag over its top-left corner).
const char* const Keyed = "plate demo 320 180\n"
                          "tool \"Pick Key Colour 1\"\n"
                          "drag 4 176 20 160 steps 4\n";

void mouse(QWidget* w, QEvent::Type type, const QPointF& at) {
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const Qt::MouseButtons held =
        type == QEvent::MouseButtonPress ? Qt::MouseButtons(Qt::LeftButton) : Qt::NoButton;
    QMouseEvent e(type, at, w->mapToGlobal(at), button, held, Qt::NoModifier);
    QApplication::sendEvent(w, &e);
}

class ColourSpaceScene : public ::testing::Test {
protected:
    ColourSpaceScene() { UiApplication::getInstance(); }
    void SetUp() override {
        studio = std::make_unique<StudioWindow>();
        studio->resize(1400, 900);
        studio->show();
        dock = studio->findChild<ColourSpaceDock*>("colourSpaceDock");
        ASSERT_TRUE(dock);
        std::istringstream lines(Keyed);
        for (std::string line; std::getline(lines, line);) {
            ASSERT_TRUE(studio->perform(line)) << line;
        }
        settle();
    }
    void settle() {
        for (int i = 0; i < 4; ++i) {
            QApplication::processEvents();
        }
        HostSession::settle();
    }
    ColourSpacePicture& picture() const { return dock->getView().getPicture(); }
    // The matte's level lines in the panel, end to end.
    std::vector<float> levelLines() const {
        std::vector<float> out;
        for (const auto& level : picture().getScene().levels) {
            for (const TsCsScene::Segment& s : level) {
                out.insert(out.end(), {s.a.r, s.a.g, s.a.b, s.b.r, s.b.g, s.b.b});
            }
        }
        return out;
    }
    bool perform(const std::string& line) {
        const bool ok = studio->perform(line);
        settle();
        return ok;
    }

    std::unique_ptr<StudioWindow> studio;
    ColourSpaceDock* dock = nullptr;
};

TEST_F(ColourSpaceScene, FollowsABarDragItsUndoAndItsRedo) {
    ASSERT_GT(picture().getCloud().size(), 1000);
    ASSERT_TRUE(picture().getScene().hasAxes);
    // The key colour's pick is highlighted: the colours it took, each a
    // pixel of the plate under the drag.
    ASSERT_FALSE(picture().picked.empty());
    const PiImagePtr plate = studio->getSession().getPlate()->getImageAt(0);
    for (const CoRgbColorTyped<float>& c : picture().picked) {
        bool under = false;
        for (int y = 159; y <= 177 && !under; ++y) {
            for (int x = 3; x <= 21 && !under; ++x) {
                const CoRgbaColorTyped<float> p = plate->getPixel(x, y);
                under = CoRgbColorTyped<float>{p.r, p.g, p.b} == c;
            }
        }
        EXPECT_TRUE(under);
    }
    ASSERT_TRUE(perform("hotkey \"Sample Matte\""));
    ASSERT_TRUE(perform("click 178 120"));
    const std::vector<float> before = levelLines();

    ASSERT_TRUE(perform("drag 178 120 200 120 steps 5"));
    const std::vector<float> dragged = levelLines();
    EXPECT_NE(dragged, before);
    ASSERT_TRUE(perform("undo"));
    EXPECT_EQ(levelLines(), before);
    ASSERT_TRUE(perform("redo"));
    EXPECT_EQ(levelLines(), dragged);
}

TEST_F(ColourSpaceScene, MarksPickedPointsInTheViewerAndTheViewersColourInTheView) {
    ColourSpaceView& view = dock->getView();
    const TsCsCloud& cloud = picture().getCloud();
    const TsCsProjection project(picture().camera);
    const TsCsProjection::Point p = project(cloud.colour(cloud.size() / 3));
    ASSERT_TRUE(view.rect().contains(QPoint(static_cast<int>(p.x), static_cast<int>(p.y))));

    mouse(&view, QEvent::MouseMove, {p.x, p.y});
    EXPECT_NE(dock->getHoverText().indexOf("matte"), -1);
    mouse(&view, QEvent::MouseButtonPress, {p.x, p.y});
    mouse(&view, QEvent::MouseButtonRelease, {p.x, p.y});
    const int m = picture().markedPoint;
    ASSERT_GE(m, 0);
    EXPECT_EQ(dock->getMarkedPixel(), QPoint(cloud.pixelX[m], cloud.pixelY[m]));
    const TsCsProjection::Point q = project(cloud.colour(m));
    EXPECT_LT(std::hypot(q.x - p.x, q.y - p.y), 6.0f);

    UiViewer& viewer = studio->getSession().getViewer();
    const GePoint2<float> at = ViewerDriver::plateToWindow(viewer.getView(), {100.5, 60.5});
    mouse(&viewer, QEvent::MouseMove, {at.x, at.y});
    const CoRgbaColorTyped<float> c =
        studio->getSession().getPlate()->getImageAt(0)->getPixel(100, 60);
    ASSERT_TRUE(picture().markedColour);
    EXPECT_EQ(*picture().markedColour, (CoRgbColorTyped<float>{c.r, c.g, c.b}));
}

// Per channel, the mean difference of two pictures of one size (0 to 255).
double meanDifference(const QImage& a, const QImage& b) {
    double sum = 0.0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            sum += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) +
                   std::abs(qBlue(p) - qBlue(q));
        }
    }
    return sum / (3.0 * a.width() * a.height());
}

TEST_F(ColourSpaceScene, WritesThePictureFromTwoCamerasAsTheGeometryDrawsIt) {
    const std::filesystem::path dir = std::filesystem::temp_directory_path() /
                                      ("tessera-colourspace-" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    std::ofstream(dir / "write.tss") << Keyed << "write setup key.tessera\n"
                                     << "write colorspace a.png\n"
                                     << "write colorspace b.png azimuth 120 elevation 60\n"
                                     << "write summary s.txt\n";
    const ProgramResult r =
        runProgram(std::string(TESSERA_BIN_DIR) + "/tessera-run --quiet --out " + dir.string() +
                   " " + (dir / "write.tss").string() + " 2>&1");
    ASSERT_EQ(r.status, 0) << r.out;
    std::stringstream summary;
    summary << std::ifstream(dir / "s.txt").rdbuf();
    EXPECT_NE(summary.str().find("colorspace: " + (dir / "b.png").string()), std::string::npos)
        << summary.str();

    // The same key here, whatever the viewers made of the drag.
    ASSERT_TRUE(perform("load " + (dir / "key.tessera").string()));
    std::vector<QImage> references;
    for (const auto& [azimuth, elevation] : {std::pair{30.0, 20.0}, std::pair{120.0, 60.0}}) {
        ColourSpacePicture reference;
        reference.follow(studio->getSession());
        reference.camera.azimuth = azimuth;
        reference.camera.elevation = elevation;
        reference.frame();
        references.push_back(reference.draw());
        // The key colour's mark, filled with it, where the camera puts it.
        const TsCsScene& scene = reference.getScene();
        const TsCsProjection::Point k = TsCsProjection(reference.camera)(scene.key);
        EXPECT_EQ(references.back().pixel(static_cast<int>(k.x), static_cast<int>(k.y)),
                  TsCsRaster::pointColour(scene.key.r, scene.key.g, scene.key.b, 0.0f,
                                          TsCsRaster::Colouring::Own));
    }
    EXPECT_GT(meanDifference(references[0], references[1]), 2.0);
    // One picture: a frame pattern is refused, not written under its name.
    EXPECT_FALSE(perform("write colorspace " + (dir / "c.####.png").string()));
    EXPECT_FALSE(std::filesystem::exists(dir / "c.####.png"));
    for (int k = 0; k < 2; ++k) {
        const QImage written((dir / (k == 0 ? "a.png" : "b.png")).string().c_str());
        ASSERT_EQ(written.size(), references[k].size()) << k;
        EXPECT_LT(meanDifference(written.convertToFormat(QImage::Format_RGB32), references[k]),
                  0.25)
            << k;
    }
    std::filesystem::remove_all(dir);
}

} // namespace
