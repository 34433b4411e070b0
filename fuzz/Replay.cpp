// Stands in for a fuzzing engine: runs a target over every file of a corpus and over seeded mutations of each.

#include "Mutate.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

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
