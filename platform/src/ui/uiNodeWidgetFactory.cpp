#include <ui/uiNodeWidgetFactory.h>

#include <algorithm>

namespace {

std::vector<UiNodeWidgetFactory::Entry>& entries() {
    static std::vector<UiNodeWidgetFactory::Entry> list;
    return list;
}

void add(UiNodeWidgetFactory::Entry entry) {
    UiNodeWidgetFactory::unregister(entry.name);
    entries().push_back(std::move(entry));
}

} // namespace

void UiNodeWidgetFactory::registerStage(const LiString& name, const LiString& description,
                                        Accepts accepts, Factory factory) {
    add({name, description, accepts, factory, false});
}

void UiNodeWidgetFactory::registerPanel(const LiString& name, const LiString& description,
                                        Accepts accepts, Factory factory) {
    add({name, description, accepts, factory, true});
}

void UiNodeWidgetFactory::unregister(const LiString& name) {
    std::erase_if(entries(), [&name](const Entry& e) { return e.name == name; });
}

std::optional<UiNodeWidgetFactory::Entry> UiNodeWidgetFactory::find(const LiString& name) {
    for (const Entry& e : entries()) {
        if (e.name == name) {
            return e;
        }
    }
    return std::nullopt;
}

std::optional<UiNodeWidgetFactory::Entry> UiNodeWidgetFactory::findPanelFor(const PiNode& node) {
    const auto& list = entries();
    for (auto it = list.rbegin(); it != list.rend(); ++it) {
        if (it->isPanel && (!it->accepts || it->accepts(node))) {
            return *it;
        }
    }
    return std::nullopt;
}

std::vector<LiString> UiNodeWidgetFactory::getNames() {
    std::vector<LiString> names;
    for (const Entry& e : entries()) {
        names.push_back(e.name);
    }
    return names;
}
