#pragma once

/// Marks what the library shows to others; everything else stays inside.
#define VANTLE_API __attribute__((visibility("default")))
