#include "modules/foreign_formats/ReaderProcess.h"

int main(int argumentCount, char** arguments) { return serveModel(argumentCount, arguments); }
