#pragma once

namespace Calder::ProcessCompiler {

/// The kinds of the host's own terms; the library's constructs stay below.
constexpr unsigned operator_process_kind = 20;
/// Of NamedProcess.
constexpr unsigned named_process_kind = 21;

/// From here on for constructs of other libraries. Those that meet in one term need different ones.
constexpr unsigned first_foreign_kind = 100;

} // namespace Calder::ProcessCompiler
