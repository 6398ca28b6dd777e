#pragma once

#include "kestrava/io/SoImporter.h"

/// Has Assimp read a model in this process and makes nodes of it. Null with the reason in `fault`; a damaged
/// file may also bring Assimp, and with it this process, down.
SoRef<SoNode> readModel(SoImporter::File const& file, std::function<void(double)> const& progress,
                        SbString& fault);

/// A message without line ends, and not longer than people read.
SbString oneLine(std::string text);
