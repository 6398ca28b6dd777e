#pragma once

#include "kestrava/actions/SoStateAction.h"
#include "kestrava/render/SoDrawList.h"

class SoText2;

/// Walks a scene and enters what it shows into a draw list. A node type that is drawn in its own way registers
/// a method for this action.
class SoDrawListAction : public SoStateAction {
  SO_ACTION(SoDrawListAction, SoStateAction)
 public:
  SoDrawListAction(SoDrawList& list, SoDrawList::View const& view);

  /// Enters a shape with the present state. Null: the mesh is the one that the shape builds.
  void addShape(SoShape const& shape, std::shared_ptr<SoDrawMesh const> mesh = nullptr);
  /// Enters a text in the plane of the screen.
  void addText(SoText2 const& text);
  void setBackground(SoDrawBackground const& background) { m_list.m_background = background; }
  /// A program for what follows; with all stages empty the fixed one.
  void setShader(SoDrawShader const& shader);
  void enterAnnotation() { ++m_annotations; }
  void leaveAnnotation() { --m_annotations; }

 protected:
  void begin() override;
  void end() override;
  void visit(SoNode* node) override;

 private:
  struct Step {
    SoNode* node;
    int childIndex;
    int place;  // -1: not entered yet
  };
  /// Only the first one counts.
  void addCamera(SoCamera& camera);
  std::shared_ptr<SoDrawMesh const> meshOf(SoShape const& shape);
  int materialIndex(SoMaterialElement const& element);
  int textureIndex(SoTextureImageElement const& element);
  int surroundingsIndex();
  int lookIndex(SoDrawLook const& look);
  int textureMatrixIndex(SbMatrix const& matrix);
  int enterPlaces();
  SoDrawLook lookOf(SoDrawMesh const& mesh, SoDrawMaterial const& material);
  int addInputs(SoDrawList::Item& item);

  SoDrawList& m_list;
  SoDrawList::View const& m_view;
  std::vector<Step> m_steps;
  int m_numVisits = 0;
  std::unordered_map<std::uint64_t, int> m_materialIndices;
  // By hashes: scenes may have thousands of each.
  std::unordered_multimap<size_t, int> m_textureIndices, m_lookIndices, m_surroundingsIndices;
  decltype(SoDrawList::m_textureAlphas) m_formerAlphas;
  int m_annotations = 0;
};
