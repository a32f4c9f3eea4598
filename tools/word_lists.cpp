#include "tools/word_lists.h"

#include <fmt/format.h>

namespace Calder::Tools {

namespace {

constexpr std::size_t most_bytes = 40;

bool is_inside_character(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; // UTF-8
}

} // namespace

std::string joined(std::vector<std::string> const& words, std::string const& separator) {
    return fmt::format("{}", fmt::join(words, separator));
}

std::string listed(std::vector<std::string> words, std::string const& separator) {
    if (words.size() <= most_listed) {
        return joined(words, separator);
    }
    std::size_t const more = words.size() - most_listed;
    words.resize(most_listed);
    return fmt::format("{} and {} more", joined(words, separator), more);
}

std::string short_name(std::string const& text) {
    if (text.size() <= most_bytes) {
        return text;
    }
    std::size_t end = most_bytes;
    while (end > 0 && is_inside_character(text[end])) {
        --end;
    }
    return text.substr(0, end) + "…";
}

} // namespace Calder::Tools
