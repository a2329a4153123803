#include "sessionInterpreter.h"

#include "colourCommands.h"
#include "historyCommands.h"
#include "hostSession.h"
#include "inputCommands.h"
#include "nodeCommands.h"
#include "overlayQueries.h"
#include "pointerCommands.h"
#include "sessionArgs.h"
#include "viewerAidCommands.h"
#include "viewerCommands.h"

#include <base/exReporter.h>
#include <tesseraCore/io/tsSequence.h>
#include <tesseraCore/setup/tsValueText.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <new>

namespace {

const std::vector<std::string> Operators = {"==", "!=", "<", "<=", ">", ">=", "~", "contains"};

bool isOperator(const std::string& w) {
    return std::find(Operators.begin(), Operators.end(), w) != Operators.end();
}

std::vector<std::string> wordsOf(const std::string& text) {
    SessionScript::Line line;
    std::string error;
    if (!SessionScript::split(text, line, error)) {
        return {text};
    }
    return line.words;
}

bool numbersOf(const std::vector<std::string>& words, std::vector<double>& out) {
    out.clear();
    for (const std::string& w : words) {
        double v = 0.0;
        if (!SessionArgs::parseNumber(w, v)) {
            return false;
        }
        out.push_back(v);
    }
    return !out.empty();
}

std::string joined(const std::vector<std::string>& words) {
    std::string out;
    for (const std::string& w : words) {
        out += (out.empty() ? "" : " ") + w;
    }
    return out;
}

} // namespace

SessionInterpreter::SessionInterpreter(HostSession& session)
    : SessionInterpreter(session, Options()) {}

SessionInterpreter::SessionInterpreter(HostSession& session, Options options)
    : _session(session)
    , _options(std::move(options))
    , _probe(session)
    , _driver(session.getViewer()) {
    addCommands();
}

SessionInterpreter::~SessionInterpreter() = default;

std::ostream& SessionInterpreter::out() const {
    return _options.out ? *_options.out : std::cout;
}

void SessionInterpreter::addCommand(const std::string& name, Command command) {
    _commands[name] = std::move(command);
}

std::string SessionInterpreter::inputPath(const std::string& path) const {
    const std::filesystem::path p(path);
    if (p.is_absolute()) {
        return path;
    }
    // A frame pattern is found where its folder is.
    auto found = [&path](const std::filesystem::path& candidate) {
        std::error_code ec;
        return std::filesystem::exists(
            TsSequence::isPattern(path) ? candidate.parent_path() / "." : candidate, ec);
    };
    const std::filesystem::path beside =
        _options.inputDir.empty() ? p : std::filesystem::path(_options.inputDir) / p;
    if (!found(beside) && !_options.outputDir.empty()) {
        // A file the session wrote itself.
        const std::filesystem::path written = std::filesystem::path(_options.outputDir) / p;
        if (found(written)) {
            return written.string();
        }
    }
    return beside.string();
}

std::string SessionInterpreter::outputPath(const std::string& path) const {
    std::filesystem::path p(path);
    if (!p.is_absolute() && !_options.outputDir.empty()) {
        p = std::filesystem::path(_options.outputDir) / p;
    }
    if (p.has_parent_path()) {
        std::error_code ec;
        std::filesystem::create_directories(p.parent_path(), ec);
    }
    return p.string();
}

void SessionInterpreter::run(const SessionScript& script) {
    const auto& lines = script.getLines();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        execute(lines[i], script.getSource());
        if (_options.progress) {
            _options.progress(i + 1, lines.size());
        }
    }
}

void SessionInterpreter::execute(const std::string& text, const std::string& source) {
    SessionScript::Line line;
    line.number = 1;
    std::string error;
    if (!SessionScript::split(text, line, error)) {
        throw SessionError(source, 1, error);
    }
    if (!line.words.empty()) {
        execute(line, source);
    }
}

void SessionInterpreter::execute(const SessionScript::Line& line, const std::string& source) {
    const std::string& name = line.words.front();
    const auto it = _commands.find(name);
    if (it == _commands.end()) {
        throw SessionError(source, line.number, "unknown command \"" + name + "\"");
    }
    _line = &line;
    try {
        SessionArgs args(line.words, line.quoted);
        it->second(args);
    } catch (const SessionArgs::Error& e) {
        _line = nullptr;
        throw SessionError(source, line.number, e.what());
    } catch (const SessionError&) {
        _line = nullptr;
        throw;
    } catch (const std::bad_alloc&) {
        // What the line asked for did not fit: it fails, the undo step it
        // may have left open is closed, and the session goes on.
        _line = nullptr;
        ExReporter::getInstance().runRecoveryHooks();
        throw SessionError(source, line.number, "not enough memory");
    }
    _line = nullptr;
    HostSession::settle();
}

