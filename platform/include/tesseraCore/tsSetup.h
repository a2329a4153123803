#pragma once

#include <pluginAPI/piNode.h>
#include <string>
#include <tesseraCore/tesseraCoreExport.h>

// Keyer setups: a keyer group (its slots, its selected node and all its
// keyer nodes) or a single keyer node, saved to a text file and loaded back
// exactly: every input's value, animation keys and lock (image inputs are the
// host's and are not saved).
//
// The format, one statement a line ('#' starts a comment outside quotes):
//
//   tessera-setup 3                      the format and its version: first
//   group "keyer" generation 1           a group section (group setups only)
//   input "slot1" node "keyer1"          a node reference: a quoted name of a
//   input "slot2" node -                 node in the group, - for none, self
//   input "selectedNodes" node self      for the group itself
//   node "keyer1"                        a keyer node section
//   patches 2                            how many patches have inputs
//   input "overall" double 0.25 keys 2 0 0.2 smooth 24 0.8 linear
//   input "keyColor1" rgb locked 0.1 0.7 0.2
//   input "patchNames" strings 2 "Patch 1" "Patch 2"
//   end                                  the last line
//
// An input line is: input NAME TYPE [locked] VALUE [keys N TIME VALUE
// INTERPOLATION ...], VALUE being the constant value (for an int, a bool: true
// or false, an rgb: three numbers, a list: its length and its items),
// INTERPOLATION linear or smooth (the stretch after the key;
// PiInterpolation). Numbers are written in the shortest form that reads back
// to the same value. A generation 2 group keeps its slots in its
// selected-nodes value:
//
//   input "selectedNodes" nodes 7 "keyer1" "keyer1" "keyer2" - - - -
//
// Older setups load too. Version 1 and 2 keys carry no interpolation: they
// were linear. In version 1, a generation 2 group's slot inputs
// ("slot1" .. "slot6") go into that value, and a node's patch inputs beyond
// its patch names (which a reset used to leave) are not loaded.
//
// Saving goes through FsAtomicFile: a failed save leaves the old file whole.
// Loading reads and checks the whole file before it changes anything; a
// damaged or foreign file, or one past the limits of ZnLimits (its size, a
// name's length, the counts of patches, names and keys), is refused with the
// file, the line and what is wrong, and the keyer is left as it was. Node
// names follow PiNode::checkName. A load is one undo step ("Load Setup"); inputs the file
// does not mention go back to their defaults, and keyer nodes of a group
// setup that the group lacks are added to it.
class TS_CORE_API TsSetup {
public:
    // The version written; versions 1 to Version are read.
    static constexpr int Version = 3;

    // `keyer` is a TsKeyerGroup or a TsKeyerNode. On failure they answer
    // false and put the message in `error`: the file (or `source`), the line
    // where there is one, and what is wrong. They report nothing themselves:
    // the caller shows the message.
    static bool save(const PiNode& keyer, const std::string& path, std::string& error);
    static bool load(PiNode& keyer, const std::string& path, std::string& error);

    // The same, on text: what save writes, and loading from it (`source`
    // names the text in messages).
    static bool write(const PiNode& keyer, std::string& text, std::string& error);
    static bool read(PiNode& keyer, const std::string& text, const std::string& source,
                     std::string& error);

    // The generation of the keyer group a setup text holds (1 or 2); 0 for
    // the setup of a single keyer node, -1 for a text that is no setup.
    static int getGeneration(const std::string& text);
};
