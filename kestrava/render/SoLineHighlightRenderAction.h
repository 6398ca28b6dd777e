#pragma once

#include "kestrava/render/SoHighlightRenderAction.h"
