// Stands in for a fuzzing engine: runs a target over every file of a corpus and over seeded mutations of each.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int k_mutations = 500;

void Run(Bytes const& input)
{
    // Storage of exactly the size, so that a checker sees a read past the end.
    Bytes const exact(input);
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

Bytes Mutate(Bytes input, std::mt19937& random)
{
    auto const below = [&random](std::size_t n) {
        return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
    };
    for (std::size_t steps = 1 + below(4); steps > 0; --steps) {
        auto const byte = static_cast<std::uint8_t>(below(256));
        switch (below(4)) {
        case 0:
            input.insert(input.begin() + static_cast<std::ptrdiff_t>(below(input.size() + 1)), byte);
            break;
        case 1:
            if (!input.empty())
                input.erase(input.begin() + static_cast<std::ptrdiff_t>(below(input.size())));
            break;
        case 2:
            if (!input.empty())
                input.resize(below(input.size()));
            break;
        default:
            if (!input.empty())
                input[below(input.size())] = byte;
        }
    }
    return input;
}

} // namespace

int main(int argc, char** argv)
{
    std::size_t runs = 0;
    for (int i = 1; i < argc; ++i) {
        for (auto const& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            Bytes const input{std::istreambuf_iterator<char>(file), {}};
            Run(input);
            std::mt19937 random(4711);
            for (int mutation = 0; mutation < k_mutations; ++mutation)
                Run(Mutate(input, random));
            runs += 1 + k_mutations;
        }
    }
    std::cout << runs << " inputs\n";
    return runs == 0 ? 1 : 0;
}
