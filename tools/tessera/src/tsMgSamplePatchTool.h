#pragma once

#include "tsAddSampleTool.h"
#include "tsMgInputValues.h"

#include <base/cbMethod.h>
#include <base/coRgbColorTyped.h>
#include <base/rcShdPtr.h>
#include <base/vector.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piNodeEvent.h>
#include <pluginAPI/piTimePath.h>
#include <pluginAPI/piTypedAnimInput.h>
#include <tesseraCore/tsMgInterface.h>

#include <memory>

// The viewer tool that samples a colour box for the keyer node's current
// patch. Each pick fits the smallest box around the picked colours (grown by
// the old box with the adding pickers, see TsAddSampleTool) and writes it into
// the patch's twelve box inputs at the time path's time; while the patch's
// mode is still 0 (undecided) the sample also decides it (classifyMode). All
// of one pick is one undo step named by the text of
// "MSG_TS_SET_PATCH_SAMPLE".
//
// The tool follows the node's current patch: when the current-patch input
// changes (the panel, a hotkey, undo), the next pick writes into the new one.
class TsMgSamplePatchTool : public TsAddSampleTool {
public:
    // ExNullPtr when the interface, its node or a patch input is missing.
    TsMgSamplePatchTool(PiImgPick& imgPick, const RCShdPtr<TsMgInputValues>& values,
                        const RCShdPtr<PiTimePath>& timePath, TsMgInterface* mg);
    ~TsMgSamplePatchTool() override;

    void process(const List<CoRgbaColorTyped<float>>& colours) override;
    CoAffineMatrixTyped<float> getCurrentBoxMatrix() const override;

    // The patch the next pick writes into.
    int getPatch() const;

    // The mode of a sample against the key colour. Each colour's score is its
    // first softness coordinate x (key colour and intrusion as the matte
    // generator has them): -x inside the core (x < 0), opponent * x beyond
    // it, clamped to [0, 1] (a colour that is not a number scores 0). With the
    // lowest and highest scores (both 0 for no colour): 3 when the highest is
    // at most 0.5 (the sample stays near the key colour); otherwise 2 when
    // even the lowest reaches 0.2, else 1.
    static int classifyMode(const CoRgbColorTyped<float>& keyColour,
                            const Vector<CoRgbaColorTyped<float>>& colours, float intrusion,
                            float opponent);

private:
    // The inputs of the patch that is current when it is built.
    struct PatchInputs {
        PatchInputs(TsMgInterface& mg, const RCShdPtr<PiTimePath>& timePath);

        int patch;
        RCShdPtr<PiTimePath> timePath;
        std::unique_ptr<PiTypedAnimInput<double>> box[3][4];
        std::unique_ptr<PiTypedAnimInput<int>> mode;
    };

    void nodeValueChanged(const PiNodeEvent& event);

    TsMgInterface* _mg;
    RCShdPtr<TsMgInputValues> _values;
    RCShdPtr<PiTimePath> _timePath;
    std::unique_ptr<PatchInputs> _patchInputs;
    CbMethod<TsMgSamplePatchTool, const PiNodeEvent> _nodeCb;
    RCShdPtr<PiInput> _currentPatchInput;
};

// Start-up: registers the subscription "MSG_TS_SET_PATCH_SAMPLE". Shut-down
// does nothing.
void tsMgSamplePatchToolInitialise();
void tsMgSamplePatchToolFinalise();
