#pragma once

/// Marks what calder_state_space exports; the library is built with hidden visibility.
#define CALDER_STATE_SPACE_EXPORT __attribute__((visibility("default")))
