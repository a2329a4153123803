#pragma once

#include <base/rcShdPtr.h>
#include <gfx/mfImgPickColorTool.h>
#include <pluginAPI/piInputRgbColor.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsTypes.h>

class PiImgPick;
class PiPath;
class PiViewer;

// The pick tool of one key colour: a click or a drag in the image writes the
// mean picked colour into that key colour (the host's colour-pick tool), as
// one undo step named by the text of "MSG_TS_SET_KEY_COLOR".
//
// After a pick, when the other key colour is not locked and is still exactly
// black (all three components 0), it receives the same colour: a fresh node
// gets both key colours from its first pick. Any other value of the other key
// colour, however dark, is left alone.
class TsImgPickKeyColorsTool : public MfImgPickColorTool {
public:
    // `mg` is the keyer node's interface (held by the caller); ExNullPtr when
    // its node or a key-colour input is missing.
    TsImgPickKeyColorsTool(PiImgPick& imgPick, PiViewer& viewer, TsMgInterface& mg,
                           const RCShdPtr<PiPath>& path, TsTypes::KeyColor keyColor);
    ~TsImgPickKeyColorsTool() override;

    void finalizeManipulation(const PiEventContext& context) override;

    const RCShdPtr<PiInputRgbColor>& getOtherKeyColor() const { return _otherKeyColor; }

private:
    RCShdPtr<PiInputRgbColor> _otherKeyColor;
};

// Start-up: registers the subscription "MSG_TS_SET_KEY_COLOR". Shut-down does
// nothing.
void tsImgPickKeyColorsToolInitialise();
void tsImgPickKeyColorsToolFinalise();
