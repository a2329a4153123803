// The main of a fuzz target built without libFuzzer: runs every file named on
// the command line, and every file in every directory named, through the
// target once, in name order. Options in libFuzzer's form (-runs=0, ...) are
// accepted and ignored, so that one command line replays a corpus with
// either build.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);

int main(int argc, char** argv) {
    if (LLVMFuzzerInitialize) {
        LLVMFuzzerInitialize(&argc, &argv);
    }
    namespace fs = std::filesystem;
    std::vector<fs::path> files;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (!arg.empty() && arg[0] == '-') {
            continue;
        }
        std::error_code ec;
        if (fs::is_directory(arg, ec)) {
            std::vector<fs::path> inDir;
            for (const auto& entry : fs::directory_iterator(arg)) {
                if (entry.is_regular_file()) {
                    inDir.push_back(entry.path());
                }
            }
            std::sort(inDir.begin(), inDir.end());
            files.insert(files.end(), inDir.begin(), inDir.end());
        } else if (fs::is_regular_file(arg, ec)) {
            files.emplace_back(arg);
        } else {
            std::cerr << argv[0] << ": no file or directory " << arg << "\n";
            return 2;
        }
    }
    if (files.empty()) {
        std::cerr << argv[0] << ": no inputs to replay\n";
        return 2;
    }
    for (const fs::path& file : files) {
        std::ifstream in(file, std::ios::binary);
        const std::vector<char> bytes((std::istreambuf_iterator<char>(in)),
                                      std::istreambuf_iterator<char>());
        std::cerr << "replaying " << file.string() << " (" << bytes.size() << " bytes)\n";
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::cerr << files.size() << " inputs replayed\n";
    return 0;
}
