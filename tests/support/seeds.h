#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>

namespace Calder::Testing {

/// The seeds that a random test tries. CALDER_MODELS says how many they are, so that a run can be
/// widened, and CALDER_SEED which is the first: the model that failed is the first one of its seed.
struct SeedRange {
    std::uint64_t first;
    std::uint64_t end;

    std::string text() const {
        return "seeds " + std::to_string(first) + " to " + std::to_string(end - 1);
    }
};

inline SeedRange seeds_from_environment(std::uint64_t models) {
    auto const number = [](char const* name, std::uint64_t otherwise) {
        char const* const text = std::getenv(name);
        return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
    };
    std::uint64_t const first = number("CALDER_SEED", 1);
    return {first, first + number("CALDER_MODELS", models)};
}

/// Some of the seeds, for what takes longer than others.
inline SeedRange one_of(unsigned share, SeedRange seeds) {
    return {seeds.first, seeds.first + (seeds.end - seeds.first + share - 1) / share};
}

} // namespace Calder::Testing
