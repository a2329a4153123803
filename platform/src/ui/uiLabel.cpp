#include <ui/uiFont.h>
#include <ui/uiLabel.h>
#include <ui/uiWidgetEvent.h>

#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QObject>
#include <QResizeEvent>

// Watches the label's size.
class UiLabel::Imp : public QObject {
public:
    Imp(UiLabel& owner, QLabel* label)
        : _owner(owner) {
        label->installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Resize) {
            const auto& resize = static_cast<QResizeEvent&>(*event);
            if (resize.size() != resize.oldSize()) {
                resized();
            }
        }
        return false;
    }

    void resized() {
        UiWidgetEvent event(PiWidget::Resized, _owner.getName(),
                            UiWidgetAdapter::currentKeyboardState());
        _owner.fire(PiWidget::Resized, event);
    }

    UiLabel& _owner;
};

UiLabel::UiLabel(QLabel* label)
    : UiWidgetAdapter(label)
    , _imp(std::make_unique<Imp>(*this, label)) {}

UiLabel::~UiLabel() = default;

QLabel* UiLabel::label() const {
    return qobject_cast<QLabel*>(getLiveWidget());
}

LiString UiLabel::getText() const {
    const QLabel* l = label();
    return l ? l->text().toStdString() : LiString();
}

void UiLabel::setText(const LiString& text) {
    if (QLabel* l = label()) {
        l->setText(QString::fromStdString(text));
    }
}

UiString UiLabel::getLabel() const {
    const QLabel* l = label();
    return UiString(l ? l->text().toStdString() : LiString(),
                    RCShdPtr<WsFont>(new UiFont(l ? l->font() : QApplication::font())));
}

void UiLabel::setWidth(int width) {
    QLabel* l = label();
    if (!l || width < 0 || width == l->width()) {
        return;
    }
    const RCShdPtr<UiWidgetAdapter> keep(this);
    l->resize(width, l->height());
    // A label that is not shown gets its resize event when it is shown; the
    // plug-in hears of the new width now.
    if (!l->isVisible()) {
        _imp->resized();
    }
}
