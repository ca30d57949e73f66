// Runs a target over all files of the folders that are given, without a fuzzer.
#include "fuzz.h"

#include <cstdio>

int main(int argc, char** argv)
{
    int inputs = 0;
    for (int at = 1; at < argc; ++at)
        for (const auto& file : std::filesystem::recursive_directory_iterator(argv[at])) {
            std::ostringstream bytes;
            bytes << std::ifstream(file.path(), std::ios::binary).rdbuf();
            const std::string input = bytes.str();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
            ++inputs;
        }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
