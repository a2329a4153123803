#pragma once

#include <base/cbEmptyType.h>
#include <base/cbMethod.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piTimePath.h>
#include <ui/uiExport.h>

#include <QObject>

class QAbstractSpinBox;
class QToolButton;

// The animation keys of an animatable input bound to a number field, as
// artists set them: the field's context menu offers "Set Key", "Delete Key"
// and "Delete Animation" (and the keys' interpolation), and a key button at
// the field's left shows the state at the time path's time (hollow: no keys,
// half: animated, full: a key here) and sets or deletes the key there. The
// field's colour tells an animated input from a constant one. Each action is
// one undo step named after it.
class TS_UI_API UiFieldKeys : public QObject {
public:
    UiFieldKeys(QAbstractSpinBox* spin, const RCShdPtr<PiInput>& input,
                const RCShdPtr<const PiTimePath>& timePath);
    ~UiFieldKeys() override;

    // What the key button shows.
    enum class State { Constant, Animated, Key };
    State getState() const;

    // The actions, by their menu text; false when the input refuses.
    bool setKey();
    bool deleteKey();
    bool deleteAnimation();
    bool setInterpolation(PiInterpolation interpolation);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    double time() const;
    void refresh();
    void showMenu(const QPoint& global);

    QAbstractSpinBox* _spin;
    QToolButton* _button;
    RCShdPtr<PiInput> _input;
    RCShdPtr<const PiTimePath> _timePath;
    CbMethod<UiFieldKeys, CbEmptyType> _changed{this, &UiFieldKeys::refresh};
    CbMethod<UiFieldKeys, CbEmptyType> _timeChanged{this, &UiFieldKeys::refresh};
};
