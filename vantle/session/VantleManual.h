#pragma once

#include <QString>

/// Where the online reference manual stands.
struct VantleManual {
  static constexpr char HOST[] = "https://manual.qor.example";
  /// `path` begins with a slash.
  static QString page(QString const& path) { return QLatin1String(HOST) + path; }
};
