#pragma once

#include "support/qtInput.h"

// A keyer group with three keyer nodes (slots 1 and 2 holding the first two)
// in a graph beside a node outside the group, shown by the host's main panel;
// a viewer showing the first keyer node; both in a main window, as the host
// lays them out. Panels are built from the real panel descriptions by the
// module's registered factories.
//
// The plate is 40 x 20 pixels: the left half one colour (Left), the right
// half another (Right). The viewer shows one plate pixel as ten window
// pixels, world (0, 0) at window (20, 220).

#include <base/exReporter.h>
#include <base/rcCast.h>
#include <base/vwUtils.h>
#include <gfx/mfCurrentToolEventHandler.h>
#include <gfx/wsFont.h>
#include <gfx/wsFontUtils.h>
#include <internalAPI/snSelection.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piDualState.h>
#include <pluginAPI/piEventHandlingInterface.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piImage.h>
#include <pluginAPI/piLabel.h>
#include <pluginAPI/piMenu.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/piSnItem.h>
#include <pluginAPI/piTimePath.h>
#include <pluginAPI/tmTimeClient.h>
#include <resmgt/liStringUtil.h>
#include <tesseraCore/tsGroupInterface.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsKeyerNode.h>
#include <tesseraCore/tsMgInterface.h>
#include <ui/uiApplication.h>
#include <ui/uiDualState.h>
#include <ui/uiGrab.h>
#include <ui/uiLabel.h>
#include <ui/uiMainWindow.h>
#include <ui/uiMenu.h>
#include <ui/uiNodeWidget.h>
#include <ui/uiPanel.h>
#include <ui/uiViewer.h>
#include <ui/uiWorkspace.h>

#include <QCoreApplication>
#include <QEvent>
#include <QMouseEvent>
#include <QWidget>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

// Test names of the two keyer generations.
inline std::string generationName(const ::testing::TestParamInfo<int>& param) {
    return "Generation" + std::to_string(param.param);
}

// The application exists before any widget of a fixture is made.
struct KeyerPanelApplication {
    KeyerPanelApplication() { UiApplication::getInstance(); }
};

class KeyerPanelScene : private KeyerPanelApplication {
public:
    static inline const CoRgbColorTyped<float> Left{0.2f, 0.7f, 0.3f};
    static inline const CoRgbColorTyped<float> Right{0.8f, 0.4f, 0.1f};

    // generation 1: a TsInterface group, 2: a TsInterface3 group.
    void build(int generation) {
        ExReporter::getInstance().clear();
        SnSelection::getCurrent()->clear();
        graph = PiGraph::create();
        group = TsKeyerGroup::create("keyer", generation, 3);
        graph->getRoot()->addNode(group);
        stranger = rcMake<PiNode>("grade");
        graph->getRoot()->addNode(stranger);
        for (int i = 0; i < 3; ++i) {
            keyers.push_back(group->getKeyerNode(i));
        }
        group->setSlotNode(0, keyers[0]);
        group->setSlotNode(1, keyers[1]);

        const RCShdPtr<PiImage> plate = rcMake<PiImage>(40, 20);
        for (int j = 0; j < 20; ++j) {
            for (int i = 0; i < 40; ++i) {
                const CoRgbColorTyped<float>& c = i < 20 ? Left : Right;
                plate->setPixel(i, j, {c.r, c.g, c.b, 1.0f});
            }
        }
        for (const auto& keyer : keyers) {
            keyer->getImageInput()->setValue(0.0, PiValue(PiImagePtr(plate)));
        }
        time.setTime(1.0);
        history().clear();

        window = std::make_unique<QWidget>();
        window->setObjectName("mainWindow");
        window->resize(1280, 1200);
        panel = new UiPanel("main", window.get());
        panel->setGeometry(0, 0, 380, 1200);
        viewer = new UiViewer(window.get(), "viewer");
        viewer->setGeometry(400, 0, 600, 400);
        mainWindow = std::make_unique<UiMainWindow>(window.get());
        UiApplication::getInstance().setMainWindow(mainWindow.get());
        window->show();
        viewer->setNode(keyers[0]);
        viewer->getMutableView().setZoom(10.0f);
        viewer->getMutableView().setPan({20.0f, 220.0f});
        showGroup();
        settle();
    }

    void tearDown() {
        UiGrab::pointer().release();
        UiGrab::keyboard().release();
        window.reset();
        panel = nullptr;
        viewer = nullptr;
        UiApplication::getInstance().setMainWindow(nullptr);
        mainWindow.reset();
        settle();
        SnSelection::getCurrent()->clear();
        for (const std::string& r : reports()) {
            ADD_FAILURE() << r;
        }
        ExReporter::getInstance().clear();
    }

    // What the host reported.
    static std::vector<std::string> reports() {
        std::vector<std::string> texts;
        for (const auto& r : ExReporter::getInstance().getReports()) {
            texts.push_back(r.text());
        }
        return texts;
    }

    // The main panel shows the group; false when it could not be built.
    bool showGroup() { return panel->setNode(group, timePathOf(group)); }

