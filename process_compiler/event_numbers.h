#pragma once

namespace Calder::ProcessCompiler {

/// Events are numbers. These are fixed; a session numbers its visible events from
/// `first_visible_event`, in the order of their declaration.
constexpr unsigned no_event = 0;
/// The silent event.
constexpr unsigned tau = 1;
/// Successful termination.
constexpr unsigned tick = 2;
/// What a session gives to the first event that is declared.
constexpr unsigned first_visible_event = 3;

} // namespace Calder::ProcessCompiler
