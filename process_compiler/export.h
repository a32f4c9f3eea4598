#pragma once

/// Marks what calder_process_compiler exports; the library is built with hidden visibility.
#define CALDER_PROCESS_COMPILER_EXPORT __attribute__((visibility("default")))
