#pragma once

#include <base/cbHandler.h>
#include <base/evEvent.h>
#include <base/gePoint2.h>

#include <QObject>

#include <map>
#include <memory>
#include <string>
#include <vector>

class HostSession;
class QKeyEvent;
class QMouseEvent;

// Writes down what the user does as a session script (the language of
// docs/session-scripts.md), so that tessera-run replays it to the same keyer
// state:
//
// - the pointer and the keys in the viewer, seen as the window system's
//   events before anything else handles them (grabs included): presses,
//   releases and moves in plate pixels, chosen so that they replay to the
//   very window positions (ViewerDriver::windowToPlate); a key that is a
//   hotkey the viewer takes as `hotkey "NAME"`. Moves with no button nor
//   modifier held only show feedback: of a run of them only the last is
//   kept. The middle button navigates and is not written; the view it
//   leaves is (`window`, `zoom`, `pan`, before the next event);
// - the panels' widgets, through their callbacks: a toggle or a button
//   pressed, a menu entry chosen, a number entered, a trackball dragged
//   (`widget PANEL NAME ...` with the modifiers held);
// - what the host did itself (plate, stage, view mode, frame, undo, ...):
//   the lines the studio carried out, given to addLine.
//
// While a Pause lives (the host carrying out a line itself), nothing is
// observed.
class SessionRecorder : public QObject {
public:
    explicit SessionRecorder(HostSession& session);
    ~SessionRecorder() override;
    SessionRecorder(const SessionRecorder&) = delete;
    SessionRecorder& operator=(const SessionRecorder&) = delete;

    class Pause {
    public:
        explicit Pause(SessionRecorder& recorder);
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        SessionRecorder& _recorder;
    };

    // A line the host carried out.
    void addLine(const std::string& line);
    // The recording becomes these lines (a session recovered, which goes on
    // from there); the view is written again before the next event.
    void restore(const std::vector<std::string>& lines);
    // The lines so far (a move kept back included).
    std::vector<std::string> getLines() const;
    // The script: a comment, then the lines.
    std::string getText() const;
    bool save(const std::string& path, std::string& error) const;

    // Follows the panels as they are now: the widgets of panels built since
    // the last call are listened to. The host calls it after each action.
    void refresh();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class PanelListener;

    void record(const std::string& line);
    void flushMove();
    void viewLines();
    void pointer(const QMouseEvent& event);
    void key(const QKeyEvent& event);
    void widgetAction(const std::string& panel, EvEvent& event);
    bool isViewer(QObject* object) const;

    HostSession& _session;
    std::vector<std::string> _lines;
    std::string _pendingMove;
    int _paused = 0;
    // The view last written: window size, zoom, pan.
    int _width = -1;
    int _height = -1;
    float _zoom = 0.0f;
    GePoint2<float> _pan;
    // The key down last written as keydown, to merge its release into key.
    std::string _keyDown;
    std::map<std::string, std::unique_ptr<PanelListener>> _listeners;
    // Trackball drags under way: widget -> moves so far.
    std::map<std::string, int> _dragSteps;
};
