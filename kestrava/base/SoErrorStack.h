#pragma once

// SoErrorStack stands with the other classes of errors.
#include "kestrava/base/SoError.h"
