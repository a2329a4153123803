#pragma once

#include <gfx/gfxExport.h>
#include <gfx/mfImgPickTool.h>
#include <pluginAPI/piInputRgbColor.h>

class PiNode;
class PiPath;
class PiStructuredInput;
class PiViewer;

// An image-pick tool that writes the mean of the picked colours (red, green
// and blue, each the plain mean; alpha ignored) into a colour input of a
// node, at the time of the viewer. A pick of no colour writes nothing.
class TS_GFX_API MfImgPickColorTool : public MfImgPickTool {
public:
    // ExNullPtr for a null node or input.
    MfImgPickColorTool(PiImgPick& imgPick, PiViewer& viewer, const RCShdPtr<PiNode>& node,
                       const RCShdPtr<PiPath>& path, const RCShdPtr<PiStructuredInput>& input);
    ~MfImgPickColorTool() override;

    void process(const List<CoRgbaColorTyped<float>>& colours) override;

    // The view of the colour input the tool writes.
    const RCShdPtr<PiInputRgbColor>& getInputRgbColor() const { return _colour; }
    const RCShdPtr<PiNode>& getNode() const { return _node; }

    // The mean colour; black for no colours.
    static CoRgbColorTyped<float> mean(const List<CoRgbaColorTyped<float>>& colours);

private:
    RCShdPtr<PiNode> _node;
    RCShdPtr<PiInputRgbColor> _colour;
};
