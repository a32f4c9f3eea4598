#pragma once

#include <stdexcept>

namespace Calder::StateSpace {

/// A file that cannot be written. The message names the file and the reason.
class LtsFileError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace Calder::StateSpace
