// Runs a fuzz target over files, without a fuzzer: each file that it was given, and each of the folders.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

void replay(std::filesystem::path const& file) {
    std::cout << file.filename().string() << std::endl; // before it crashes
    std::ifstream stream(file, std::ios::binary);
    std::string const text{std::istreambuf_iterator<char>(stream), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(text.data()), text.size());
}

} // namespace

int main(int count, char** words) {
    std::size_t replayed = 0;
    for (int word = 1; word < count; ++word) {
        if (!std::filesystem::is_directory(words[word])) {
            replay(words[word]);
            ++replayed;
            continue;
        }
        for (auto const& entry : std::filesystem::directory_iterator(words[word])) {
            replay(entry.path());
            ++replayed;
        }
    }
    std::cout << replayed << " inputs\n";
    return replayed > 0 ? 0 : 1;
}
