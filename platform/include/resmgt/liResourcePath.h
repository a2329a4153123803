#pragma once

#include <resmgt/liString.h>
#include <resmgt/resmgtExport.h>

#include <vector>

// Where the host finds the resource files of its modules (message catalogues,
// panel descriptions, hotkey tables). A name is looked up, in order:
//   1. as given, when it is a path to an existing file;
//   2. in each directory of the environment variable TESSERA_RESOURCE_PATH
//      (separated by ':');
//   3. in the directories added with addDirectory (the host adds the
//      directory of each loaded module: resources are installed next to it).
class TS_RESMGT_API LiResourcePath {
public:
    static void addDirectory(const LiString& directory);
    static std::vector<LiString> getDirectories();
    // The full path of the file, or "" when it is nowhere.
    static LiString find(const LiString& name);
};
