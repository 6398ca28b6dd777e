#pragma once

#include <memory>
#include <vector>

#include "kestrava/io/SoGraphForm.h"

class SoField;
class SoNode;
class SoOutput;
class SoPath;

/// Writes graphs in the form that the output has, deterministically: equal graphs give equal files. It looks
/// at everything once to learn what is shared, and then writes; both with stacks of their own, so depth costs
/// memory only.
class SoWriter {
 public:
  explicit SoWriter(SoOutput& out);

  /// The nodes of a file, after its header.
  void writeFile(std::vector<SoNode*> const& nodes);
  /// The value of a node-valued field; `isMany` when it may hold any number. Null entries are allowed.
  void writeValues(std::vector<SoNode*> const& nodes, bool isMany);
  /// A path, null for none. Nodes that only lie above or beside what is written are left out.
  void writePath(SoPath const* path);

  /// The steps of a path from a node on: positions in the lists of children; below zero for a node that is
  /// held by a field, -1 the first one.
  static std::vector<std::int32_t> stepsOf(SoPath const* path, int start);
  /// Goes such a step; false when there is none.
  static bool appendStep(SoPath& path, std::int32_t step);

 private:
  struct Frame {
    SoFieldContainer* container;
    SoGraphSurvey::Class* fields;
    SoField const* source = nullptr; // what it stands for where it is the source of a connection
    SoPath const* path = nullptr;    // whose head it is
    int field = 0;                   // the next field
    int value = -1;                  // the next value of the field before, while that is open
    int child = 0;                   // the next child
  };

  void writeGraph(SoFieldContainer* container);
  /// Answers true when the container is open now: it was not null and not a USE.
  bool start(SoFieldContainer* container);
  void startPath(SoPath const* path);
  void close();
  bool writeNextField();
  bool writeNextChild();
  void writeNextValue();
  void writeFieldEnd(SoField const* field);

  SoOutput& m_out;
  SoGraphSurvey m_survey;
  std::unique_ptr<SoGraphForm> m_form;
  std::vector<Frame> m_frames;
};
