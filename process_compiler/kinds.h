#pragma once

namespace Calder::ProcessCompiler {

/// The kinds of the host's own terms; constructs stay below.
constexpr unsigned operator_process_kind = 20;
/// Of NamedProcess.
constexpr unsigned named_process_kind = 21;

} // namespace Calder::ProcessCompiler
