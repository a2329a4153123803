#include "uiInputBinding.h"
#include <ui/uiFieldKeys.h>

#include <ui/uiValueEditor.h>
#include <ui/uiWidgetEvent.h>

#include <QDoubleSpinBox>
#include <QObject>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVariant>

#include <algorithm>
#include <cmath>

// The field's committed edits.
class UiValueEditor::Imp : public QObject {
public:
    Imp(UiValueEditor& owner, QAbstractSpinBox* spin)
        : _owner(owner) {
        // One edit per value committed, not one per key typed.
        spin->setKeyboardTracking(false);
        if (auto* d = qobject_cast<QDoubleSpinBox*>(spin)) {
            connect(d, &QDoubleSpinBox::valueChanged, this, [this](double v) {
                _owner.edited(v, UiWidgetAdapter::currentKeyboardState());
            });
        } else if (auto* i = qobject_cast<QSpinBox*>(spin)) {
            connect(i, &QSpinBox::valueChanged, this,
                    [this](int v) { _owner.edited(v, UiWidgetAdapter::currentKeyboardState()); });
        }
    }

    UiValueEditor& _owner;
};

UiValueEditor::UiValueEditor(QAbstractSpinBox* spin)
    : UiWidgetAdapter(spin)
    , _imp(std::make_unique<Imp>(*this, spin)) {}

UiValueEditor::~UiValueEditor() = default;

bool UiValueEditor::accepts(const QAbstractSpinBox* spin) {
    return qobject_cast<const QDoubleSpinBox*>(spin) || qobject_cast<const QSpinBox*>(spin);
}

QAbstractSpinBox* UiValueEditor::spin() const {
    return qobject_cast<QAbstractSpinBox*>(getLiveWidget());
}

double UiValueEditor::getValue() const {
    QAbstractSpinBox* s = spin();
    if (auto* d = qobject_cast<QDoubleSpinBox*>(s)) {
        return d->value();
    }
    if (auto* i = qobject_cast<QSpinBox*>(s)) {
        return i->value();
    }
    return 0.0;
}

double UiValueEditor::getMinimum() const {
    QAbstractSpinBox* s = spin();
    if (auto* d = qobject_cast<QDoubleSpinBox*>(s)) {
        return d->minimum();
    }
    if (auto* i = qobject_cast<QSpinBox*>(s)) {
        return i->minimum();
    }
    return 0.0;
}

double UiValueEditor::getMaximum() const {
    QAbstractSpinBox* s = spin();
    if (auto* d = qobject_cast<QDoubleSpinBox*>(s)) {
        return d->maximum();
    }
    if (auto* i = qobject_cast<QSpinBox*>(s)) {
        return i->maximum();
    }
    return 0.0;
}

bool UiValueEditor::isInteger() const {
    return qobject_cast<QSpinBox*>(spin()) != nullptr;
}

void UiValueEditor::show(double value) {
    QAbstractSpinBox* s = spin();
    const QSignalBlocker quiet(s);
    if (auto* d = qobject_cast<QDoubleSpinBox*>(s)) {
        d->setValue(value);
    } else if (auto* i = qobject_cast<QSpinBox*>(s)) {
        i->setValue(static_cast<int>(std::lround(value)));
    }
}

void UiValueEditor::setValue(double value, bool notify) {
    if (!spin()) {
        return;
    }
    if (notify) {
        enter(value, currentKeyboardState());
        return;
    }
    show(value);
}

void UiValueEditor::enter(double value, const EvKeyboardState& keys) {
    QAbstractSpinBox* s = spin();
    if (!s || !s->isEnabled() || !std::isfinite(value)) {
        return;
    }
    show(value);
    edited(getValue(), keys);
}

void UiValueEditor::edited(double value, const EvKeyboardState& keys) {
    const RCShdPtr<UiWidgetAdapter> keep(this);
    if (_binding) {
        _binding->write(value);
    }
    UiWidgetEvent event(PiWidget::Activated, getName(), keys);
    fire(PiWidget::Activated, event);
}

RCShdPtr<PiInput> UiValueEditor::getInput() const {
    return _binding ? _binding->getInput() : RCShdPtr<PiInput>();
}

void UiValueEditor::bindInput(const RCShdPtr<PiInput>& input,
                              const RCShdPtr<const PiTimePath>& timePath, bool undoable) {
    _binding.reset();
    delete _keys;
    _keys = nullptr;
    if (!input) {
        return;
    }
    LiString undoText;
    QAbstractSpinBox* s = spin();
    if (s) {
        undoText = s->property("undoText").toString().toStdString();
    }
    _binding = std::make_unique<UiInputBinding>(
        input, timePath, undoable, undoText, "UiValueEditor",
        UiInputBinding::Int | UiInputBinding::Double, [this] { showInput(); });
    // The field takes the input's range; an integer field edits integers.
    if (const auto range = _binding->getRange()) {
        const QSignalBlocker quiet(s);
        if (auto* d = qobject_cast<QDoubleSpinBox*>(s)) {
            d->setRange(range->first, range->second);
        } else if (auto* i = qobject_cast<QSpinBox*>(s)) {
            i->setRange(static_cast<int>(std::ceil(range->first)),
                        static_cast<int>(std::floor(range->second)));
        }
    }
    if (input->isAnimatable() && s) {
        _keys = new UiFieldKeys(s, input, timePath);
    }
    showInput();
}

UiFieldKeys* UiValueEditor::getKeys() const {
    return _keys;
}

void UiValueEditor::showInput() {
    if (_binding && spin()) {
        show(_binding->getValue());
    }
}
