#pragma once

#include <cstdint>

/// The toolkit's own boolean: 32 bits wide, so that it has the same size for every host compiler.
using SbBool = std::int32_t;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif
