#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace Calder::Tools {

constexpr std::uint64_t bytes_per_mib = std::uint64_t{1024} * 1024;

constexpr std::size_t title_width = 13;

/// A line of an answer: a title and what stands for it. Without a title it goes on with what was told
/// before.
std::string titled_line(std::string_view title, std::string_view text);

/// Prints it as a result.
void tell(std::string_view title, std::string_view text);

/// The last two lines: how long it took, and the most memory that the command ever occupied.
void tell_time_and_memory(std::chrono::duration<double> time);

} // namespace Calder::Tools
