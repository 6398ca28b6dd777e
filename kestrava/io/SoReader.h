#pragma once

#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

#include "kestrava/base/SbString.h"
#include "kestrava/base/SoBase.h"
#include "kestrava/base/SoPath.h"
#include "kestrava/nodes/SoNode.h"

class SoChildList;
class SoField;
class SoInput;

/// Builds nodes from a scene in text or binary form. What is open is kept on a stack of its own, so depth
/// costs memory only; nothing is seen by others before it is complete, and after a fault nothing is left.
class SoReader {
 public:
  explicit SoReader(SoInput& in) : m_in(in) {}

  /// Everything up to the end, as SoDB::readAll() describes it: the root with count 0, or null with the
  /// fault posted.
  SoNode* readAll();
  /// True when readAll() put a node of its own above those of the file.
  bool hasAddedRoot() const { return m_addedRoot; }

  // Values alone. False after a fault, which is left in the stream.
  /// The one node that comes next, or null.
  bool readNode(SoRef<SoNode>& node);
  /// The path that comes next, or null. Its graph is its own.
  bool readPath(SoRef<SoPath>& path);

 private:
  using Container = SoRef<SoFieldContainer>;
  enum class Use { CHILD, VALUE, HEAD, SOURCE };

  struct Definition {
    Container container;
    bool isOpen = false;
  };
  /// What refers to a container that may be defined later.
  struct Reference {
    Container container;                    // null: not defined yet
    std::string name;                       // in text
    Definition const* definition = nullptr; // in binary data
  };
  /// A class of containers in a binary file.
  struct FileClass {
    struct Field {
      SbName name, type;
      int index = -1; // in the table of the container met last
    };
    SbName name;
    SoType type; // bad: not known
    std::vector<Field> fields;
  };
  struct PathValue {
    Reference head; // with a name, a definition, or a container; none of them: a null path
    std::vector<std::int32_t> steps;
    std::int64_t place = 0;
  };
  /// A container that is open, a list of values of a node-valued field, or a path.
  struct Frame {
    enum Kind { CONTAINER, NODES, PATHS, PATH } kind = CONTAINER;
    Use use = Use::CHILD;     // of what this becomes
    SoField* field = nullptr; // of the container below that gets it
    Container container;
    Definition* definition = nullptr;
    SoChildList* children = nullptr; // null: takes none
    FileClass* fileClass = nullptr;  // binary
    std::uint32_t left = 0;          // values to come, binary
    std::int64_t place = 0;
  };
  struct Connection {
    SoField* field;
    Container container;
    Reference source;
    std::string sourceField;
    std::int64_t place;
  };
  struct PathField {
    SoField* field;
    Container container;
    std::vector<PathValue> values;
    bool isMany;
  };

  bool readRoots();
  bool readGraph(Use use);
  bool readEntries(std::size_t depth);
  bool finish();

  // Text.
  bool readTextRoot(Use use);
  bool readTextEntry();
  bool readTextField(SoField* field);
  bool readTextFieldEnd(SoField* field);
  bool readTextValue(SoField* field, Use use);
  bool readTextPath(SoField* field);
  bool closeTextPath();
  bool readTextSource(SoField* field);
  bool readTextOutput(SbString const& name, bool isQuoted, Connection& connection);
  bool isWordNext();
  /// The word that starts a container is read already; `expected` says what might have stood there, null:
  /// whatever may stand in the open container.
  bool readTextAfter(SbString const& word, SoField* field, Use use, std::int64_t line,
                     char const* expected);
  bool readTextBody(SbString const& typeName, SbString const& definedAs, SoField* field, Use use,
                    std::int64_t line, char const* expected);
  Container readUnknown(SbString const& typeName, std::int64_t line, char const* expected);
  std::string expectedText(char const* expected) const;
  SoType typeOf(SbString const& name);

  // Binary.
  struct Word {
    std::uint32_t kind = 0, number = 0;
  };
  bool readWord(Word& word);
  bool readBytesRoots();
  bool readBytesEntry();
  bool readBytesField(Word const& word);
  bool readBytesItem(Word word, SoField* field, Use use);
  bool readBytesBody(std::uint32_t number, SbName const& name, Definition* definition, SoField* field,
                     Use use);
  bool readBytesPath(Word const& word, SoField* field);
  bool readClass(FileClass& fileClass);
  SoField* findFileField(Frame& frame, std::uint32_t number);
  Definition* definitionOf(std::uint32_t number);

  // Both.
  bool open(Frame frame, SbName const& name);
  bool close();
  bool closeList();
  bool closePath();
  /// Gives a complete node (or null) to whom it belongs: the frame on top, or the caller.
  bool deliver(SoRef<SoNode> node, SoField* field, Use use);
  bool deliverUse(Definition const& definition, SbString const& name, SoField* field, Use use,
                  std::int64_t place);
  bool endField(SoField* field);
  bool endPathValue(SoField* field, PathValue value);
  bool resolve(Reference& reference, std::int64_t place);
  bool makePath(PathValue& value, SoRef<SoPath>& path);
  bool failGone(SoFieldContainer const* container, std::int64_t place);
  bool makeConnections();
  bool setPaths();

  SoInput& m_in;
  std::vector<Frame> m_frames;
  std::vector<std::vector<SoRef<SoNode>>> m_lists; // of the frames of nodes
  std::vector<PathField> m_pathLists;              // of the frames of paths
  std::vector<PathValue> m_openPaths;              // of the frames of single paths
  std::vector<SoRef<SoNode>> m_complete;           // nodes that belong to the caller
  std::vector<PathValue> m_completePaths;
  std::unordered_map<SbName, Definition> m_definitions;
  std::deque<Definition> m_numbered; // binary
  std::deque<FileClass> m_classes;   // binary
  std::vector<Connection> m_connections;
  std::vector<PathField> m_pathFields;
  std::unordered_map<std::string, SoType> m_types;
  std::uint64_t m_unknownFields = 0; // of unknown nodes, binary
  bool m_addedRoot = false;
};
