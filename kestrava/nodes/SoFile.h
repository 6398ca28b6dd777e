#pragma once

#include "kestrava/base/SoChildList.h"
#include "kestrava/fields/SoSFString.h"
#include "kestrava/nodes/SoNode.h"

/// Shows the contents of another file, of any kind that can be read. It is read when the name is set, and
/// looked for beside the file that this node stems from, then along the search path; its nodes are hidden
/// children, which are not written.
///
/// Listeners hear first of the name field; once the children are replaced, of a change without a field. A
/// file that is missing, faulty, or includes itself is posted as one read error; the node then shows nothing.
class SoFile : public SoNode {
  SO_NODE(SoFile, SoNode)

  SoSFString name{this, "name"};

  SoChildList* getChildren() const override { return &m_children; }
  /// Full name of the file that was read, empty when there is none.
  SbString const& getFullName() const { return m_fullName; }
  /// Reads the file again, whether or not it has changed.
  void reload();

 protected:
  ~SoFile() override = default;
  void copyContents(SoFieldContainer const& from, SoCopier&) override {
    m_fullName = static_cast<SoFile const&>(from).m_fullName;
    m_includers = static_cast<SoFile const&>(from).m_includers;
  }
  void fieldChanged(SoField* field) override;

 private:
  mutable SoChildList m_children{this};
  SbString m_fullName;
  std::vector<SbString> m_includers;  // the files that this node stems from
};
