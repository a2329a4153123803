#include "tsMgSampleMatteTool.h"
#include "tsBarDrag.h"
#include "tsEventPredicates.h"

#include <base/assertions.h>
#include <base/cbMethod.h>
#include <base/coAffineMatrixTyped.h>
#include <base/geAffineMatrix3.h>
#include <base/geRectangle.h>
#include <base/list.h>
#include <base/vwUtils.h>
#include <gfx/mfAppearance.h>
#include <gfx/mfEventPredicates.h>
#include <gfx/mfManipObject.h>
#include <gfx/mfRangeManipulator.h>
#include <gfx/wsCursorRegistry.h>
#include <pluginAPI/piEventContext.h>
#include <pluginAPI/piImgPick.h>
#include <pluginAPI/piViewer.h>
#include <resmgt/msgServer.h>
#include <resmgt/msgSubscription.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraUtil/tsMgAnimToAlgo.h>
#include <tesseraUtil/tsMgUtils.h>

#include <algorithm>
#include <map>
#include <vector>

namespace {

// Set by the initialiser.
PrdPredicate<EvEvent> sampleOnMovePredicate;
PrdPredicate<EvEvent> dismissPredicate;
PrdPredicate<EvEvent> sampleOnClickPredicate;

// The undo name of a bar drag.
MsgSubscription setMatteSampleMsg("MSG_TS_SET_MATTE_SAMPLE");

// Every bar's rectangle in its own frame (window pixels): x min, x max,
// y min, y max.
const float manipRect[4] = {-200.0f, 200.0f, -10.0f, 10.0f};

// A parameter value v shows at bar position v * scale + offset; a position p
// means the value p * inverseScale + inverseOffset.
float scale = 0.0f;
float offset = 0.0f;
float inverseScale = 0.0f;
float inverseOffset = 0.0f;

// The parameters that have a bar: 0 to 7 (the key blend has none).
constexpr int BarCount = 8;
constexpr float BarSpacing = 30.0f;

// The levels' thresholds on the softness coordinates.
const float levelThresholds[5] = {0.04f, 0.06f, 0.12f, 0.25f, 0.5f};
// Beyond this depth below the core (-d1), a hue excursion counts as deep.
const float deepHueDepth = 0.85f;

PrdPredicate<EvEvent> never() {
    return !PrdPredicate<EvEvent>::all();
}

GeAffineMatrix3<float> translated(float x, float y) {
    GeAffineMatrix3<float> m;
    m.setIdentity();
    m.translate(x, y);
    return m;
}

// The column of bars. Only the bars are grasped; an invisible rectangle
// around the visible bars takes pointer moves over the column, gaps included.
class SampleMatteManip : public MfManipulator {
public:
    SampleMatteManip();
    ~SampleMatteManip() override;

    MfRangeManipulator* getManipulator(TsMgTypes::MatteParam p) const { return _bars[p].get(); }
    void setLevels(const int levels[BarCount]);
    // Sorts the bars by level, highest first, shows the touched ones and
    // fits the rectangle around them.
    void layout();

private:
    RCShdPtr<MfRangeManipulator> _bars[BarCount];
    std::map<MfRangeManipulator*, int> _levels;
    RCShdPtr<MfManipObject> _rectManip;
    RCShdPtr<MfRectAppearance> _rect;
};

SampleMatteManip::SampleMatteManip() {
    const GeRectangle<float> rect(manipRect[0], manipRect[1], manipRect[2], manipRect[3]);
    for (auto p = TsMgTypes::Overall; p < BarCount; p = TsMgTypes::next(p)) {
        _bars[p] = RCShdPtr<MfRangeManipulator>(
            new MfRangeManipulator(rect, TsMgTool::getMatteParamName(p)));
        addManipulator(_bars[p]);
    }
    setScalingBehaviour(1);
    setGraspEventPredicate(never());
    for (const auto& bar : _bars) {
        GeAffineMatrix3<float> identity;
        identity.setIdentity();
        bar->setAppearanceTransform(identity);
        _levels[bar.get()] = 0;
    }
    _rectManip = RCShdPtr<MfManipObject>(new MfManipObject(4));
    _rect = RCShdPtr<MfRectAppearance>(new MfRectAppearance(true, true));
    _rect->setDrawable(false);
    _rectManip->addAppearance(_rect);
    _rectManip->setCursor(WsCursorRegistry::getInstance().getCursor(WsCursorRegistry::Default));
    _rectManip->setGraspEventPredicate(never());
    _rectManip->setFeedbackEventPredicate(MfEventPredicates::isPointerMove());
    addManipulator(_rectManip);
}

SampleMatteManip::~SampleMatteManip() = default;

void SampleMatteManip::setLevels(const int levels[BarCount]) {
    for (int p = 0; p < BarCount; ++p) {
        _levels[_bars[p].get()] = levels[p];
    }
}

void SampleMatteManip::layout() {
    // The bars by level, highest first; equal levels keep the parameters'
    // order. The sort runs on a type local to this function, so that none of
    // its instantiations is exported with the platform's types.
    struct Bar {
        MfRangeManipulator* manip;
        int level;
    };
    std::vector<Bar> sorted;
    for (const auto& bar : _bars) {
        sorted.push_back({bar.get(), _levels.at(bar.get())});
    }
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const Bar& a, const Bar& b) { return a.level > b.level; });
    GeRectangle<float> visible;
    float y = 0.0f;
    for (const Bar& entry : sorted) {
        MfRangeManipulator* bar = entry.manip;
        if (_levels.at(bar) == 0) {
            bar->setState(3);
        } else {
            bar->setState(0);
            visible = visible.unite(
                GeRectangle<float>(manipRect[0], manipRect[1], y + manipRect[2], y + manipRect[3]));
        }
        bar->setAppearanceTransform(translated(0.0f, y));
        y -= BarSpacing;
    }
    _rect->setRectangle(visible.isValid() ? visible : GeRectangle<float>(0.0f, 0.0f, 0.0f, 0.0f));
}

} // namespace

