#pragma once

#include <base/coAffineMatrixTyped.h>
#include <base/coRgbaColorTyped.h>
#include <base/list.h>
#include <base/rcShdPtr.h>
#include <base/vector.h>
#include <gfx/mfImgPickTool.h>

#include <vector>

// The base of the viewer tools that fit a colour box to colours picked in the
// image (the patch and degrain samplers).
//
// Four pick manipulators, tried in this order: the two of the image-pick tool
// (a Ctrl-drag over a rectangle, a click or drag over pixels), which now also
// need Shift held and replace the box; then two more of the same kinds,
// with the "PickPlus" cursor, which add to it. So a plain pick grows the box
// and a pick with Shift held replaces it.
//
// An adding pick merges the eight corners of the box that the node holds (the
// subclass's current box matrix, taken when the pick starts) into the picked
// colours, so the box fitted afterwards holds both. A box equal to the
// identity is no box yet: an adding pick on it is a plain sample.
class TsAddSampleTool : public MfImgPickTool {
public:
    ~TsAddSampleTool() override;

    void initiateManipulation(const PiEventContext& context) override;
    // Leaves the event unprocessed, so that it goes on to other handlers.
    void endFeedback(const PiEventContext& context) override;

    // The box that the node holds now; the identity when none was sampled.
    virtual CoAffineMatrixTyped<float> getCurrentBoxMatrix() const = 0;

    // Whether the image-pick manipulation under way (or just finished) is an
    // adding one.
    bool isAdding() const;
    // The distinct colours to fit: the picked colours, followed by the old
    // box's corners when adding, duplicates removed (first appearance kept).
    Vector<CoRgbaColorTyped<float>>
    collectColours(const List<CoRgbaColorTyped<float>>& picked) const;

    // The old box's corners in colour space, taken at the start of the last
    // adding pick (empty when its box was the identity).
    const List<CoRgbaColorTyped<float>>& getPreviousBoxCorners() const { return _corners; }
    // The adding manipulators: a rectangle (drag) and a pixel list picker.
    const std::vector<RCShdPtr<MfManipulator>>& getAddingManipulators() const { return _addManips; }
    // The corners of the cube [-1, 1]^3 (w = 1), in the order x, then y, then
    // z slowest to fastest: (-1,-1,-1), (-1,-1,1), (-1,1,-1), ... (1,1,1).
    static const List<CoRgbaColorTyped<float>>& getCubeCorners();

protected:
    // Fails the assertion "size() == 2" when the image-pick tool does not
    // come with exactly two manipulators.
    explicit TsAddSampleTool(PiImgPick& imgPick);

private:
    List<CoRgbaColorTyped<float>> _corners;
    std::vector<RCShdPtr<MfManipulator>> _addManips;
};

// Start-up: fills the list of cube corners. Shut-down does nothing.
void tsAddSampleToolInitialise();
void tsAddSampleToolFinalise();
