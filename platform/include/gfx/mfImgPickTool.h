#pragma once

#include <base/coRgbaColorTyped.h>
#include <base/list.h>
#include <gfx/gfxExport.h>
#include <gfx/mfTool.h>
#include <pluginAPI/piImgPick.h>

#include <functional>

// A tool that picks colours from the image and does something with them.
//
// It comes with two manipulators on its picker: element 0 an
// MfPiImgPickDragManip (Ctrl-drag: the swept rectangle), element 1 an
// MfPiImgPickListManip (click or plain drag: the pixel under each event).
// Subclasses may add more image-pick manipulators. At the end of each
// manipulation of one of them, process receives everything it picked, once.
// The tool's cursor is the registry's "Pick".
class TS_GFX_API MfImgPickTool : public MfTool {
public:
    explicit MfImgPickTool(PiImgPick& imgPick);
    ~MfImgPickTool() override;

    RCShdPtr<WsCursor> getCursor() const override;
    void initiateManipulation(const PiEventContext& context) override;
    void finalizeManipulation(const PiEventContext& context) override;

    // What to do with the picked colours (possibly none, for a pick that
    // stayed off the image).
    virtual void process(const List<CoRgbaColorTyped<float>>& colours) = 0;

    // The image-pick manipulator of the manipulation under way or just
    // finished; empty before the first.
    const RCShdPtr<MfManipulator>& getImgPickManip() const { return _imgPickManip; }
    PiImgPick& getImgPick() const { return *_imgPick; }

    // Told of what every pick of every image-pick tool took, after the tool
    // processed it (the host shows the last pick's colours). One observer a
    // process; setting one answers the one it replaces.
    using PickObserver = std::function<void(const List<CoRgbaColorTyped<float>>& colours)>;
    static PickObserver setPickObserver(PickObserver observer);

private:
    RCShdPtr<PiImgPick> _imgPick;
    RCShdPtr<MfManipulator> _imgPickManip;
};
