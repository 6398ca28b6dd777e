#pragma once

#include "kestrava/nodes/SoSeparator.h"

namespace bench {

/// 11,111 groups, ten a group, and 44,445 leaves spread over the last level, all of them named; each leaf is a transform
/// and a box of its own, or all have the same box (24 vertices with normals).
SoRef<SoSeparator> makeTree100k(bool ownBoxes);

} // namespace bench
