#pragma once

/// Marks what calder_script exports; the library is built with hidden visibility.
#define CALDER_SCRIPT_EXPORT __attribute__((visibility("default")))
