#include "extender_base/VntDefaultsPlugin.h"

#include "extender_base/VntEditorTable.h"
#include "extender_base/VntFieldEditorExtension.h"
#include "vnt/VntFieldEditor.h"

namespace {

class TableEditor : public VntFieldEditor {
 public:
  explicit TableEditor(VntEditorEntry const& entry) : m_entry(entry) {}
  SbString getName() const override { return m_entry.type; }
  SbString getInfo() const override { return m_entry.info; }
  QWidget* createEditor(VntFieldEdit* edit, QWidget* parent) override { return m_entry.create(edit, parent); }

 private:
  VntEditorEntry m_entry;
};

} // namespace

VntDefaultsPlugin::VntDefaultsPlugin() {
  m_extensions.push_back(std::make_unique<VntFieldEditorExtension>());
  VntEditorTable table;
  addTextEditors(table);
  addChoiceEditors(table);
  addNumberEditors(table);
  addVectorEditors(table);
  addRotationEditors(table);
  addColorEditors(table);
  addImageEditors(table);
  addTableEditors(table);
  for (VntEditorEntry const& entry : table) m_extensions.push_back(std::make_unique<TableEditor>(entry));
}

VntDefaultsPlugin::~VntDefaultsPlugin() = default;

VntExtension* VntDefaultsPlugin::getExtension(SbString const& name) {
  for (auto const& extension : m_extensions) {
    if (extension->getName() == name) return extension.get();
  }
  return nullptr;
}
