#pragma once

#include <string_view>

namespace Calder::Tools {

/// Tells an error, in the format of messages that is chosen, where nothing can be allocated or anything
/// else may be going on: from a signal handler too. `words` are few, and no JSON has to escape them.
void tell_last_words(std::string_view words) noexcept;

} // namespace Calder::Tools
