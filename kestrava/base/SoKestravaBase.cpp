#include "kestrava/base/SoKestravaBase.h"

#include "kestrava/io/SoDB.h"

void SoKestravaBase::init() { SoDB::init(); }
