// Runs a fuzz target over every file in the directories given on the command
// line (missing directories are skipped). Used to replay the corpus and the
// regression inputs in builds without libFuzzer.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        const fs::path dir(argv[i]);
        if (!fs::is_directory(dir)) {
            continue;
        }
        for (const auto& entry : fs::recursive_directory_iterator(dir)) {
            if (!entry.is_regular_file()) {
                continue;
            }
            std::ifstream in(entry.path(), std::ios::binary);
            std::vector<char> bytes((std::istreambuf_iterator<char>(in)),
                                    std::istreambuf_iterator<char>());
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
            ++count;
        }
    }
    std::printf("replayed %zu inputs\n", count);
    return 0;
}
