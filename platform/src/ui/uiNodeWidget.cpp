#include <ui/uiApplication.h>
#include <ui/uiContainer.h>
#include <ui/uiDualState.h>
#include <ui/uiInputMenu.h>
#include <ui/uiInputValueEditor.h>
#include <ui/uiMenu.h>
#include <ui/uiNodeWidget.h>
#include <ui/uiNodeWidgetArea.h>
#include <ui/uiPanelDescription.h>
#include <ui/uiValueEditor.h>

#include <base/exReporter.h>
#include <base/iteratorEmpty.h>
#include <base/iteratorVector.h>
#include <base/rcCast.h>
#include <pluginAPI/piPath.h>

#include <QVBoxLayout>
#include <QVariant>
#include <QWidget>

namespace {

Iterator<UiNodeWidget::Item> none() {
    return Iterator<UiNodeWidget::Item>(
        RCShdPtr<IteratorImp<UiNodeWidget::Item>>(new IteratorEmpty<UiNodeWidget::Item>));
}

} // namespace

UiNodeWidget::UiNodeWidget(UiNodeWidgetArea* area)
    : UiWidgetAdapter(area) {}

UiNodeWidget::~UiNodeWidget() = default;

LiString UiNodeWidget::getStage() const {
    return _stage.empty() ? getName() : _stage;
}

void UiNodeWidget::setStage(const LiString& stage) {
    _stage = stage;
}

Iterator<UiNodeWidget::Item> UiNodeWidget::setContent(const RCShdPtr<PiNode>& node) {
    return setContent(node, RCShdPtr<const PiTimePath>());
}

Iterator<UiNodeWidget::Item> UiNodeWidget::setContent(const RCShdPtr<PiNode>& node,
                                                      const RCShdPtr<const PiTimePath>& timePath) {
    const RCShdPtr<UiWidgetAdapter> keep(this);
    // The time path of the panel around is looked up before anything goes.
    const RCShdPtr<const PiTimePath> path = timePath ? timePath : timePathFor(node);
    clearContent();
    QWidget* area = getLiveWidget();
    if (!node || !area) {
        return none();
    }
    const LiString stage = getStage();
    const std::optional<UiNodeWidgetFactory::Entry> entry = UiNodeWidgetFactory::find(stage);
    if (!entry) {
        ExReporter::getInstance().report("panel area '" + getName() + "'",
                                         "no panel is registered for '" + stage + "'");
        return none();
    }
    if (entry->accepts && !entry->accepts(*node)) {
        return none();
    }
    LiString error;
    QWidget* built = UiPanelDescription::build(entry->description, area, error);
    if (!built) {
        ExReporter::getInstance().report("panel area '" + getName() + "'", error);
        return none();
    }
    if (!area->layout()) {
        auto* layout = new QVBoxLayout(area);
        layout->setContentsMargins(0, 0, 0, 0);
    }
    area->layout()->addWidget(built);
    built->show();

    const RCShdPtr<PiContainer> container = rcTestCast<PiContainer>(UiWidgetAdapter::of(built));
    if (!container) {
        ExReporter::getInstance().report("panel description " + entry->description,
                                         "its top widget is not a container");
        delete built;
        return none();
    }
    _content = Item{entry->name, entry->description, node, container, {}};
    _timePath = path;
    bindInputs(built, node);
    if (entry->factory) {
        RCShdPtr<RCBase<LkCounter<int>>> controller;
        const bool made =
            exContain("panel " + entry->description + " for '" + node->getName() + "'",
                      [&] { controller = entry->factory(node, container, path); });
        if (made) {
            _content.controller = controller;
        } else {
            built->setEnabled(false);
        }
    }
    return Iterator<Item>(RCShdPtr<IteratorImp<Item>>(new IteratorVector<Item>({_content})));
}

namespace {

// Holds a panel's controller, and the node it works on, until the
// application's requests run; the controller goes first.
class ReleaseLater : public EvRequestEvent {
public:
    ReleaseLater(RCShdPtr<RCBase<LkCounter<int>>> controller, RCShdPtr<PiNode> node)
        : _controller(std::move(controller))
        , _node(std::move(node)) {}
    void process() override {
        _controller.reset();
        _node.reset();
    }

private:
    RCShdPtr<RCBase<LkCounter<int>>> _controller;
    RCShdPtr<PiNode> _node;
};

} // namespace

void UiNodeWidget::clearContent() {
    Item old = std::move(_content);
    _content = Item();
    _timePath.reset();
    // The controller first: its callbacks leave the widgets and the node.
    // While a widget's callbacks run, one of the controller's may be among
    // them: the controller then goes once they are done.
    if (old.controller && UiWidgetAdapter::isFiring()) {
        UiApplication::getInstance().postRequest(
            OPtr<EvRequestEvent>(new ReleaseLater(std::move(old.controller), old.node)));
    }
    old.controller.reset();
    old.node.reset();
    QWidget* built =
        old.container ? rcCast<UiWidgetAdapter>(old.container)->getLiveWidget() : nullptr;
    old.container.reset();
    if (!built) {
        return;
    }
    if (UiWidgetAdapter::isFiring()) {
        // A callback of one of these widgets may be running.
        built->hide();
        built->setParent(nullptr);
        built->deleteLater();
    } else {
        delete built;
    }
}

void UiNodeWidget::widgetGone() {
    clearContent();
}

RCShdPtr<const PiTimePath> UiNodeWidget::timePathFor(const RCShdPtr<PiNode>& node) const {
    if (!node) {
        return RCShdPtr<const PiTimePath>();
    }
    const TmTimeClient* client = _timePath ? _timePath->getTimeClient() : nullptr;
    QWidget* area = getLiveWidget();
    for (QWidget* w = area ? area->parentWidget() : nullptr; w && !client; w = w->parentWidget()) {
        if (auto* outer = dynamic_cast<UiNodeWidget*>(UiWidgetAdapter::find(w))) {
            if (outer->_timePath) {
                client = outer->_timePath->getTimeClient();
            }
        }
    }
    return RCShdPtr<const PiTimePath>(
        new PiTimePath(client, RCShdPtr<const PiPath>(new PiPath(node))));
}

void UiNodeWidget::bindInputs(QWidget* built, const RCShdPtr<PiNode>& node) {
    for (QWidget* widget : UiContainer::panelWidgets(built)) {
        const QVariant property = widget->property("input");
        if (!property.isValid()) {
            continue;
        }
        const LiString name = property.toString().toStdString();
        const LiString source = "panel " + _content.description + ", widget '" +
                                widget->objectName().toStdString() + "'";
        const RCShdPtr<PiInput> input = node->getInput(name);
        if (!input) {
            ExReporter::getInstance().report(source, "names the input '" + name + "', which '" +
                                                         node->getName() + "' does not have");
            continue;
        }
        exContain(source, [&] {
            const RCShdPtr<UiWidgetAdapter> adapter = UiWidgetAdapter::of(widget);
            if (auto editor = rcTestCast<UiValueEditor>(adapter)) {
                UiInputValueEditor::setInput(editor, input, _timePath,
                                             UiInputValueEditor::Undoable);
            } else if (auto menu = rcTestCast<UiMenu>(adapter)) {
                UiInputMenu::setInput(menu, input, _timePath, UiInputMenu::Undoable);
            } else if (auto toggle = rcTestCast<UiDualState>(adapter)) {
                toggle->bindInput(input, _timePath, true);
            } else {
                ExReporter::getInstance().report(
                    source, "names an input, but a " +
                                (adapter ? dynamicTypeNameOf(*adapter) : LiString("widget")) +
                                " cannot edit one");
            }
        });
    }
}
