#pragma once

#include "kestrava/base/SoChildList.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/fields/SoSFString.h"
#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/nodes/SoNode.h"

class SoSeparator;
class SoWWWInline;
/// Fetches what a URL names and hands it over with setChildData(), at once or later.
using SoWWWInlineFetchURLCB = void(SbString const& url, void* data, SoWWWInline* node);

/// Shows a scene that the program fetches from a URL on demand; until then a stand-in. Its nodes are hidden
/// children, which are not written.
///
/// The first child is internal: a separator with the stand-in. What is loaded stands from index 1 on. Loading
/// notifies without a field.
class SoWWWInline : public SoNode {
  SO_NODE(SoWWWInline, SoNode)
  SoWWWInline();

  SoSFString name{this, "name"}; ///< the URL
  SoSFVec3f bboxCenter{this, "bboxCenter"};
  SoSFVec3f bboxSize{this, "bboxSize"};
  SoSFNode alternateRep{this, "alternateRep"}; ///< the stand-in

  /// One function for all inlines; null removes it.
  static void setFetchURLCallBack(SoWWWInlineFetchURLCB* function, void* data = nullptr);
  static SoWWWInlineFetchURLCB* getFetchURLCallBack();
  static void* getFetchURLData();
  /// Calls that function; without one, or without a name, nothing happens.
  void requestChildrenFromURL();
  bool isURLDataRequested() const { return m_requested; }
  /// The files that this node stems from, the outermost first: what a name is relative to, and what it may
  /// not load again (see SoDB::readIncluded()).
  std::vector<SbString> const& getIncluders() const { return m_includers; }
  /// Replaces what is loaded; null unloads.
  void setChildData(SoNode* root);
  /// What is loaded, null before.
  SoNode* getChildData() const;
  bool hasChildData() const { return m_children.getLength() > 1; }

  SoChildList* getChildren() const override { return &m_children; }

 protected:
  ~SoWWWInline() override;
  void copyContents(SoFieldContainer const& from, SoCopier&) override {
    m_includers = static_cast<SoWWWInline const&>(from).m_includers;
    m_requested = static_cast<SoWWWInline const&>(from).m_requested;
  }
  void fieldChanged(SoField* field) override;

 private:
  mutable SoChildList m_children{this};
  std::vector<SbString> m_includers;
  bool m_requested = false;
};
