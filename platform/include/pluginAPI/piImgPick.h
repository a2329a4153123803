#pragma once

#include <base/coRgbaColorTyped.h>
#include <base/gePoint2.h>
#include <base/geRectangle.h>
#include <base/list.h>
#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <base/rcStrongPtr.h>
#include <pluginAPI/piImage.h>
#include <pluginAPI/pluginAPIExport.h>

class PiEventContext;
class PiInput;
class PiTimePath;

// Reads the colours of a node's image (its plate) under the viewer's pointer.
//
// The image is the value of an image input (PiImageModifier::getInput) at the
// time path's time. Coordinates are the viewer's world: pixel (i, j) covers
// [i, i+1) x [j, j+1). A pick rectangle takes every pixel whose centre lies in
// it, the rectangle taken half-open ([x min, x max) x [y min, y max)), so a
// rectangle 5 wide and 5 high takes 5 x 5 pixels wherever it lies over the
// image, and one of no extent takes none.
class PiImgPick : public RCBase<LkCounter<int>> {
public:
    // ExNullPtr for a null input; ExCastFailed for an input that does not
    // hold an image. A null time path reads at frame 0.
    TS_PLUGIN_API static RCStrongPtr<PiImgPick> create(const RCShdPtr<const PiInput>& input,
                                                       const RCShdPtr<const PiTimePath>& timePath,
                                                       int stream);

    // The image at the time path's time; empty when the input holds none.
    TS_PLUGIN_API PiImagePtr getImage() const;

    // The acceptance test: the event is a device event whose world point lies
    // over the image.
    TS_PLUGIN_API bool accepts(const PiEventContext& context) const;
    TS_PLUGIN_API bool isOverImage(const GePoint2<float>& world) const;

    // Appends the RGBA of every pixel whose centre lies in the rectangle,
    // rows bottom to top, pixels left to right; answers false (and appends
    // nothing) when the rectangle covers no pixel of the image.
    TS_PLUGIN_API bool pickColors(const GeRectangle<float>& rect,
                                  List<CoRgbaColorTyped<float>>& colours) const;
    TS_PLUGIN_API static bool pickColors(const PiImage& image, const GeRectangle<float>& rect,
                                         List<CoRgbaColorTyped<float>>& colours);
    // The rectangle of one pixel: the one under the world point.
    TS_PLUGIN_API static GeRectangle<float> getPixelRectangle(const GePoint2<float>& world);

    // The rectangle of the last pick that a tool showed or is about to take,
    // for drawing; invalid when none.
    void setPickRectangle(const GeRectangle<float>& rect) { _rect = rect; }
    const GeRectangle<float>& getPickRectangle() const { return _rect; }

    const RCShdPtr<const PiInput>& getInput() const { return _input; }
    const RCShdPtr<const PiTimePath>& getTimePath() const { return _timePath; }
    int getStream() const { return _stream; }

private:
    TS_PLUGIN_API PiImgPick(const RCShdPtr<const PiInput>& input,
                            const RCShdPtr<const PiTimePath>& timePath, int stream);

    RCShdPtr<const PiInput> _input;
    RCShdPtr<const PiTimePath> _timePath;
    int _stream;
    GeRectangle<float> _rect;
};
