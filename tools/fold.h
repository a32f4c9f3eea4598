#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Calder::Tools {

/// A piece of a list: `length` elements from `first` on, `count` times in a row.
struct Fold {
    bool operator==(Fold const&) const = default;

    std::size_t first;
    std::size_t length;
    std::size_t count = 1;
    /// Of a piece that repeats: one round of it, folded in turn. Otherwise empty.
    std::vector<Fold> round{};
};

/// The list in few lines: an element is one, and a piece that repeats as many as one round of it and
/// `heading_lines`. Elements side by side that do not repeat are one fold.
///
/// An optimal parse by dynamic programming from the end of the list (R. A. Wagner, Common Phrases and
/// Minimum-Space Text Storage, 1973), over pieces that repeat as often as they can; its folds are the
/// elements of the next parse, so that what repeats may have something in it that does, until nothing
/// more is found. n·p steps a parse for n elements and pieces of at most p: any up to half the list, or
/// fewer, lest n·p exceed `most_steps`.
std::vector<Fold> folded(std::span<std::uint32_t const> list);

/// One line says how often; and it has to be worth a second one.
constexpr std::size_t heading_lines = 2;
constexpr std::size_t most_steps = 100'000'000;

} // namespace Calder::Tools
