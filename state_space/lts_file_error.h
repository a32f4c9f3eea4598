#pragma once

#include <stdexcept>

namespace Calder::StateSpace {

/// A file that cannot be written. The message names the file and the reason.
class LtsFileError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// A file that was not written to its end because the caller did not want it any more.
class LtsFileStopped : public LtsFileError {
  public:
    using LtsFileError::LtsFileError;
};

} // namespace Calder::StateSpace
