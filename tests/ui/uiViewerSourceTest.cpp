#include "viewerScene.h"

#include <QImage>

namespace {

// An image source standing in for a render at viewer resolution: half the
// plate's size, one flat colour.
class ReducedSourceScene : public ViewerScene {
protected:
    void SetUp() override {
        ViewerScene::SetUp();
        reduced = rcMake<PiImage>(32, 24, CoRgbaColorTyped<float>{1.0f, 0.0f, 0.0f, 1.0f});
    }
    RCShdPtr<PiImage> reduced;
    int calls = 0;
};

TEST_F(ReducedSourceScene, AReducedImageIsDrawnOverThePlate) {
    viewer->setImageSource([this](double) {
        ++calls;
        return PiImagePtr(reduced);
    });
    const GeRectangle<float> extent = viewer->getImageExtent();
    EXPECT_EQ(extent.getXMax(), 64.0f);
    EXPECT_EQ(extent.getYMax(), 48.0f);
    EXPECT_EQ(calls, 0) << "the extent of a node with a plate needs no render";

    viewer->fitImage();
    EXPECT_EQ(calls, 0);
    // The plate's top-right corner pixel and its centre are both red: the
    // half-size image covers the whole plate.
    const QImage shot = viewer->grab().toImage();
    for (const QPointF& at : {window(63.5f, 47.5f), window(32.0f, 24.0f), window(0.5f, 0.5f)}) {
        const QColor c = shot.pixelColor(at.toPoint());
        EXPECT_GT(c.red(), 200) << at.x() << "," << at.y();
        EXPECT_LT(c.green(), 40) << at.x() << "," << at.y();
    }
    // Outside the plate: the viewer's background.
    const QColor outside = shot.pixelColor(window(70.0f, 24.0f).toPoint());
    EXPECT_LT(outside.red(), 100);
}

TEST_F(ReducedSourceScene, WithoutAPlateTheImageIsItsOwnExtent) {
    keyer->getImageInput()->setValue(0.0, PiValue(PiImagePtr()));
    viewer->setImageSource([this](double) { return PiImagePtr(reduced); });
    const GeRectangle<float> extent = viewer->getImageExtent();
    EXPECT_EQ(extent.getXMax(), 32.0f);
    EXPECT_EQ(extent.getYMax(), 24.0f);
    viewer->setImageSource([](double) { return PiImagePtr(); });
    EXPECT_FALSE(viewer->getImageExtent().getWidth() > 0.0f);
}

} // namespace
