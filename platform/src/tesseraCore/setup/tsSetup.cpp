// The facade of setups: the text (TsSetupWriter, TsSetupDocument), the
// checks and the load (TsSetupApply), and the files (through the atomic
// writer and the input guard).
#include "tsSetupApply.h"
#include "tsSetupDocument.h"
#include "tsSetupSyntax.h"
#include "tsSetupWriter.h"

#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsKeyerNode.h>
#include <tesseraCore/tsSetup.h>

#include <base/fsAtomicFile.h>
#include <base/fsInputFile.h>
#include <base/znLimits.h>

namespace {

bool isKeyer(const PiNode& node) {
    return dynamic_cast<const TsKeyerGroup*>(&node) || dynamic_cast<const TsKeyerNode*>(&node);
}

} // namespace

bool TsSetup::write(const PiNode& keyer, std::string& text, std::string& error) {
    return TsSetupWriter::write(keyer, Version, text, error);
}

bool TsSetup::save(const PiNode& keyer, const std::string& path, std::string& error) {
    std::string text;
    if (!write(keyer, text, error)) {
        error = path + ": " + error;
        return false;
    }
    std::string reason;
    if (!FsAtomicFile::write(path, text, reason)) {
        error = path + ": cannot write the setup: " + reason;
        return false;
    }
    return true;
}

int TsSetup::getGeneration(const std::string& text) {
    try {
        const TsSetupDocument::SetupDocument setup = TsSetupDocument::parse(text, Version);
        return setup.group ? setup.group->generation : 0;
    } catch (const TsSetupSyntax::SetupError&) {
        return -1;
    }
}

bool TsSetup::read(PiNode& keyer, const std::string& text, const std::string& source,
                   std::string& error) {
    if (!isKeyer(keyer)) {
        error = source + ": node \"" + keyer.getName() + "\" is not a keyer";
        return false;
    }
    TsSetupDocument::SetupDocument setup;
    try {
        setup = TsSetupDocument::parse(text, Version);
        if (setup.version == 1 && setup.group && setup.group->generation == 2) {
            TsSetupDocument::upgradeGeneration2Slots(*setup.group);
        }
        TsSetupApply::check(keyer, setup);
    } catch (const TsSetupSyntax::SetupError& e) {
        error = source + ":" + std::to_string(e.line) + ": " + e.what();
        return false;
    }
    TsSetupApply::apply(keyer, setup);
    return true;
}

bool TsSetup::load(PiNode& keyer, const std::string& path, std::string& error) {
    std::string text;
    std::string reason;
    if (!FsInputFile::read(path, ZnLimits::SetupBytes, "a setup", text, reason)) {
        error = path + ": cannot read the setup: " + reason;
        return false;
    }
    return read(keyer, text, path, error);
}
