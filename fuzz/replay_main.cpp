// Runs a harness over stored inputs: files and folders of files on the command line. For builds
// without a fuzzer.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/fuzz_file.h"

namespace {

int gReplayed = 0;

void Replay(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    const std::vector<char> bytes(std::istreambuf_iterator<char>(in), {});
    std::fprintf(stderr, "%s\n", path.c_str());  // the last one named is the one that failed
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    gReplayed++;
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; i++) {
        if (!std::filesystem::is_directory(argv[i])) {
            Replay(argv[i]);
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
            Replay(entry.path());
    }
    std::printf("%d inputs replayed\n", gReplayed);
    return gReplayed > 0 ? 0 : 1;
}
