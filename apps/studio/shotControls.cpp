#include "shotControls.h"

#include "timeline.h"

#include "host/hostSession.h"

#include <tesseraCore/io/tsClip.h>
#include <ui/uiValueEditor.h>
#include <ui/uiViewer.h>

#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QTimer>
#include <QToolButton>

#include <algorithm>
#include <set>

namespace {

// How many frames playback reads ahead.
constexpr int ReadAhead = 12;
constexpr int FramesPerSecond = 24;

PiFrameRange rangeOf(const HostSession& session) {
    const PiClipPtr& plate = session.getPlate();
    const PiFrameRange range = plate ? plate->getFrameRange() : PiFrameRange();
    return range.unbounded ? PiFrameRange{1, 100, false} : range;
}

// The input of the number field that has the focus, if any.
RCShdPtr<PiInput> focusedInput() {
    for (QWidget* w = QApplication::focusWidget(); w; w = w->parentWidget()) {
        if (auto* spin = qobject_cast<QAbstractSpinBox*>(w)) {
            const RCShdPtr<UiWidgetAdapter> adapter = UiWidgetAdapter::of(spin);
            if (const auto* field = dynamic_cast<const UiValueEditor*>(adapter.get())) {
                return field->getInput();
            }
        }
    }
    return RCShdPtr<PiInput>();
}

} // namespace

ShotControls::ShotControls(HostSession& session, std::function<bool(const std::string&)> perform,
                           QWidget* parent)
    : QWidget(parent)
    , _session(session)
    , _perform(std::move(perform))
    , _timeline(new Timeline(this))
    , _play(new QToolButton(this))
    , _player(new QTimer(this))
    , _cacheWatch(new QTimer(this)) {
    setObjectName("shotControls");
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 2);
    auto button = [this, layout](const char* name, const char* text, const char* tip,
                                 std::function<void()> action) {
        auto* b = new QToolButton(this);
        b->setObjectName(name);
        b->setText(text);
        b->setToolTip(tip);
        connect(b, &QToolButton::clicked, this, std::move(action));
        layout->addWidget(b);
        return b;
    };
    button("firstFrame", "|<", "First frame (Ctrl+Left)", [this] { toFirst(); });
    button("stepBack", "<", "Step back (Left)", [this] { step(-1); });
    _play->setObjectName("play");
    _play->setText(">");
    _play->setToolTip("Play and stop (Space)");
    connect(_play, &QToolButton::clicked, this, [this] { isPlaying() ? stop() : play(); });
    layout->addWidget(_play);
    button("stepForward", ">|", "Step forward (Right)", [this] { step(1); });
    button("lastFrame", ">>|", "Last frame (Ctrl+Right)", [this] { toLast(); });
    layout->addWidget(_timeline, 1);

    _timeline->onScrub = [this](int frame, bool done) {
        if (done) {
            settle(frame);
        } else {
            show(frame);
        }
    };
    _player->setInterval(1000 / FramesPerSecond);
    connect(_player, &QTimer::timeout, this, [this] { tick(); });
    // The cache fills in the background: its strip follows.
    _cacheWatch->setInterval(250);
    connect(_cacheWatch, &QTimer::timeout, this, [this] { refresh(); });
    _cacheWatch->start();

    // The keys act where the viewer is: on the parent (the viewer's area)
    // and its children, so typing into a panel field is left alone.
    auto shortcut = [this, parent](QKeySequence keys, std::function<void()> action) {
        auto* a = new QAction(this);
        a->setShortcut(keys);
        a->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        connect(a, &QAction::triggered, this, std::move(action));
        (parent ? parent : this)->addAction(a);
    };
    shortcut(QKeySequence(Qt::Key_Left), [this] { step(-1); });
    shortcut(QKeySequence(Qt::Key_Right), [this] { step(1); });
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_Left), [this] { toFirst(); });
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_Right), [this] { toLast(); });
    shortcut(QKeySequence(Qt::Key_Space), [this] { isPlaying() ? stop() : play(); });
    refresh();
}

ShotControls::~ShotControls() = default;

bool ShotControls::isPlaying() const {
    return _player->isActive();
}

void ShotControls::play() {
    if (isPlaying()) {
        return;
    }
    _play->setText("||");
    _session.getViewer().setInteractive(true);
    _player->start();
}

void ShotControls::stop() {
    if (!isPlaying()) {
        return;
    }
    _player->stop();
    _play->setText(">");
    settle(PiClip::frameOf(_session.getFrame()));
}

void ShotControls::tick() {
    const PiFrameRange range = rangeOf(_session);
    int next = PiClip::frameOf(_session.getFrame()) + 1;
    if (next > range.last) {
        next = range.first;
    }
    show(next);
}

void ShotControls::step(int delta) {
    const PiFrameRange range = rangeOf(_session);
    const int frame =
        std::clamp(PiClip::frameOf(_session.getFrame()) + delta, range.first, range.last);
    if (frame == PiClip::frameOf(_session.getFrame())) {
        return; // at the end of the range already
    }
    if (isPlaying()) {
        show(frame);
    } else {
        settle(frame);
    }
}

void ShotControls::toFirst() {
    stop();
    settle(rangeOf(_session).first);
}

void ShotControls::toLast() {
    stop();
    settle(rangeOf(_session).last);
}

void ShotControls::show(int frame) {
    // Frames run through: at viewer resolution, not recorded, the ones
    // after read ahead.
    _session.getViewer().setInteractive(true);
    _session.setFrame(frame);
    for (const PiClipPtr& clip : {_session.getPlate(), _session.getBackground()}) {
        if (const auto* own = dynamic_cast<const TsClip*>(clip.get())) {
            own->readAhead(frame, ReadAhead);
        }
    }
    _timeline->setFrame(frame);
}

void ShotControls::settle(int frame) {
    // Recorded, and shown at full resolution once playback has stopped.
    _session.getViewer().setInteractive(isPlaying());
    _perform("frame " + std::to_string(frame));
    refresh();
}

void ShotControls::refresh() {
    const PiFrameRange range = rangeOf(_session);
    _timeline->setRange(range.first, range.last);
    _timeline->setFrame(PiClip::frameOf(_session.getFrame()));
    const auto* plate = dynamic_cast<const TsClip*>(_session.getPlate().get());
    _timeline->setCached(plate ? plate->getCachedFrames() : std::vector<int>());
    // The keys of the field being edited, else of every animated input of
    // the node shown.
    std::set<int> keys;
    auto add = [&keys](const PiInput& input) {
        for (const PiAnimKey& k : input.getKeys()) {
            keys.insert(PiClip::frameOf(k.time));
        }
    };
    if (const RCShdPtr<PiInput> input = focusedInput()) {
        add(*input);
    } else if (const RCShdPtr<TsKeyerNode> node = _session.getShownNode()) {
        for (int i = 0; i < node->getInputCount(); ++i) {
            add(*node->getInput(i));
        }
    }
    _timeline->setKeys(std::vector<int>(keys.begin(), keys.end()));
}
