#pragma once

/// Marks what calder_core exports; the library is built with hidden visibility.
#define CALDER_CORE_EXPORT __attribute__((visibility("default")))
