#include "tests/pins/vector_exploration.h"

#include <gtest/gtest.h>
