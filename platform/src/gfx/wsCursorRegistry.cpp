#include <gfx/wsCursorRegistry.h>

#include <base/exReporter.h>

#include <algorithm>

const LiString WsCursorRegistry::Default = "Default";
const LiString WsCursorRegistry::Pick = "Pick";
const LiString WsCursorRegistry::PickPlus = "PickPlus";
const LiString WsCursorRegistry::Cross = "Cross";
const LiString WsCursorRegistry::Move = "Move";
const LiString WsCursorRegistry::SizeHor = "SizeHor";
const LiString WsCursorRegistry::Hand = "Hand";

WsCursorRegistry& WsCursorRegistry::getInstance() {
    static WsCursorRegistry instance;
    return instance;
}

WsCursorRegistry::WsCursorRegistry() {
    // The droppers' hot spot is the tip, at the lower-left of a 24 pixel shape.
    registerCursor(rcMake<WsCursor>(Default, GePoint2<int>(0, 0)));
    registerCursor(rcMake<WsCursor>(Pick, GePoint2<int>(1, 22)));
    registerCursor(rcMake<WsCursor>(PickPlus, GePoint2<int>(1, 22)));
    registerCursor(rcMake<WsCursor>(Cross, GePoint2<int>(11, 11)));
    registerCursor(rcMake<WsCursor>(Move, GePoint2<int>(11, 11)));
    registerCursor(rcMake<WsCursor>(SizeHor, GePoint2<int>(11, 11)));
    registerCursor(rcMake<WsCursor>(Hand, GePoint2<int>(11, 11)));
}

RCShdPtr<WsCursor> WsCursorRegistry::getCursor(const LiString& name) const {
    auto it = _cursors.find(name);
    if (it != _cursors.end()) {
        return it->second;
    }
    if (std::find(_reported.begin(), _reported.end(), name) == _reported.end()) {
        _reported.push_back(name);
        ExReporter::getInstance().report("cursor registry",
                                         "no cursor named \"" + name + "\"; using the default");
    }
    return _cursors.at(Default);
}

bool WsCursorRegistry::hasCursor(const LiString& name) const {
    return _cursors.count(name) != 0;
}

void WsCursorRegistry::registerCursor(const RCShdPtr<WsCursor>& cursor) {
    if (cursor) {
        _cursors[cursor->getName()] = cursor;
    }
}

std::vector<LiString> WsCursorRegistry::getNames() const {
    std::vector<LiString> names;
    for (const auto& [name, cursor] : _cursors) {
        names.push_back(name);
    }
    return names;
}
