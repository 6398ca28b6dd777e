#pragma once

#include "kestrava/io/SoImporter.h"

/// Reads a model by the program "qor_foreign_reader" beside the module, so that a damaged file brings that
/// one down and not this one. False when it can not be started; otherwise there is a root or a fault, and
/// what was to be told is posted here.
///
/// The program sends lines ("p 12.5" percent, "e" a read error, "w" a warning, "i" a note, "f" the fault) and
/// leaves the scene, in the toolkit's binary form, in a file in memory. It is ended after
/// KSV_FOREIGN_READER_SECONDS (60) of computing and a second more for every 50 kB of the file.
/// KSV_FOREIGN_READER names another program; "none" reads in this process.
bool readInProcess(SoImporter::File const& file, std::function<void(double)> const& progress,
                   SoRef<SoNode>& root, SbString& fault);

/// What that program does: the arguments and files are those that readInProcess() gives it.
int serveModel(int argumentCount, char** arguments);