    RCShdPtr<const PiTimePath> timePathOf(const RCShdPtr<PiNode>& node) {
        return RCShdPtr<const PiTimePath>(
            new PiTimePath(&time, RCShdPtr<const PiPath>(new PiPath(node))));
    }

    // What the host's event loop does after each event: the application's
    // requests, the layouts (labels hear of their new sizes), and the widgets
    // deleted late.
    static void settle() {
        UiApplication::getInstance().processRequests();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        UiApplication::getInstance().processRequests();
    }

    void select(const RCShdPtr<PiNode>& node) {
        SnSelection::getCurrent()->setItems({PiSnItemUtil::create(node)});
        settle();
    }

    // The panel's widgets, by name.
    RCShdPtr<UiDualState> toggle(int slot) const {
        return panel->find<UiDualState>("nodeSelect" + LiStringUtil::convertNb(slot));
    }
    RCShdPtr<UiLabel> label(int slot) const {
        return panel->find<UiLabel>("nodeSelectLabel" + LiStringUtil::convertNb(slot));
    }
    // Whether the slot's label shows the name as well as its width allows:
    // whole, or its beginning followed by "...", or nothing when not even
    // that fits.
    ::testing::AssertionResult showsName(int slot, const std::string& name) const {
        const RCShdPtr<UiLabel> l = label(slot);
        const std::string text = l->getText();
        const RCShdPtr<WsFont> font = l->getLabel().getFont();
        const int width = l->getCanvas().getWidth();
        const std::string& dots = WsFontUtils::Ellipsis;
        bool ok = false;
        if (font->getTextWidth(name) <= width) {
            ok = text == name;
        } else if (text.empty()) {
            ok = font->getTextWidth(dots) > width;
        } else if (text.size() >= dots.size() &&
                   text.compare(text.size() - dots.size(), dots.size(), dots) == 0) {
            const std::string kept = text.substr(0, text.size() - dots.size());
            ok = name.compare(0, kept.size(), kept) == 0 && font->getTextWidth(text) <= width;
        }
        if (ok) {
            return ::testing::AssertionSuccess();
        }
        return ::testing::AssertionFailure()
               << "label " << slot << " shows \"" << text << "\" for \"" << name << "\" in "
               << width << " pixels";
    }
    RCShdPtr<UiNodeWidget> area(const std::string& name) const {
        return panel->find<UiNodeWidget>(name);
    }
    // The slot whose toggle is on, or -1; -2 when several are.
    int slotOn() const {
        int on = -1;
        for (int i = 0; i < TsGroupInterface::SlotCount; ++i) {
            if (toggle(i)->getState()) {
                on = on == -1 ? i : -2;
            }
        }
        return on;
    }
    // The matte-generation panel's widgets inside the main panel.
    template <class T>
    RCShdPtr<T> matteWidget(const std::string& name) const {
        const auto matte = area("tsMatteGen");
        return matte && matte->getContent().container
                   ? matte->getContent().container->findWidget<T>(name)
                   : RCShdPtr<T>();
    }

    PiCommandStack& history() { return graph->getCommandStack(); }
    RCShdPtr<TsMgInterface> mg(int keyer) const {
        return rcCast<TsMgInterface>(keyers[keyer]->getController());
    }

    // The viewer's handler and its current tool.
    RCShdPtr<MfCurrentToolEventHandler> handler() const {
        return rcCast<MfCurrentToolEventHandler>(viewer->getCurrentEventHandler());
    }
    std::string currentTool() const {
        const auto h = handler();
        return h ? h->getCurrentTool() : std::string();
    }

    // A window point of the viewer over a plate pixel.
    QPointF viewerPoint(float x, float y) const {
        const GePoint2<float> p = VwUtils::worldToWindowOrtho(viewer->getView(), {x, y});
        return {p.x, p.y};
    }

    CoRgbColorTyped<float> keyColour(int keyer, TsTypes::KeyColor k) const {
        return mg(keyer)->getKeyColorInput(k)->getTypedValue<CoRgbColorTyped<float>>(
            time.getTime());
    }

    static void click(QWidget* widget, const QPointF& local) {
        sendMouse(widget, QEvent::MouseButtonPress, local);
        sendMouse(widget, QEvent::MouseButtonRelease, local);
        settle();
    }

    // Where tests leave pictures of panels: the test's working directory in
    // the build tree.
    static std::string screenshotPath(const std::string& name) {
        std::filesystem::create_directories("screenshots");
        return (std::filesystem::current_path() / "screenshots" / name).string();
    }

    RCShdPtr<PiGraph> graph;
    RCShdPtr<TsKeyerGroup> group;
    RCShdPtr<PiNode> stranger;
    std::vector<RCShdPtr<TsKeyerNode>> keyers;
    TmTimeClient time;
    std::unique_ptr<QWidget> window;
    std::unique_ptr<UiMainWindow> mainWindow;
    UiPanel* panel = nullptr;
    UiViewer* viewer = nullptr;
};
