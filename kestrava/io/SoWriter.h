#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kestrava/base/SbName.h"
#include "kestrava/base/SbString.h"

class SoField;
class SoFieldData;
class SoNode;
class SoOutput;

/// Writes nodes as text, deterministically: equal graphs give equal text. It looks at everything once to learn
/// what is shared, and then writes; both with stacks of their own, so depth costs memory only.
class SoWriter {
 public:
  explicit SoWriter(SoOutput& out) : m_out(out) {}

  /// The nodes of a file, each starting a line.
  void writeFile(std::vector<SoNode*> const& nodes);
  /// The value of a node-valued field, in brackets when it is a `list`; null entries are allowed.
  void writeValues(std::vector<SoNode*> const& nodes, bool list);

 private:
  struct Shared {
    std::string name;      // in this file; empty until it is asked for
    bool used = false;     // stands at several places, or is the source of a connection
    bool written = false;
  };
  struct Frame {
    SoNode* node;
    int field = 0;   // the next field
    int value = -1;  // the next value of the field before, while that is node-valued
    int child = 0;   // the next child
    bool hasContent = false;
  };

  void lookAt(std::vector<SoNode*> const& roots);
  void visit(SoNode* node, std::vector<SoNode*>& open);
  std::vector<int> const& nodeFieldsOf(SoNode* node);
  void writeNode(SoNode* node);
  /// NULL, USE, or the head of a node, which is then open.
  void start(SoNode* node);
  void declareFields(SoNode* node, Frame& frame);
  bool writeNextField(Frame& frame);
  bool writeNextChild(Frame& frame);
  void writeNextValue(Frame& frame);
  void writeFieldEnd(SoField* field);
  void startLine(Frame& frame);
  std::string nameOf(SoNode const* node);

  SoOutput& m_out;
  std::vector<Frame> m_frames;
  std::unordered_map<SoNode const*, Shared> m_shared;  // whatever may be met more than once
  std::unordered_map<SbName, int> m_names;             // how many nodes have each name
  std::unordered_set<SoNode const*> m_sources;         // of connections
  std::unordered_map<SoFieldData const*, std::vector<int>> m_nodeFields;
  int m_lastNumber = 0;
};
