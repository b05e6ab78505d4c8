// Runs the fuzz target without libFuzzer: over the files named on the command line, or else
// over a fixed number of inputs generated from markup pieces and random bytes.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

int Run(const std::string& input) {
    return LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(input.data()), input.size());
}

std::string Generate(std::mt19937& rng) {
    // Markup pieces, between bars.
    static const std::vector<std::string> pieces = [] {
        std::vector<std::string> list;
        std::istringstream all("{align:right}|{align:center}|{align:padding:|{/align}|"
                               "{color:|{/color}|{bgcolor:|{/bgcolor}|red}|black>}|"
                               "{ip}|{hostname}|{memory}|{serial-number}|{ip:x}|{}|{|}| |  |"
                               "\n|\t|word|x|-5}|999999999999}|12}|\xc3\xa9|\xff\xfe");
        for (std::string piece; std::getline(all, piece, '|');)
            list.push_back(piece);
        return list;
    }();
    std::uniform_int_distribution<int> byte(0, 255);
    std::uniform_int_distribution<size_t> piece(0, pieces.size() - 1);
    std::uniform_int_distribution<int> length(0, 120);
    std::string input;
    for (int i = 0; i < 3; ++i) {
        input.push_back(static_cast<char>(byte(rng)));
    }
    for (int n = length(rng); n > 0; --n) {
        if (byte(rng) < 40) {
            input.push_back(static_cast<char>(byte(rng)));
        } else {
            input += pieces[piece(rng)];
        }
    }
    return input;
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && std::string(argv[1]).rfind("-runs=", 0) != 0) {
        for (int i = 1; i < argc; ++i) {
            std::ifstream file(argv[i], std::ios::binary);
            const std::string input((std::istreambuf_iterator<char>(file)),
                                    std::istreambuf_iterator<char>());
            Run(input);
        }
        return 0;
    }
    long runs = 200000;
    if (argc > 1) {
        runs = std::strtol(argv[1] + 6, nullptr, 10);
    }
    std::mt19937 rng(20261123);
    for (long i = 0; i < runs; ++i) {
        Run(Generate(rng));
    }
    // Long inputs, which the short ones above never reach.
    std::string big(3, '\x50');
    for (int i = 0; i < 2000; ++i) {
        big += Generate(rng).substr(3);
    }
    Run(big);
    std::printf("%ld inputs\n", runs + 1);
    return 0;
}
