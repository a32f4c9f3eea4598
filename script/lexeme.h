#pragma once

namespace Calder::Script {

/// What the generated scanner returns for text that is no token; every token kind is above it.
constexpr int skipped_lexeme = -1;

} // namespace Calder::Script
