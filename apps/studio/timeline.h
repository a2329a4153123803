#pragma once

#include <QWidget>

#include <functional>
#include <vector>

// The shot's timeline under the viewer: its frame range with a scale, the
// current frame, the frames held in the frame cache (a strip along the
// bottom) and the animation keys of what is being edited (ticks along the
// top). Pressing or dragging in it scrubs: it answers the frame under the
// pointer through the scrub callback.
class Timeline : public QWidget {
public:
    explicit Timeline(QWidget* parent = nullptr);

    void setRange(int first, int last);
    int getFirst() const { return _first; }
    int getLast() const { return _last; }
    void setFrame(int frame);
    int getFrame() const { return _frame; }
    void setCached(std::vector<int> frames);
    const std::vector<int>& getCached() const { return _cached; }
    void setKeys(std::vector<int> frames);
    const std::vector<int>& getKeys() const { return _keys; }

    // The frame under a point of the widget (clamped to the range).
    int frameAt(int x) const;
    // Where a frame stands, in widget pixels.
    int xOf(int frame) const;

    // Called with the frame under the pointer while the user presses or
    // drags; the last call of a drag has `done` set.
    std::function<void(int frame, bool done)> onScrub;

    QSize sizeHint() const override { return {800, 44}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    int _first = 1;
    int _last = 1;
    int _frame = 1;
    std::vector<int> _cached;
    std::vector<int> _keys;
    bool _dragging = false;
};
