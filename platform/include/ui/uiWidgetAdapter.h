#pragma once

#include <base/evEvent.h>
#include <base/evKeyboardState.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piWidget.h>
#include <ui/uiExport.h>
#include <ui/uiWidget.h>

class QWidget;

// A panel widget of the toolkit: the PiWidget that plug-ins hold, on a
// window-system widget, and at once that widget's UiWidget (its canvas, its
// event handler). Every widget kind of the toolkit derives from it
// (UiContainer, UiDualState, UiMenu, UiLabel, UiPushButton, UiTrackball,
// UiNodeWidget, UiValueEditor).
//
// One adapter per window-system widget, made on first lookup and held by the
// widget for as long as it lives; plug-ins hold it by counted pointer and may
// hold it longer. Once the widget is gone the adapter is inert: exists()
// answers false, it fires nothing, its setters do nothing, its queries
// answer empty values and its canvas is empty.
class TS_UI_API UiWidgetAdapter : public virtual PiWidget, public UiWidget {
public:
    ~UiWidgetAdapter() override;

    // The adapter of a window-system widget, made on first request; the kind
    // follows the widget (see PiContainer::findWidget). Empty for a null
    // widget, and for a widget that is a UiWidget of its own (a viewer).
    static RCShdPtr<UiWidgetAdapter> of(QWidget* widget);
    // The adapter already made for the widget, or null.
    static UiWidgetAdapter* find(const QWidget* widget);

    // The toolkit widget behind this plug-in widget: for the toolkit's own
    // widgets the adapter itself. Plug-ins reach the toolkit classes
    // (UiMenu, UiLabel, ...) by casting it.
    RCShdPtr<UiWidgetAdapter> getUiWidget();

    // The window-system widget; null once it is gone.
    QWidget* getLiveWidget() const { return _alive ? getQWidget() : nullptr; }

    // PiWidget
    const LiString& getName() const override;
    bool exists() const override { return _alive; }
    bool isEnabled() const override;
    void setEnabled(bool enabled) override;

    // Fires the kind's callbacks as the host delivers a user action: what a
    // handler throws is contained and reported under the widget's name, and
    // the application's requests run after the outermost callback. Nothing
    // fires once the widget is gone.
    void fire(int kind, EvEvent& event);
    // True while callbacks of some widget run, or a widget writes its edit to
    // the input it is bound to: a widget destroyed then may be in use, and is
    // deleted later.
    static bool isFiring();

    // A widget's own handling under way (its callbacks, its edit written
    // back): isFiring() answers true while one lives, and the application's
    // requests run when the outermost goes.
    class FiringScope {
    public:
        FiringScope();
        ~FiringScope();
        FiringScope(const FiringScope&) = delete;
        FiringScope& operator=(const FiringScope&) = delete;
    };

    // The keyboard state of the application now: the keyboard state of
    // actions that come without an input event.
    static EvKeyboardState currentKeyboardState();

protected:
    explicit UiWidgetAdapter(QWidget* widget);

    // The window-system widget is being destroyed (its own class's part is
    // gone already): drop what refers to it. Called once.
    virtual void widgetGone();

private:
    class Keeper;
    friend class Keeper;

    bool _alive = true;
    LiString _name;
};
