#include "tsSpillBlendMfTool.h"
#include "tsBarDrag.h"
#include "tsEventPredicates.h"

#include <base/assertions.h>
#include <base/cbDataMethod.h>
#include <base/geAffineMatrix3.h>
#include <base/geRectangle.h>
#include <base/rcCast.h>
#include <base/vwUtils.h>
#include <gfx/mfRangeManipulator.h>
#include <pluginAPI/piEventContext.h>
#include <pluginAPI/piInputPolicy.h>
#include <pluginAPI/piInputValue.h>
#include <pluginAPI/piSocketUtil.h>
#include <pluginAPI/piToolInterface.h>
#include <pluginAPI/piViewer.h>
#include <resmgt/liStringUtil.h>

#include <memory>

namespace {

// Set by the initialiser.
PrdPredicate<EvEvent> repositionPredicate;
PrdPredicate<EvEvent> showPredicate;
PrdPredicate<EvEvent> dismissPredicate;

// Every bar's rectangle in its own frame: x min, x max, y min, y max.
const float barRect[4] = {-200.0f, 200.0f, -10.0f, 10.0f};
constexpr float BarSpacing = 30.0f;

// An input value v shows at bar position x = v * scale + offset; a bar
// position x means the value x * inverseScale + inverseOffset.
struct ValueMap {
    float scale;
    float offset;
    float inverseScale;
    float inverseOffset;
};

GeAffineMatrix3<float> translation(float x, float y) {
    GeAffineMatrix3<float> m;
    m.setIdentity();
    m.translate(x, y);
    return m;
}

// The stack of bars. Only the bars are grasped, never the stack itself.
class SpillBlendManip : public MfManipulator {
public:
    SpillBlendManip(const std::vector<LiString>& names, const GeRectangle<float>& rect);
    ~SpillBlendManip() override;

    MfRangeManipulator* getManipulator(int i) const {
        return static_cast<MfRangeManipulator*>(_bars[static_cast<std::size_t>(i)].get());
    }

private:
    std::vector<RCShdPtr<MfManipulator>> _bars;
};

SpillBlendManip::SpillBlendManip(const std::vector<LiString>& names, const GeRectangle<float>& rect)
    : _bars(names.size()) {
    setGraspEventPredicate(!PrdPredicate<EvEvent>::all());
    float y = 0.0f;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const RCShdPtr<MfManipulator> bar(new MfRangeManipulator(rect, names[i]));
        bar->setAppearanceTransform(translation(0.0f, y));
        _bars[i] = bar;
        addManipulator(bar);
        y -= BarSpacing;
    }
}

SpillBlendManip::~SpillBlendManip() = default;

class TsSpillBlendMfToolImp : public Zn::TsSpillBlendMfTool {
public:
    TsSpillBlendMfToolImp(PiViewer& viewer, const RCShdPtr<PiPath>& path,
                          const std::vector<RCShdPtr<PiInput>>& inputs,
                          const RCShdPtr<PiTimePath>& timePath,
                          const PiToolInterface& toolInterface, const LiString& undoString);
    ~TsSpillBlendMfToolImp() override;

    bool handleEvent(const PiEventContext& context) override;
    void draw(const VwView& view) const override;
    void initiateManipulation(const PiEventContext& context) override;
    void monitorManipulation(const PiEventContext& context) override;
    void finalizeManipulation(const PiEventContext& context) override;
    void endFeedback(const PiEventContext& context) override;
    void hideManipulator() override;

    const RCShdPtr<PiPath>& getPath() const { return _path; }

private:
    using Callback = CbDataMethod<TsSpillBlendMfToolImp, CbEmptyType, int>;

    void valueChanged(const int& i);
    void update(const int& i);
    void placeAtPointer(const PiEventContext& context);

    PiViewer& _viewer;
    RCShdPtr<PiPath> _path;
    bool _placed = false;
    std::unique_ptr<RCShdPtr<PiInputValue<double>>[]> _inputValues;
    std::unique_ptr<Callback[]> _valueCbs;
    std::unique_ptr<Callback[]> _updateCbs;
    std::vector<ValueMap> _maps;
    RCShdPtr<SpillBlendManip> _manip;
    int _manipP = 0;
};

std::vector<LiString> barNames(const std::vector<RCShdPtr<PiInput>>& inputs) {
    std::vector<LiString> names;
    for (const RCShdPtr<PiInput>& input : inputs) {
        names.push_back(LiStringUtil::sanitise(
            PiSocketUtil::getName(RCShdPtr<const PiInput>(input), 1, nullptr, nullptr), " "));
    }
    return names;
}

