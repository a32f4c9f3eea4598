#pragma once

#include <cstddef>
#include <cstdint>

namespace Calder::Values {

// What values may not exceed. Going beyond is an error with a place, like any other.

/// Values stand at most so deep within each other, so comparing and printing them may recurse.
constexpr unsigned value_nesting_limit = 1000;
/// Calls under way at the same time: about 100 bytes for each.
constexpr unsigned call_nesting_limit = 100'000;
/// Elements of a set or a sequence. What would have more is refused before it is made.
constexpr std::uint64_t largest_collection = 1'000'000;
/// Characters of a value that is written in full: parts are shared, so a small value can have a text
/// that no memory holds.
constexpr std::size_t longest_text = 100'000'000;
/// Characters of a value in a message.
constexpr std::size_t longest_quotation = 60;

} // namespace Calder::Values
