#pragma once

#include "state_space/export.h"

#include <stdexcept>

namespace Calder::StateSpace {

/// A file that cannot be written. The message names the file and the reason.
class CALDER_STATE_SPACE_EXPORT LtsFileError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// A file that was not written to its end because the caller did not want it any more.
class CALDER_STATE_SPACE_EXPORT LtsFileStopped : public LtsFileError {
  public:
    using LtsFileError::LtsFileError;
};

} // namespace Calder::StateSpace
