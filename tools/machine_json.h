#pragma once

#include "tools/machine_text.h"

#include <functional>
#include <string_view>

namespace Calder::Tools {

/// The machine as JSON, indented by 2; docs/machines.md describes it. `write` gets the text piece by
/// piece, as the machine is gone through: nothing of the size of the machine is held.
void write_machine_json(ShownMachine const& shown,
                        std::function<void(std::string_view)> const& write);

} // namespace Calder::Tools
