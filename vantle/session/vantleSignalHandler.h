#pragma once

class SoError;

/// Handler of the toolkit's grave errors: asks whether to exit (Ok, status 1), to see the call stack and exit
/// (Help, status 1) or to go on (Ignore).
void vantleSignalHandler(SoError const* error, void* data);
