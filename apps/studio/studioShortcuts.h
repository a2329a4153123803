#pragma once

#include <resmgt/liString.h>

#include <QDialog>
#include <QKeySequence>

class QAction;
class QTreeWidget;

// The studio's keys come from the hotkey table, as the viewer's do: the
// studio's own actions are the entries of its "Studio" domain, the viewer's
// keys those of the "Viewer" domain (UiViewerKeys), the keyer's tools those
// of the keyer's domain. Every menu shows an action's key from there, and
// Help > Keyboard Shortcuts lists them all.
class StudioShortcuts {
public:
    static const LiString Domain; // "Studio"

    // The entry's key; empty when the entry is unbound or unknown.
    static QKeySequence keyOf(const LiString& domain, const LiString& entry);
    // The action shows the entry's key. An action of the studio's own
    // (`owned`) takes it as a shortcut of the window; a key that belongs to
    // the viewer (taken by the viewer where the pointer is) is only shown,
    // so that it still reaches the viewer and its tools.
    static void bind(QAction* action, const LiString& domain, const LiString& entry, bool owned);
};

// Help > Keyboard Shortcuts: every entry of the hotkey table by domain (the
// viewer's tools, the viewer, the studio) with its key.
class StudioShortcutsDialog : public QDialog {
public:
    explicit StudioShortcutsDialog(QWidget* parent);
    QTreeWidget& getTree() const { return *_tree; }

private:
    QTreeWidget* _tree;
};
