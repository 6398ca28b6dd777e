#pragma once

#include <vector>

class QWidget;
class VntFieldEdit;

/// An editor for the fields of one type.
struct VntEditorEntry {
  char const* type; ///< type name of the field, also the name of the extension
  char const* info; ///< what a user reads of it
  QWidget* (*create)(VntFieldEdit* edit, QWidget* parent);
};
using VntEditorTable = std::vector<VntEditorEntry>;

// Each family of editors adds its own.
void addTextEditors(VntEditorTable& table);
void addChoiceEditors(VntEditorTable& table);
void addNumberEditors(VntEditorTable& table);
void addVectorEditors(VntEditorTable& table);
void addRotationEditors(VntEditorTable& table);
void addColorEditors(VntEditorTable& table);
void addImageEditors(VntEditorTable& table);
void addTableEditors(VntEditorTable& table);

// For types that have no extension of their own: the editor "SField" makes use of these.
void addOtherNumberEditors(VntEditorTable& table);
void addOtherVectorEditors(VntEditorTable& table);

/// For the entries of a table: a VntEditorWidget that shows its field.
template <class Editor> QWidget* makeEditor(VntFieldEdit* edit, QWidget* parent) {
  auto* const editor = new Editor(edit, parent);
  editor->refresh();
  return editor;
}
