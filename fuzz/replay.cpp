#include "FuzzTarget.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

/// @file
/// Runs a fuzz target on every file of a folder, without libFuzzer. It prints the name of each input first, so the
/// last name is the input that failed.

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: " << argv[0] << " FOLDER\n";
        return 2;
    }
    std::vector<std::filesystem::path> inputs;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1]))
        inputs.push_back(entry.path());
    std::sort(inputs.begin(), inputs.end());
    for (const std::filesystem::path& path : inputs) {
        std::cerr << path.filename().string() << std::endl;
        std::ifstream file(path, std::ios::binary);
        const opc::fuzz::Bytes bytes(std::istreambuf_iterator<char>(file), {});
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    return inputs.empty() ? 1 : 0;
}
