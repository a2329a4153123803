#include "studioShortcuts.h"

#include "host/viewerDriver.h"

#include <ui/uiHotkeyRegistry.h>
#include <ui/uiQtEvents.h>
#include <ui/uiViewerKeys.h>

#include <QAction>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <map>

const LiString StudioShortcuts::Domain = "Studio";

QKeySequence StudioShortcuts::keyOf(const LiString& domain, const LiString& entry) {
    const UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
    const UiHotkeyRegistry::Binding binding =
        registry.getBinding(registry.findEntry(domain, entry));
    const int key = binding.isBound() ? ViewerDriver::toQtKey(binding.key) : 0;
    if (!key) {
        return QKeySequence();
    }
    return QKeySequence(
        QKeyCombination(UiQtEvents::toQtModifiers(binding.modifiers), static_cast<Qt::Key>(key)));
}

void StudioShortcuts::bind(QAction* action, const LiString& domain, const LiString& entry,
                           bool owned) {
    action->setShortcut(keyOf(domain, entry));
    // Only while the menu that shows it has the keyboard: the key itself goes
    // to the viewer.
    action->setShortcutContext(owned ? Qt::WindowShortcut : Qt::WidgetShortcut);
}

StudioShortcutsDialog::StudioShortcutsDialog(QWidget* parent)
    : QDialog(parent)
    , _tree(new QTreeWidget(this)) {
    setObjectName("keyboardShortcuts");
    setWindowTitle("Keyboard Shortcuts");
    _tree->setObjectName("shortcuts");
    _tree->setColumnCount(2);
    _tree->setHeaderLabels({"Action", "Key"});
    _tree->setRootIsDecorated(false);
    const std::map<LiString, QString> headings = {{UiHotkeyRegistry::TesseraDomain, "Viewer tools"},
                                                  {UiViewerKeys::Domain, "Viewer"},
                                                  {StudioShortcuts::Domain, "Studio"}};
    std::map<LiString, QTreeWidgetItem*> groups;
    const UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
    for (unsigned id = 1; id <= static_cast<unsigned>(registry.getEntryCount()); ++id) {
        const LiString domain = registry.getEntryDomain(id);
        QTreeWidgetItem*& group = groups[domain];
        if (!group) {
            const auto heading = headings.find(domain);
            group = new QTreeWidgetItem(
                _tree,
                {heading == headings.end() ? QString::fromStdString(domain) : heading->second});
            group->setFirstColumnSpanned(true);
            QFont bold = group->font(0);
            bold.setBold(true);
            group->setFont(0, bold);
        }
        const std::string key = registry.getBinding(id).toString();
        new QTreeWidgetItem(group, {QString::fromStdString(registry.getEntryName(id)),
                                    QString::fromStdString(key.empty() ? "-" : key)});
    }
    _tree->expandAll();
    _tree->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(_tree);
    layout->addWidget(buttons);
    resize(440, 560);
}