void SessionInterpreter::addCommands() {
    ViewerCommands::add(*this);
    ViewerAidCommands::add(*this);
    PointerCommands::add(*this);
    NodeCommands::add(*this);
    InputCommands::add(*this);
    HistoryCommands::add(*this);
    ColourCommands::add(*this);
    OverlayQueries::add(*this);

    // --- reading the state
    addCommand("expect", [this](SessionArgs& a) { expect(a, _line->words, _line->quoted); });
    addCommand("print", [this](SessionArgs& a) { print(a); });
    addCommand("echo", [this](SessionArgs& a) { out() << a.rest() << "\n"; });
}

void SessionInterpreter::print(SessionArgs& args) {
    if (args.atEnd()) {
        throw SessionArgs::Error("missing what to print");
    }
    for (const std::string& line : _probe.listing(args)) {
        out() << line << "\n";
    }
    args.end();
    out().flush();
}

void SessionInterpreter::expect(SessionArgs& args, const std::vector<std::string>& words,
                                const std::vector<bool>& quoted) {
    // expect WHAT... OP VALUE... [within TOLERANCE]
    std::size_t op = 1;
    while (op < words.size() && (quoted[op] || !isOperator(words[op]))) {
        ++op;
    }
    if (op == 1) {
        throw SessionArgs::Error("missing what to expect");
    }
    if (op == words.size()) {
        throw SessionArgs::Error("missing the comparison (==, !=, <, <=, >, >=, ~ or contains)");
    }
    const std::vector<std::string> whatWords(words.begin(), words.begin() + op);
    const std::vector<bool> whatQuoted(quoted.begin(), quoted.begin() + op);
    SessionArgs what(whatWords, whatQuoted);
    const std::string actual = _probe.value(what);
    what.end();

    std::vector<std::string> expected(words.begin() + op + 1, words.end());
    double tolerance = 1e-3;
    if (expected.size() >= 2 && expected[expected.size() - 2] == "within") {
        if (!SessionArgs::parseNumber(expected.back(), tolerance) || tolerance < 0.0) {
            throw SessionArgs::Error("bad tolerance \"" + expected.back() + "\"");
        }
        expected.resize(expected.size() - 2);
    }
    if (expected.empty()) {
        throw SessionArgs::Error("missing the expected value");
    }
    std::string failure;
    if (!compare(actual, words[op], expected, tolerance, failure)) {
        std::string whatText;
        for (std::size_t i = 1; i < whatWords.size(); ++i) {
            whatText += (i > 1 ? " " : "") + TsValueText::quoteWord(whatWords[i]);
        }
        throw SessionArgs::Error("expected " + whatText + " " + words[op] + " " + joined(expected) +
                                 ", but it is " + actual +
                                 (failure.empty() ? "" : " (" + failure + ")"));
    }
    while (!args.atEnd()) {
        args.word("");
    }
    ++_expects;
}

bool SessionInterpreter::compare(const std::string& actual, const std::string& op,
                                 const std::vector<std::string>& expected, double tolerance,
                                 std::string& failure) {
    const std::vector<std::string> actualWords = wordsOf(actual);
    std::vector<double> a;
    std::vector<double> e;
    const bool numeric = numbersOf(actualWords, a) && numbersOf(expected, e);
    if (op == "contains") {
        return actual.find(joined(expected)) != std::string::npos;
    }
    if (op == "==" || op == "!=") {
        bool equal = false;
        if (numeric && a.size() == e.size()) {
            equal = true;
            for (std::size_t i = 0; i < a.size(); ++i) {
                const double scale = std::max({1.0, std::fabs(a[i]), std::fabs(e[i])});
                equal = equal && std::fabs(a[i] - e[i]) <= 1e-6 * scale;
            }
        } else {
            equal = joined(actualWords) == joined(expected);
        }
        return op == "==" ? equal : !equal;
    }
    if (!numeric || a.size() != e.size() || (op != "~" && a.size() != 1)) {
        throw SessionArgs::Error("\"" + op + "\" compares numbers, and \"" + actual + "\" and \"" +
                                 joined(expected) + "\" are not " +
                                 (op == "~" ? "as many numbers" : "one number each"));
    }
    if (op == "~") {
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (std::fabs(a[i] - e[i]) > tolerance) {
                failure = "more than " + SessionArgs::format(tolerance) + " apart";
                return false;
            }
        }
        return true;
    }
    if (op == "<") {
        return a[0] < e[0];
    }
    if (op == "<=") {
        return a[0] <= e[0];
    }
    if (op == ">") {
        return a[0] > e[0];
    }
    return a[0] >= e[0];
}
