// A library that is no plug-in.

#include "tests/plugins/ran.h"