TsSpillBlendMfToolImp::TsSpillBlendMfToolImp(PiViewer& viewer, const RCShdPtr<PiPath>& path,
                                             const std::vector<RCShdPtr<PiInput>>& inputs,
                                             const RCShdPtr<PiTimePath>& timePath,
                                             const PiToolInterface& toolInterface,
                                             const LiString& undoString)
    : _viewer(viewer)
    , _path(path) {
    const std::size_t n = inputs.size();
    _inputValues = std::make_unique<RCShdPtr<PiInputValue<double>>[]>(n);
    _valueCbs = std::make_unique<Callback[]>(n);
    _updateCbs = std::make_unique<Callback[]>(n);

    const GeRectangle<float> rect(barRect[0], barRect[1], barRect[2], barRect[3]);
    _manip = RCShdPtr<SpillBlendManip>(new SpillBlendManip(barNames(inputs), rect));
    addManipulator(_manip);

    const float lo = barRect[0];
    const float hi = barRect[1];
    for (std::size_t i = 0; i < n; ++i) {
        const auto range = rcCastRequired<const PiRangeInputPolicy<double>>(
            toolInterface.getInputPolicy(RCShdPtr<const PiInput>(inputs[i])));
        const double min = range->getMin();
        const double max = range->getMax();
        ValueMap map;
        map.scale = static_cast<float>((hi - lo) / (max - min));
        map.offset = static_cast<float>(hi - map.scale * max);
        map.inverseScale = 1.0f / map.scale;
        map.inverseOffset = (0.0f - map.offset) / map.scale;
        _maps.push_back(map);

        const int index = static_cast<int>(i);
        _inputValues[i] = PiInputValue<double>::createTyped(inputs[i], timePath);
        _valueCbs[i].set(this, &TsSpillBlendMfToolImp::valueChanged, index);
        _updateCbs[i].set(this, &TsSpillBlendMfToolImp::update, index);
        _inputValues[i]->addValueChangedCb(&_valueCbs[i]);
        _inputValues[i]->addUpdateCb(&_updateCbs[i]);
        _inputValues[i]->update();
    }
    setUndoString(undoString);
}

TsSpillBlendMfToolImp::~TsSpillBlendMfToolImp() = default;

bool TsSpillBlendMfToolImp::handleEvent(const PiEventContext& context) {
    if (isManipulating()) {
        return MfTool::handleEvent(context);
    }
    EvEvent& event = context.getEvent();
    if (repositionPredicate(event)) {
        _placed = true;
        placeAtPointer(context);
        _viewer.redraw();
        event.setProcessed(true);
        return true;
    }
    if (!_placed) {
        if (showPredicate(event)) {
            _placed = true;
            placeAtPointer(context);
            _viewer.redraw();
            // The press that shows the stack may already take a bar.
            if (!MfTool::handleEvent(context)) {
                event.setProcessed(true);
            }
        }
    } else if (!MfTool::handleEvent(context) && dismissPredicate(event)) {
        event.setProcessed(true);
        hideManipulator();
    }
    return event.isProcessed();
}

void TsSpillBlendMfToolImp::draw(const VwView& view) const {
    if (_placed) {
        MfTool::draw(view);
    }
}

void TsSpillBlendMfToolImp::placeAtPointer(const PiEventContext& context) {
    const GePoint2<float> world =
        VwUtils::windowToWorldOrtho(_viewer.getView(), context.getDeviceEvent().getCoord());
    _manip->setBaseTransform(translation(world.x, world.y));
}

void TsSpillBlendMfToolImp::initiateManipulation(const PiEventContext&) {
    _manipP = TsBarDrag::grasped(
        static_cast<int>(_maps.size()), [this](int i) { return _manip->getManipulator(i); },
        TsAssertionTexts::SpillBlendGrasped);
    _inputValues[static_cast<std::size_t>(_manipP)]->removeValueChangedCb(
        &_valueCbs[static_cast<std::size_t>(_manipP)]);
}

void TsSpillBlendMfToolImp::monitorManipulation(const PiEventContext&) {
    const auto i = static_cast<std::size_t>(_manipP);
    const float bar = TsBarDrag::dragged(
        *_manip->getManipulator(_manipP),
        // The bar follows its input again.
        [this, i] { _inputValues[i]->addValueChangedCb(&_valueCbs[i]); },
        TsAssertionTexts::SpillBlendDragged);
    const ValueMap& map = _maps[i];
    _inputValues[i]->setValue(static_cast<double>(bar * map.inverseScale + map.inverseOffset));
    _viewer.redraw();
}

void TsSpillBlendMfToolImp::finalizeManipulation(const PiEventContext&) {
    _inputValues[static_cast<std::size_t>(_manipP)]->addValueChangedCb(
        &_valueCbs[static_cast<std::size_t>(_manipP)]);
    _viewer.redraw();
}

void TsSpillBlendMfToolImp::endFeedback(const PiEventContext& context) {
    MfTool::endFeedback(context);
    // The event that ended the feedback goes on to the other handlers.
    context.getEvent().setProcessed(false);
}

void TsSpillBlendMfToolImp::hideManipulator() {
    _placed = false;
    _viewer.redraw();
}

void TsSpillBlendMfToolImp::valueChanged(const int& i) {
    PiInputValue<double>& value = *_inputValues[static_cast<std::size_t>(i)];
    if (value.needsUpdate()) {
        value.update();
    }
    const ValueMap& map = _maps[static_cast<std::size_t>(i)];
    _manip->getManipulator(i)->setValue(static_cast<float>(value.getValue()) * map.scale +
                                        map.offset);
    _viewer.redraw();
}

void TsSpillBlendMfToolImp::update(const int& i) {
    _inputValues[static_cast<std::size_t>(i)]->update();
}

} // namespace

RCShdPtr<MfTool> Zn::TsSpillBlendMfTool::create(PiViewer& viewer, const RCShdPtr<PiPath>& path,
                                                const std::vector<RCShdPtr<PiInput>>& inputs,
                                                const RCShdPtr<PiTimePath>& timePath,
                                                const PiToolInterface& toolInterface,
                                                const LiString& undoString) {
    return RCShdPtr<MfTool>(
        new TsSpillBlendMfToolImp(viewer, path, inputs, timePath, toolInterface, undoString));
}

void tsSpillBlendMfToolInitialise() {
    repositionPredicate = TsEventPredicates::makeSampleOnMove();
    showPredicate = TsEventPredicates::makeSampleOnClick();
    dismissPredicate = TsEventPredicates::makeDismiss();
}

void tsSpillBlendMfToolFinalise() {}