namespace {

class TsMgSampleMatteToolImp : public TsMgSampleMatteTool {
public:
    TsMgSampleMatteToolImp(PiImgPick& imgPick, const RCShdPtr<TsMgInputValues>& values,
                           PiViewer& viewer);
    ~TsMgSampleMatteToolImp() override;

    bool handleEvent(const PiEventContext& context) override;
    void draw(const VwView& view) const override;
    void initiateManipulation(const PiEventContext& context) override;
    void monitorManipulation(const PiEventContext& context) override;
    void finalizeManipulation(const PiEventContext& context) override;
    void endFeedback(const PiEventContext& context) override;
    void toolChanged() override;

private:
    void sample(const PiEventContext& context);
    void matteParamChanged(const TsMgTypes::MatteParam& p);

    PiViewer& _viewer;
    PiImgPick& _imgPick;
    RCShdPtr<TsMgInputValues> _values;
    CbMethod<TsMgSampleMatteToolImp, const TsMgTypes::MatteParam> _matteParamCb;
    bool _sampleShown = false;
    float _x = 0.0f;
    float _y = 0.0f;
    RCShdPtr<SampleMatteManip> _manip;
    int _manipP = 0;
};

TsMgSampleMatteToolImp::TsMgSampleMatteToolImp(PiImgPick& imgPick,
                                               const RCShdPtr<TsMgInputValues>& values,
                                               PiViewer& viewer)
    : _viewer(viewer)
    , _imgPick(imgPick)
    , _values(values)
    , _matteParamCb(this, &TsMgSampleMatteToolImp::matteParamChanged) {
    TsMgInputValues& held = *_values;
    _manip = RCShdPtr<SampleMatteManip>(new SampleMatteManip);
    addManipulator(_manip);
    for (auto p = TsMgTypes::Overall; p < BarCount; p = TsMgTypes::next(p)) {
        _manip->getManipulator(p)->setValue(held.getValue(p) * scale + offset);
    }
    setUndoString(setMatteSampleMsg.getText());
    held.getDispatcher().addHandler(&_matteParamCb);
}

TsMgSampleMatteToolImp::~TsMgSampleMatteToolImp() = default;

bool TsMgSampleMatteToolImp::handleEvent(const PiEventContext& context) {
    EvEvent& event = context.getEvent();
    if (isManipulating()) {
        return MfTool::handleEvent(context);
    }
    if (sampleOnMovePredicate(event)) {
        sample(context);
        event.setProcessed(true);
        return true;
    }
    if (!_sampleShown) {
        if (sampleOnClickPredicate(event)) {
            sample(context);
            if (!MfTool::handleEvent(context)) {
                event.setProcessed(true);
            }
        }
    } else if (!MfTool::handleEvent(context) && dismissPredicate(event)) {
        event.setProcessed(true);
        toolChanged();
    }
    return event.isProcessed();
}

void TsMgSampleMatteToolImp::draw(const VwView& view) const {
    if (_sampleShown) {
        MfTool::draw(view);
    }
}

void TsMgSampleMatteToolImp::sample(const PiEventContext& context) {
    if (!_imgPick.accepts(context)) {
        return;
    }
    // Shown from here on, also when the pick below fails: the column then
    // shows as it stood.
    _sampleShown = true;
    const GePoint2<float> world =
        VwUtils::windowToWorldOrtho(_viewer.getView(), context.getDeviceEvent().getCoord());
    _x = world.x;
    _y = world.y;

    const float left = _x - 2.5f;
    const float bottom = _y - 2.5f;
    const GeRectangle<float> rect(left, left + 5.0f, bottom, bottom + 5.0f);
    _imgPick.setPickRectangle(rect);
    List<CoRgbaColorTyped<float>> colors;
    if (!_imgPick.pickColors(rect, colors)) {
        TsAssertionTexts::SampleMattePick.fail();
    }

    const CoRgbColorTyped<float> keyColor = _values->getBlendedKeyColor();
    const float intrusion =
        TsMgAnimToAlgo::overallToIntrusion(_values->getValue(TsMgTypes::Overall));
    _manip->setBaseTransform(translated(_x, _y));
    const CoAffineMatrixTyped<float> m = TsMgUtils::getSoftnessMatrix(keyColor, intrusion);

    int levels[BarCount] = {};
    for (const CoRgbaColorTyped<float>& c : colors) {
        const float d1 = m[0] * c.r + m[4] * c.g + m[8] * c.b + m[12];
        const float d2 = m[1] * c.r + m[5] * c.g + m[9] * c.b + m[13];
        const float d3 = m[2] * c.r + m[6] * c.g + m[10] * c.b + m[14];
        for (int k = 1; k <= 5; ++k) {
            const float t = levelThresholds[k - 1];
            if (levels[TsMgTypes::EdgeSoftness] < k && d1 > t) {
                levels[TsMgTypes::EdgeSoftness] = k;
            }
            if (levels[TsMgTypes::Overall] < k && -t > d1) {
                levels[TsMgTypes::Overall] = k;
            }
            // A hue excursion far below the core is a deep hue; where the
            // deep level has already reached k the plain hue level still
            // rises.
            if (d2 > t) {
                if (levels[TsMgTypes::DeepHuePlus] < k && -d1 > deepHueDepth) {
                    levels[TsMgTypes::DeepHuePlus] = k;
                } else if (levels[TsMgTypes::HuePlus] < k) {
                    levels[TsMgTypes::HuePlus] = k;
                }
            }
            if (-t > d2) {
                if (levels[TsMgTypes::DeepHueMinus] < k && -d1 > deepHueDepth) {
                    levels[TsMgTypes::DeepHueMinus] = k;
                } else if (levels[TsMgTypes::HueMinus] < k) {
                    levels[TsMgTypes::HueMinus] = k;
                }
            }
            if (levels[TsMgTypes::Highlights] < k && d3 > t) {
                levels[TsMgTypes::Highlights] = k;
            }
            if (levels[TsMgTypes::Shadows] < k && -t > d3) {
                levels[TsMgTypes::Shadows] = k;
            }
        }
    }
    _manip->setLevels(levels);
    _manip->layout();
    _viewer.redraw();
}

void TsMgSampleMatteToolImp::initiateManipulation(const PiEventContext&) {
    _manipP = TsBarDrag::grasped(
        BarCount,
        [this](int i) { return _manip->getManipulator(static_cast<TsMgTypes::MatteParam>(i)); },
        TsAssertionTexts::SampleMatteGrasped);
    _values->getDispatcher().removeHandler(&_matteParamCb);
}

void TsMgSampleMatteToolImp::monitorManipulation(const PiEventContext&) {
    const auto p = static_cast<TsMgTypes::MatteParam>(_manipP);
    const float bar = TsBarDrag::dragged(
        *_manip->getManipulator(p),
        // The bars follow the parameters again.
        [this] { _values->getDispatcher().addHandler(&_matteParamCb); },
        TsAssertionTexts::SampleMatteDragged);
    _values->setValue(p, bar * inverseScale + inverseOffset);
    _viewer.redraw();
}

void TsMgSampleMatteToolImp::finalizeManipulation(const PiEventContext&) {
    _values->getDispatcher().addHandler(&_matteParamCb);
    _viewer.redraw();
}

void TsMgSampleMatteToolImp::endFeedback(const PiEventContext& context) {
    MfTool::endFeedback(context);
}

void TsMgSampleMatteToolImp::toolChanged() {
    _sampleShown = false;
    _viewer.redraw();
}

void TsMgSampleMatteToolImp::matteParamChanged(const TsMgTypes::MatteParam& p) {
    if (p >= BarCount) {
        return;
    }
    _manip->getManipulator(p)->setValue(_values->getValue(p) * scale + offset);
    _viewer.redraw();
}

} // namespace

RCShdPtr<MfTool> TsMgSampleMatteTool::create(PiImgPick& imgPick,
                                             const RCShdPtr<TsMgInputValues>& values,
                                             PiViewer& viewer) {
    return RCShdPtr<MfTool>(new TsMgSampleMatteToolImp(imgPick, values, viewer));
}

void tsMgSampleMatteToolInitialise() {
    sampleOnMovePredicate = TsEventPredicates::makeSampleOnMove();
    dismissPredicate = TsEventPredicates::makeDismiss();
    sampleOnClickPredicate = TsEventPredicates::makeSampleOnClick();

    MsgServer::getInstance().registerSubscription(&setMatteSampleMsg);

    const float min = TsMgTool::getMatteParamMin();
    const float max = TsMgTool::getMatteParamMax();
    scale = (manipRect[1] - manipRect[0]) / (max - min);
    offset = manipRect[1] - max * scale;
    inverseScale = 1.0f / scale;
    inverseOffset = (0.0f - offset) / scale;
}

void tsMgSampleMatteToolFinalise() {}
