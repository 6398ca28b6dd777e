#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kestrava/base/SbName.h"

class SoChildList;
class SoField;
class SoFieldContainer;
class SoFieldData;
class SoNode;
class SoPath;

/// What a file says of a graph: which nodes and engines are met, and which of them at several places. It
/// looks at everything once, with a stack of its own.
class SoGraphSurvey {
 public:
  /// Something that may be met more than once.
  struct Entry {
    std::string name;        // in a text file; empty until it is asked for
    int number = -1;         // in a binary file; -1 until it is asked for
    bool isReferred = false; // stands at several places, or a connection or a path begins there
    bool isWritten = false;
    bool standsInPath = false; // nothing but a path holds it
  };
  enum class FieldKind : unsigned char { PLAIN, NODE, NODES, PATH, PATHS, TRIGGER };
  /// What is the same for all containers of one table of fields.
  struct Class {
    std::vector<FieldKind> kinds;
    std::vector<int> references; // the fields that hold nodes or paths
    SbName typeName;             // in files
    int number = -1;             // in a binary file; -1 until it was written
  };

  void lookAt(std::vector<SoNode*> const& roots);
  /// Null for what is certainly met once and nobody refers to, which is nearly all.
  Entry* find(SoFieldContainer const* container) {
    auto const known = m_entries.find(container);
    return known == m_entries.end() ? nullptr : &known->second;
  }
  /// The first node of a path that stands in the file; -1 when there is none.
  int getPathStart(SoPath const* path) const;
  /// The name in a text file: unique in it for what is referred to; may be empty for others.
  std::string const& getTextName(SoFieldContainer const* container, Entry* entry);
  Class& classOf(SoFieldContainer const* container);

  static FieldKind kindOf(SoField const* field);
  /// True when a file holds the field: its value, its mark or its connection.
  static bool isWritten(SoField const* field);
  /// The children that a file shows; those of kits, files and inlines are not among them. Null: none.
  static SoChildList const* getWrittenChildren(SoFieldContainer const* container);
  static bool isNode(SoFieldContainer const* container);
  /// The nodes and the paths that a field of such a kind holds; null ones are among them.
  static std::vector<SoNode*> nodesOf(SoField const* field, FieldKind kind);
  static std::vector<SoPath*> pathsOf(SoField const* field, FieldKind kind);

 private:
  void walk(std::vector<SoNode*> const& roots);
  void visit(SoFieldContainer* container);
  void visitFields(SoFieldContainer* container);
  void visitAllOpen();
  void enterPath(SoPath const* path);
  bool standsAlone(SoNode* head);

  std::unordered_map<SoFieldContainer const*, Entry> m_entries;
  std::unordered_map<SbName, int> m_names; // how many containers have each name
  std::unordered_map<SoFieldData const*, std::unique_ptr<Class>> m_classes;
  SoFieldData const* m_lastData = nullptr;
  Class* m_lastClass = nullptr;
  std::vector<SoFieldContainer*> m_open;
  std::unordered_set<SoFieldContainer const*> m_sources; // nodes that connections come from
  std::vector<SoPath const*> m_paths;                    // in the order they were met
  std::unordered_map<SoPath const*, int> m_starts;
  std::unordered_set<SoNode const*> m_entangled; // heads that do not stand alone
  bool m_entersAll = false;                      // where paths may begin anywhere
  int m_lastNumber = 0;
};
