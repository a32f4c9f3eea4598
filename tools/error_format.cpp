#include "tools/error_format.h"

#include <atomic>
#include <string_view>

namespace Calder::Tools {

namespace {

std::atomic<ErrorFormat> chosen = ErrorFormat::text;
static_assert(std::atomic<ErrorFormat>::is_always_lock_free); // a signal handler asks for it

} // namespace

void choose_error_format(ErrorFormat format) {
    chosen = format;
}

ErrorFormat error_format() {
    return chosen;
}

ErrorFormat wanted_error_format(int count, char const* const* words) {
    bool is_behind_option = false;
    for (int index = 1; index < count; ++index) {
        std::string_view const word = words[index];
        if (word == "--") {
            break; // what stands behind it is a FILE
        }
        if (word == "--error-format=json" || (is_behind_option && word == "json")) {
            return ErrorFormat::json;
        }
        is_behind_option = word == "--error-format";
    }
    return ErrorFormat::text;
}

} // namespace Calder::Tools
