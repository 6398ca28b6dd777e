#include "kestrava/io/SoImporter.h"
#include "modules/foreign_formats/ModelImporter.h"

namespace {
ModelImporter const& modelImporter() {
  static ModelImporter const& instance = *new ModelImporter;
  return instance;
}
} // namespace

extern "C" {
void qor_foreign_formats_init() { SoImporter::add(&modelImporter()); }
void qor_foreign_formats_finish() { SoImporter::remove(&modelImporter()); }
}
