#include "vnt/VntServices.h"

VntServices* VntServices::m_instance = nullptr;
