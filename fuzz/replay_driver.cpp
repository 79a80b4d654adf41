// Stand-in main for libFuzzer targets in ordinary builds: replays every file of the corpus
// directories given on the command line, then a fixed-seed stream of random inputs (biased
// towards printable text, where most parsers do their work), so the target runs in CTest.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

int main(int argc, char **argv) {
    size_t files = 0;
    for (int i = 1; i < argc; ++i) {
        std::error_code ec;
        if (!std::filesystem::is_directory(argv[i], ec)) continue;
        for (const auto &entry : std::filesystem::recursive_directory_iterator(argv[i], ec)) {
            if (!entry.is_regular_file()) continue;
            std::ifstream in(entry.path(), std::ios::binary);
            std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                                       std::istreambuf_iterator<char>());
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
            ++files;
        }
    }
    std::mt19937_64 rng(20261122);
    static const char alphabet[] = "0123456789+-.,$eE :/APMapm\t\\\"[]=#;\nxX";
    std::vector<uint8_t> buf;
    for (int round = 0; round < 20000; ++round) {
        size_t len = rng() % (round % 100 == 0 ? 4096 : 64);
        buf.resize(len);
        bool text = rng() % 4 != 0;
        for (auto &b : buf)
            b = text ? static_cast<uint8_t>(alphabet[rng() % (sizeof alphabet - 1)])
                     : static_cast<uint8_t>(rng());
        LLVMFuzzerTestOneInput(buf.data(), buf.size());
    }
    std::printf("replayed %zu corpus files and 20000 random inputs\n", files);
    return 0;
}
