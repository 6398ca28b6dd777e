#pragma once

#include <memory>

#include "kestrava/io/SoGraphSurvey.h"

class SoOutput;

/// How a graph stands in a file, as text or as bytes. The writer says what comes next, a form puts it down.
class SoGraphForm {
 public:
  virtual ~SoGraphForm() = default;
  /// The form that the output asks for.
  static std::unique_ptr<SoGraphForm> make(SoOutput& out, SoGraphSurvey& survey);

  virtual void beginFile() {}
  virtual void endFile() {}
  virtual void beginRoot() {}
  virtual void endRoot() {}

  virtual void putNull() = 0;
  /// What was begun before, or is a source of connections anywhere in the file. `entry` belongs to it.
  virtual void putUse(SoFieldContainer const* container, SoGraphSurvey::Entry& entry) = 0;
  /// `entry` is null for what is met once.
  virtual void begin(SoFieldContainer const* container, SoGraphSurvey::Entry* entry) = 0;
  virtual void end() = 0;

  virtual void beginChild() {}
  /// The field comes next; its value too, except where a connection or a mark is all there is.
  virtual void beginField(SoField const* field, bool hasValue) = 0;
  virtual void putValue(SoField const* field) = 0;
  /// A list of nodes or paths; `isMany`: the field may hold any number.
  virtual void beginList(int count, bool isMany) = 0;
  virtual void beginListValue() {}
  virtual void endList() {}
  /// The head comes next.
  virtual void beginPath() = 0;
  virtual void endPath(std::vector<std::int32_t> const& steps) = 0;
  virtual void putIgnored(SoField const* field) = 0;
  /// The container of the source comes next.
  virtual void beginSource(SoField const* follower) = 0;
  virtual void endSource(SoField const* source) = 0;
};

/// The binary form: words of four bytes, each at a multiple of four, whose low bits say what it is and whose
/// high bits hold a number. docs/file-format.md describes it.
namespace SoGraphWords {

enum Kind : std::uint32_t {
  END,       ///< of a container; of the file
  NODE,      ///< a container of the class of that number begins
  USE,       ///< the container of that number
  NONE,      ///< null
  DEFINE,    ///< the container that follows gets that number
  NAME,      ///< the container that follows has a name
  VALUE,     ///< of the field of that number
  IGNORED,   ///< the field of that number is
  CONNECTED, ///< the field of that number is, to what follows
  PATH,      ///< a path begins
};
inline constexpr int KIND_BITS = 4;
inline constexpr std::uint32_t MOST = ~0u >> KIND_BITS;
inline constexpr std::uint32_t VERSION = 1;

} // namespace SoGraphWords
