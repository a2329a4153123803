#include "uiInputBinding.h"

#include <ui/uiMenu.h>
#include <ui/uiWidgetEvent.h>

#include <QComboBox>
#include <QObject>
#include <QSignalBlocker>
#include <QVariant>

#include <cmath>

// The combo box's user choices.
class UiMenu::Imp : public QObject {
public:
    Imp(UiMenu& owner, QComboBox* combo)
        : _owner(owner) {
        connect(combo, &QComboBox::activated, this, [this](int index) {
            _owner.chosen(index, UiWidgetAdapter::currentKeyboardState());
        });
    }

    UiMenu& _owner;
};

UiMenu::UiMenu(QComboBox* combo)
    : UiWidgetAdapter(combo)
    , _imp(std::make_unique<Imp>(*this, combo)) {}

UiMenu::~UiMenu() = default;

QComboBox* UiMenu::combo() const {
    return qobject_cast<QComboBox*>(getLiveWidget());
}

int UiMenu::getItemCount() const {
    const QComboBox* c = combo();
    return c ? c->count() : 0;
}

LiString UiMenu::getItemText(int index) const {
    const QComboBox* c = combo();
    return c && index >= 0 && index < c->count() ? c->itemText(index).toStdString() : LiString();
}

int UiMenu::getSelection() const {
    const QComboBox* c = combo();
    return c ? c->currentIndex() : -1;
}

void UiMenu::setSelection(int index, bool notify) {
    QComboBox* c = combo();
    if (!c) {
        return;
    }
    if (notify) {
        if (index >= 0 && index < c->count()) {
            choose(index, currentKeyboardState());
        }
        return;
    }
    const QSignalBlocker quiet(c);
    c->setCurrentIndex(index >= 0 && index < c->count() ? index : -1);
}

LiString UiMenu::getSelectedText() const {
    const QComboBox* c = combo();
    return c && c->currentIndex() >= 0 ? c->currentText().toStdString() : LiString();
}

void UiMenu::removeAllItems() {
    if (QComboBox* c = combo()) {
        const QSignalBlocker quiet(c);
        c->clear();
    }
}

void UiMenu::appendItem(const LiString& text) {
    if (QComboBox* c = combo()) {
        const QSignalBlocker quiet(c);
        c->addItem(QString::fromStdString(text));
    }
}

void UiMenu::choose(int index, const EvKeyboardState& keys) {
    QComboBox* c = combo();
    if (!c || !c->isEnabled() || index < 0 || index >= c->count()) {
        return;
    }
    {
        const QSignalBlocker quiet(c);
        c->setCurrentIndex(index);
    }
    chosen(index, keys);
}

void UiMenu::chosen(int index, const EvKeyboardState& keys) {
    const RCShdPtr<UiWidgetAdapter> keep(this);
    if (_binding) {
        _binding->write(index);
    }
    UiWidgetEvent event(PiWidget::Activated, getName(), keys);
    fire(PiWidget::Activated, event);
}

RCShdPtr<PiInput> UiMenu::getInput() const {
    return _binding ? _binding->getInput() : RCShdPtr<PiInput>();
}

void UiMenu::bindInput(const RCShdPtr<PiInput>& input, const RCShdPtr<const PiTimePath>& timePath,
                       bool undoable) {
    _binding.reset();
    if (!input) {
        return;
    }
    LiString undoText;
    if (const QComboBox* c = combo()) {
        undoText = c->property("undoText").toString().toStdString();
    }
    _binding = std::make_unique<UiInputBinding>(input, timePath, undoable, undoText, "UiMenu",
                                                UiInputBinding::Int, [this] { showInput(); });
    showInput();
}

void UiMenu::showInput() {
    QComboBox* c = combo();
    if (!c || !_binding) {
        return;
    }
    const double value = _binding->getValue();
    const int index = static_cast<int>(std::lround(value));
    const QSignalBlocker quiet(c);
    c->setCurrentIndex(index >= 0 && index < c->count() ? index : -1);
}
