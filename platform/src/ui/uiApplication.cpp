#include <ui/uiApplication.h>
#include <ui/uiCursorUtil.h>
#include <ui/uiGrab.h>
#include <ui/uiGrabHandler.h>
#include <ui/uiQtEvents.h>
#include <ui/uiWidget.h>

#include <base/exReporter.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMetaObject>
#include <QMouseEvent>
#include <QPointer>
#include <QWidget>

#include <deque>
#include <set>

namespace {

// A safety net: a request that keeps posting itself yields to the event loop
// after this many requests in one pass.
constexpr int maxRequestsPerPass = 10000;

GePoint2<float> toPoint(const QPointF& p) {
    return {static_cast<float>(p.x()), static_cast<float>(p.y())};
}

} // namespace

// The window-system side: the application object (when the host made none),
// the queue, the keys held, and the filter that routes grabbed input.
class UiApplication::Imp : public QObject {
public:
    explicit Imp(UiApplication& owner)
        : _owner(owner) {
        if (!QApplication::instance()) {
            static int argc = 1;
            static char name[] = "tessera";
            static char* argv[] = {name, nullptr};
            _app = std::make_unique<QApplication>(argc, argv);
        }
        QCoreApplication::instance()->installEventFilter(this);
    }

    bool eventFilter(QObject* object, QEvent* event) override {
        switch (event->type()) {
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
            return keyEvent(object, static_cast<QKeyEvent&>(*event));
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
            return mouseEvent(object, static_cast<QMouseEvent&>(*event));
        default:
            return false;
        }
    }

    bool keyEvent(QObject* object, const QKeyEvent& event) {
        const EvKeyCode::KeyCode key = UiQtEvents::toKeyCode(event.key());
        if (key != EvKeyCode::KeyNone && !event.isAutoRepeat()) {
            if (event.type() == QEvent::KeyPress) {
                held.insert(key);
            } else {
                held.erase(key);
            }
        }
        UiGrab& grab = UiGrab::keyboard();
        if (!grab.isGrabbed() || !object->isWidgetType()) {
            return false;
        }
        const auto* widget = static_cast<QWidget*>(object);
        std::unique_ptr<EvKeyEvent> ev =
            UiQtEvents::toKeyEvent(event, originCoord(grab.getHolder(), widget, QCursor::pos()));
        if (ev) {
            ev->setGlobalCoord(toPoint(QCursor::pos()));
            grab.deliver(*ev);
        }
        return true; // a keyboard grab takes every key
    }

    bool mouseEvent(QObject* object, const QMouseEvent& event) {
        UiGrab& grab = UiGrab::pointer();
        if (!grab.isGrabbed() || !object->isWidgetType()) {
            return false;
        }
        // An event let through to a widget that ignores it is offered to the
        // widget's parents: it was delivered already.
        const Signature signature{event.type(), event.globalPosition(), event.timestamp()};
        if (passedOn && signature == passed && isAncestor(object, passedOn)) {
            return false;
        }
        UiGrabHandler* holder = grab.getHolder();
        const bool allow = holder->allowPtrHandlingInGrab();
        std::unique_ptr<EvPointerEvent> ev =
            UiQtEvents::toPointerEvent(event, originCoord(holder, static_cast<QWidget*>(object),
                                                          event.globalPosition().toPoint()));
        if (!ev) {
            return false;
        }
        const bool processed = grab.deliver(*ev);
        if (processed || !allow) {
            return true;
        }
        passed = signature;
        passedOn = object;
        return false;
    }

    // A global position in the coordinates of the handler's origin (or the
    // screen's).
    static GePoint2<float> originCoord(UiGrabHandler* holder, const QWidget*,
                                       const QPointF& global) {
        UiWidget* origin = holder ? holder->getProcessOrigin() : nullptr;
        if (origin && origin->getQWidget()) {
            return toPoint(origin->getQWidget()->mapFromGlobal(global));
        }
        return toPoint(global);
    }

    static bool isAncestor(QObject* ancestor, QObject* of) {
        for (QObject* o = of ? of->parent() : nullptr; o; o = o->parent()) {
            if (o == ancestor) {
                return true;
            }
        }
        return false;
    }

    void schedule() {
        if (scheduled) {
            return;
        }
        scheduled = true;
        QMetaObject::invokeMethod(
            this,
            [this] {
                scheduled = false;
                _owner.processRequests();
            },
            Qt::QueuedConnection);
    }

    struct Signature {
        QEvent::Type type = QEvent::None;
        QPointF global;
        quint64 timestamp = 0;
        bool operator==(const Signature& o) const {
            return type == o.type && global == o.global && timestamp == o.timestamp;
        }
    };

    UiApplication& _owner;
    std::unique_ptr<QApplication> _app;
    std::deque<std::unique_ptr<EvRequestEvent>> requests;
    bool scheduled = false;
    std::set<EvKeyCode::KeyCode> held;
    Signature passed;
    QPointer<QObject> passedOn;
};

UiApplication& UiApplication::getInstance() {
    // Never destroyed: widgets and plug-in statics may use it while the
    // program exits.
    static UiApplication* instance = new UiApplication;
    return *instance;
}

UiApplication::UiApplication()
    : _imp(std::make_unique<Imp>(*this)) {}

void UiApplication::postRequest(OPtr<EvRequestEvent> request) {
    if (!request) {
        return;
    }
    _imp->requests.emplace_back(request.release());
    _imp->schedule();
}

int UiApplication::processRequests() {
    int ran = 0;
    while (!_imp->requests.empty()) {
        if (ran == maxRequestsPerPass) {
            _imp->schedule();
            break;
        }
        std::unique_ptr<EvRequestEvent> request = std::move(_imp->requests.front());
        _imp->requests.pop_front();
        exContain("request", [&] { request->process(); });
        ++ran;
    }
    return ran;
}

int UiApplication::getPendingRequestCount() const {
    return static_cast<int>(_imp->requests.size());
}

void UiApplication::pushOverrideCursor(const RCShdPtr<WsCursor>& cursor) {
    if (!cursor) {
        ExReporter::getInstance().report("override cursor", "no cursor to push; ignored");
        return;
    }
    _cursors.push_back(cursor);
    QApplication::setOverrideCursor(UiCursorUtil::toQCursor(*cursor));
}

void UiApplication::popOverrideCursor() {
    if (_cursors.empty()) {
        ExReporter::getInstance().report("override cursor",
                                         "pop with no override cursor pushed; ignored");
        return;
    }
    _cursors.pop_back();
    QApplication::restoreOverrideCursor();
}

RCShdPtr<WsCursor> UiApplication::getOverrideCursor() const {
    return _cursors.empty() ? RCShdPtr<WsCursor>() : _cursors.back();
}

EvKeyboardState UiApplication::getKeyboardState(unsigned modifierMask) const {
    EvKeyboardState state(modifierMask);
    for (EvKeyCode::KeyCode key : _imp->held) {
        if (key != EvKeyCode::KeyShift && key != EvKeyCode::KeyControl &&
            key != EvKeyCode::KeyAlt && key != EvKeyCode::KeyMeta) {
            state.setKeyDown(key, true);
        }
    }
    return state;
}
