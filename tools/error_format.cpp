#include "tools/error_format.h"

#include <atomic>
#include <string_view>
#include <strings.h>

namespace Calder::Tools {

namespace {

std::atomic<ErrorFormat> chosen = ErrorFormat::text;
static_assert(std::atomic<ErrorFormat>::is_always_lock_free); // a signal handler asks for it

/// In any mixture of capitals, as words of options are read; `word` goes to the end of its text.
bool is_json(std::string_view word) {
    return strcasecmp(word.data(), "json") == 0;
}

} // namespace

void choose_error_format(ErrorFormat format) {
    chosen = format;
}

ErrorFormat error_format() {
    return chosen;
}

ErrorFormat wanted_error_format(int count, char const* const* words) {
    constexpr std::string_view option = "--error-format";
    bool is_behind_option = false;
    for (int index = 1; index < count; ++index) {
        std::string_view const word = words[index];
        if (word == "--") {
            break; // what stands behind it is a FILE
        }
        bool const has_value = word.starts_with(option) && word.substr(option.size(), 1) == "=";
        if ((is_behind_option && is_json(word)) ||
            (has_value && is_json(word.substr(option.size() + 1)))) {
            return ErrorFormat::json;
        }
        is_behind_option = word == option;
    }
    return ErrorFormat::text;
}

} // namespace Calder::Tools
