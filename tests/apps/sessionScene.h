#pragma once

// A host session with its interpreter, the image commands and an output
// directory of its own: the scene of the session tests. Scripts run from
// text; failures come back as the SessionError's text.

#include "host/hostSession.h"
#include "host/imageCommands.h"
#include "host/outputWriter.h"
#include "host/sessionInterpreter.h"
#include "host/sessionScript.h"
#include "host/widgetCommands.h"

#include <base/exReporter.h>
#include <pluginAPI/piEventHandler.h>
#include <pluginAPI/piPath.h>
#include <ui/uiApplication.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <unistd.h>

class SessionScene : public ::testing::Test {
protected:
    SessionScene() { UiApplication::getInstance(); }

    void SetUp() override {
        ExReporter::getInstance().clear();
        dir = std::filesystem::temp_directory_path() /
              ("tessera-session-" + std::to_string(::getpid()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(dir);
        std::filesystem::create_directories(dir);
        session = std::make_unique<HostSession>(nullptr, 480, 270);
        writer = std::make_unique<OutputWriter>(*session);
        SessionInterpreter::Options options;
        options.inputDir = dir.string();
        options.outputDir = dir.string();
        options.out = &printed;
        interpreter = std::make_unique<SessionInterpreter>(*session, options);
        ImageCommands::add(*interpreter, *writer);
        WidgetCommands::add(*interpreter);
    }
    void TearDown() override {
        interpreter.reset();
        writer.reset();
        session.reset();
        std::filesystem::remove_all(dir);
        ExReporter::getInstance().clear();
    }

    // Runs the script; "" when it ran through, else the error's text.
    std::string run(const std::string& text, const std::string& source = "test.tss") {
        try {
            interpreter->run(SessionScript::parse(text, source));
        } catch (const SessionError& e) {
            return e.what();
        }
        return "";
    }
    // The script must run through.
    void ok(const std::string& text) {
        const std::string error = run(text);
        ASSERT_EQ(error, "") << text;
    }
    std::string path(const std::string& name) const { return (dir / name).string(); }
    // What print and echo wrote since the last call.
    std::string takePrinted() {
        const std::string s = printed.str();
        printed.str("");
        return s;
    }
    TsKeyerNode& shown() const { return *session->getShownNode(); }
    PiCommandStack& stack() const { return session->getCommandStack(); }

    std::filesystem::path dir;
    std::ostringstream printed;
    std::unique_ptr<HostSession> session;
    std::unique_ptr<OutputWriter> writer;
    std::unique_ptr<SessionInterpreter> interpreter;
};
