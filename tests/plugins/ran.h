#pragma once

#include <cstdlib>

/// Tells the test that code of the library has run.
[[maybe_unused]] static bool const ran = setenv("VNT_TEST_RAN", "yes", 1) == 0;
