#pragma once

#include <QToolBar>

#include <functional>
#include <string>

class HostSession;
class QComboBox;
class QDoubleSpinBox;

// The studio's colour bar: the plate's colour space, what the viewer shows
// through (display, view, exposure, gamma) and the colour space exports are
// written in. Every change is a session-script line given to `perform`, so
// that it is recorded as any other action; refresh shows the session's state.
class StudioColourBar : public QToolBar {
public:
    using Perform = std::function<bool(const std::string&)>;

    StudioColourBar(HostSession& session, Perform perform, QWidget* parent);

    void refresh();
    // " colorspace NAME" for an export, or "" for the format's default.
    std::string exportSpaceWords() const;

private:
    void fillSpaces(QComboBox* combo);
    void fillViews();
    void change(const std::string& line);

    HostSession& _session;
    Perform _perform;
    QComboBox* _plate = nullptr;
    QComboBox* _display = nullptr;
    QComboBox* _view = nullptr;
    QDoubleSpinBox* _exposure = nullptr;
    QDoubleSpinBox* _gamma = nullptr;
    QComboBox* _export = nullptr;
    bool _refreshing = false;
};
