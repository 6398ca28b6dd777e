#pragma once

#include "kestrava/base/SoChildList.h"
#include "kestrava/fields/SoSFString.h"
#include "kestrava/nodes/SoNode.h"

/// Shows the contents of a scene file. The file is read when its name is set, along the search path; its
/// nodes are hidden children, which are not written.
///
/// Listeners hear first of the name field; once the children are replaced, of a change without a field. A
/// file that is missing, faulty, or includes itself is posted as one read error; the node then shows nothing.
class SoFile : public SoNode {
  SO_NODE(SoFile, SoNode)

  SoSFString name{this, "name"};

  /// As deep as files may include files.
  static constexpr int MAX_DEPTH = 100;

  SoChildList* getChildren() const override { return &m_children; }
  /// Full name of the file that was read, empty when there is none.
  SbString const& getFullName() const { return m_fullName; }
  /// Reads the file again, whether or not it has changed.
  void reload();

 protected:
  ~SoFile() override = default;
  void fieldChanged(SoField* field) override;

 private:
  /// Null after an error, which it posts.
  SoRef<SoNode> readContents();

  mutable SoChildList m_children{this};
  SbString m_fullName;
};
