// SPDX-License-Identifier: MIT
#include "fuzz/FuzzTarget.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

/// Runs a target over the files of a corpus, without a fuzzer.
int main(int argc, char **argv)
{
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i)
        std::copy(std::filesystem::directory_iterator(argv[i]), {}, std::back_inserter(files));
    std::sort(files.begin(), files.end());
    for (const std::filesystem::path &path : files) {
        std::ifstream file(path, std::ios::binary);
        const std::vector<char> content(std::istreambuf_iterator<char>(file), {});
        if (!file)
            return std::fprintf(stderr, "can't read %s\n", path.c_str()), 1;
        std::fprintf(stderr, "%s\n", path.c_str()); // the last one named is the one that failed
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(content.data()), content.size());
    }
    return files.empty() ? 1 : 0;
}
