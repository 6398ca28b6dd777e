#include "vnt/VntShell.h"

VntShell* VntShell::m_instance = nullptr;
