#pragma once

#include "tsAddSampleTool.h"

#include <base/cbMethod.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piInputRgbColor.h>
#include <pluginAPI/piInputValue.h>
#include <pluginAPI/piTimePath.h>
#include <pluginAPI/piTypedAnimInput.h>
#include <tesseraCore/tsDgInterface.h>

#include <memory>

// The viewer tool that samples the degrain box of a keyer node: the colours
// that count as screen grain. Each pick fits the smallest box around the
// picked colours (grown by the old box with the adding pickers, see
// TsAddSampleTool), arranges it about the key colour (the key colours blended
// by the node's key blend; TsUtils::arrangeMatrixForPatchEdge) and writes it
// into the twelve degrain box inputs at the time path's time. The pick then
// switches degraining on, unless the flag is locked or already on. All of
// one pick is one undo step named by the text of "MSG_TS_SET_DEGRAIN_SAMPLE".
class TsDgSampleTool : public TsAddSampleTool {
public:
    // The inputs the tool reads and writes, bound at the time path.
    class DegrainAnimInputs {
    public:
        // ExNullPtr for a missing input, ExCastFailed for one of another
        // type.
        DegrainAnimInputs(TsDgInterface& dg, const RCShdPtr<PiTimePath>& timePath);
        ~DegrainAnimInputs();

        RCShdPtr<PiTimePath> timePath;
        // Element (row, column) of the degrain box matrix.
        std::unique_ptr<PiTypedAnimInput<double>> box[3][4];
        // The blend between the key colours.
        RCShdPtr<PiInputValue<double>> blend;
        RCShdPtr<PiInputRgbColor> keyColor1;
        RCShdPtr<PiInputRgbColor> keyColor2;

    private:
        void blendChanged();
        void blendUpdate();

        CbMethod<DegrainAnimInputs, CbEmptyType> _blendChangedCb;
        CbMethod<DegrainAnimInputs, CbEmptyType> _blendUpdateCb;
    };

    TsDgSampleTool(PiImgPick& imgPick, TsDgInterface& dg, const RCShdPtr<PiTimePath>& timePath);
    ~TsDgSampleTool() override;

    // The base's end of a pick (process), then degraining switched on.
    void finalizeManipulation(const PiEventContext& context) override;
    void process(const List<CoRgbaColorTyped<float>>& colours) override;
    CoAffineMatrixTyped<float> getCurrentBoxMatrix() const override;

    const DegrainAnimInputs& getDegrainInputs() const { return *_inputs; }

private:
    void flagChanged();
    void flagUpdate();

    std::unique_ptr<DegrainAnimInputs> _inputs;
    RCShdPtr<PiInputValue<bool>> _degrain;
    CbMethod<TsDgSampleTool, CbEmptyType> _degrainChangedCb;
    CbMethod<TsDgSampleTool, CbEmptyType> _degrainUpdateCb;
};

// Start-up: registers the subscription "MSG_TS_SET_DEGRAIN_SAMPLE". Shut-down
// does nothing.
void tsDgSampleToolInitialise();
void tsDgSampleToolFinalise();
