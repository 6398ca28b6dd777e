#pragma once

// SoDebugError stands with the other classes of errors.
#include "kestrava/base/SoError.h"
