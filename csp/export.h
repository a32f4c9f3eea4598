#pragma once

/// Marks what calder_csp exports; the library is built with hidden visibility.
#define CALDER_CSP_EXPORT __attribute__((visibility("default")))
