// Runs the fuzz target once over every file of the folders named on the command line.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i) {
        std::error_code missing;
        for (const auto& entry : std::filesystem::directory_iterator(argv[i], missing)) {
            if (entry.is_regular_file()) files.push_back(entry.path());
        }
    }
    if (files.empty()) {
        std::fprintf(stderr, "No corpus to replay.\n");
        return 2;
    }
    std::sort(files.begin(), files.end());
    for (const auto& file : files) {
        // Named beforehand: a surprise ends the program at once.
        std::printf("%s\n", file.filename().c_str());
        std::fflush(stdout);
        std::ifstream stream(file, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs, no surprise.\n", files.size());
    return 0;
}
