#pragma once

#include <pluginAPI/piNode.h>

#include <string>

// The text of a setup (the format of TsSetup): a keyer group with its keyer
// nodes, or a single keyer node, in the newest version.
namespace TsSetupWriter {

// False (with `error`) for a node that is no keyer.
bool write(const PiNode& keyer, int version, std::string& text, std::string& error);

} // namespace TsSetupWriter
