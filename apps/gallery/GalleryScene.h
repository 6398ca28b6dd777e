#pragma once

#include <string>
#include <vector>

#include "kestrava/base/SoBase.h"
#include "kestrava/nodes/SoNode.h"

class SoPickedPoint;
class SoSceneManager;
class SoSwitch;

/// What a page of the gallery shows while it is open, and what a person can do there.
///
/// This class is a still scene. It has choices where the scene holds a switch with the name "choices": one
/// for each of its children, called as they are.
class GalleryScene {
 public:
  /// Referenced.
  explicit GalleryScene(SoNode* root);
  virtual ~GalleryScene();
  GalleryScene(GalleryScene const&) = delete;
  GalleryScene& operator=(GalleryScene const&) = delete;

  SoNode* getRoot() const { return m_root; }
  /// What a person can switch between; mostly nothing.
  std::vector<std::string> const& getChoices() const { return m_choices; }
  /// Called when the page is opened, with 0, and when the person chooses. The manager is the one that shows
  /// the scene.
  virtual void choose(int which, SoSceneManager& manager);
  /// True: a click is for the scene at once; the viewer starts in picking mode.
  virtual bool isForClicks() const { return false; }
  /// A click while picking; null when nothing was hit. Answers what there is to say about it.
  virtual std::string click(SoPickedPoint const* hit);
  /// Brings a scene that moves by itself to a moment, in seconds since it was opened, and keeps it there.
  virtual void stopAt(double) {}

 protected:
  /// The node of a type that has that name in the scene, null when there is none. Kits are not searched.
  SoNode* findNode(SbName const& name, SoType type) const;
  template <class Node> Node* find(char const* name) const {
    return static_cast<Node*>(findNode(name, Node::getClassTypeId()));
  }
  void setChoices(std::vector<std::string> choices) { m_choices = std::move(choices); }

 private:
  SoRef<SoNode> m_root;
  SoSwitch* m_switch = nullptr; // in the scene
  std::vector<std::string> m_choices;
};
