#include "tools/last_words.h"

#include "tools/error_format.h"

#include <algorithm>
#include <array>
#include <unistd.h>

namespace Calder::Tools {

void tell_last_words(std::string_view words) noexcept {
    bool const is_text = error_format() == ErrorFormat::text;
    std::array<std::string_view, 3> const parts = {
        is_text
            ? "calder: "
            : R"({"severity": "error", "file": null, "line": null, "column": null, "length": null, )"
              R"("message": ")",
        words, is_text ? "\n" : "\", \"suggestion\": null, \"notes\": []}\n"};
    std::array<char, 256> line{};
    auto end = line.begin();
    for (std::string_view const part : parts) {
        auto const room = static_cast<std::size_t>(line.end() - end);
        end = std::copy_n(part.begin(), std::min(part.size(), room), end);
    }
    [[maybe_unused]] ssize_t const written = write(
        STDERR_FILENO, line.data(), static_cast<std::size_t>(end - line.begin())); // whom else?
}

} // namespace Calder::Tools
