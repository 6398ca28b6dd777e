#pragma once

#include "kestrava/nodes/SoNode.h"

/// The scene of this host: an orrery that moves by itself.
SoRef<SoNode> makeHostScene();
