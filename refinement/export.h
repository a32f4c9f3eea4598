#pragma once

/// Marks what calder_refinement exports; the library is built with hidden visibility.
#define CALDER_REFINEMENT_EXPORT __attribute__((visibility("default")))
