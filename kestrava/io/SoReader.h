#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "kestrava/base/SbString.h"
#include "kestrava/base/SoBase.h"
#include "kestrava/nodes/SoNode.h"

class SoChildList;
class SoField;
class SoInput;
class SoMFNode;
class SoUnknownNode;

/// Builds nodes from the text of a scene. What is open is kept on a stack of its own, so depth costs memory
/// only; nothing is seen by others before it is complete, and after a fault nothing is left.
class SoReader {
 public:
  explicit SoReader(SoInput& in) : m_in(in) {}

  /// Everything up to the end, as SoDB::readAll() describes it: the root with count 0, or null with the
  /// fault posted.
  SoNode* readAll();
  /// True when readAll() put a node of its own above those of the file.
  bool hasAddedRoot() const { return m_addedRoot; }

  /// The one node that comes next; null after a fault, which is left in the stream.
  SoRef<SoNode> readNode();

 private:
  struct Definition {
    SoRef<SoNode> node;
    bool isOpen = false;
  };
  /// A node that is open, or (without a node) the list of values of a node-valued field.
  struct Frame {
    SoRef<SoNode> node;
    Definition* definition = nullptr;
    SoChildList* children = nullptr;  // null: takes none
    SoField* field = nullptr;         // of the node below, that gets what this becomes; null: it is a child
    int line = 0;
    bool isList = false;
  };
  struct Connection {
    SoField* field;
    SoRef<SoNode> container;
    SoRef<SoNode> source;  // null: not defined yet
    std::string sourceName, sourceField;
    int line;
  };

  bool readEntries(std::size_t depth);
  bool readEntry();
  bool readTopLevel();
  bool readField(SoField* field);
  bool readFieldEnd(SoField* field);
  bool readNodeValue(SoField* field);
  bool isWordNext();
  /// The word that starts a node is read already; `expected` says what else might have stood there.
  bool readNodeAfter(SbString const& word, SoField* field, int line, SbString const& expected);
  bool readBody(SbString const& typeName, SbString const& definedAs, SoField* field, int line, SbString const& expected);
  SoRef<SoNode> readUnknown(SbString const& typeName, int line, SbString const& expected);
  bool readSource(SoField* field);
  bool closeFrame();
  bool closeList();
  /// Gives a complete node (or null) to whom it belongs: the frame on top, or the caller.
  bool deliver(SoRef<SoNode> node, SoField* field);
  bool makeConnections();
  SoType typeOf(SbString const& name);

  SoInput& m_in;
  std::vector<Frame> m_frames;
  std::vector<std::vector<SoRef<SoNode>>> m_lists;  // of the list frames
  std::vector<SoRef<SoNode>> m_complete;            // nodes that belong to the caller
  std::unordered_map<std::string, Definition> m_definitions;
  std::vector<Connection> m_connections;
  std::unordered_map<std::string, SoType> m_types;
  bool m_addedRoot = false;
};
