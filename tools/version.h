#pragma once

namespace Calder::Tools {

/// "0.2.0 (commit 0123456789ab, g++ 12.2.0)". Its source is written by each build.
extern char const* const version;

} // namespace Calder::Tools
