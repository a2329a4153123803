#pragma once

#include <QWidget>

#include <functional>
#include <string>

class HostSession;
class QTimer;
class QToolButton;
class Timeline;

// The shot's controls under the viewer: the timeline and the transport
// (first frame, step back, play, step forward, last frame). Frames the user
// settles on are carried out as session lines (`frame N`, through the
// studio's perform, so they are recorded); the frames a scrub or playback
// runs through are shown without being recorded, at viewer resolution, with
// the frames after them read ahead into the frame cache.
//
// Keys, with the focus in the viewer or here: Left and Right step, Ctrl+Left
// and Ctrl+Right go to the first and last frame, Space plays and stops.
class ShotControls : public QWidget {
public:
    ShotControls(HostSession& session, std::function<bool(const std::string&)> perform,
                 QWidget* parent);
    ~ShotControls() override;

    Timeline& getTimeline() const { return *_timeline; }
    bool isPlaying() const;
    void play();
    void stop();
    // Steps by `delta` frames within the range (wrapping while playing).
    void step(int delta);
    void toFirst();
    void toLast();

    // The range, the frame, the cached frames and the keys, from the session.
    void refresh();

private:
    void show(int frame);
    void settle(int frame);
    void tick();

    HostSession& _session;
    std::function<bool(const std::string&)> _perform;
    Timeline* _timeline;
    QToolButton* _play;
    QTimer* _player;
    QTimer* _cacheWatch;
};
