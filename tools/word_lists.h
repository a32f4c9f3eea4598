#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Calder::Tools {

std::string joined(std::vector<std::string> const& words, std::string const& separator = ", ");

/// Longer lists are cut.
constexpr std::size_t most_listed = 20;

/// "a, b, c": of many words, such as events, the first ones and how many more there are.
std::string listed(std::vector<std::string> words, std::string const& separator = ", ");

/// A name for a sentence: a text of more than some 40 bytes is cut between two characters.
std::string short_name(std::string const& text);

} // namespace Calder::Tools
