#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <cstring>
#include <string_view>
#include <vector>

#include "kestrava/base/SbName.h"
#include "kestrava/base/SbString.h"
#include "kestrava/io/SoNumberText.h"

/// Reads scene text or binary data from a file (compressed or not), an in-memory file, or a buffer.
///
/// The first fault of a read is kept with its place (the line, in binary data the byte) and what was expected
/// there; after it every operation answers false. Nothing is posted until postError() is called.
class SoInput {
 public:
  SoInput();
  virtual ~SoInput();
  SoInput(SoInput const&) = delete;
  SoInput& operator=(SoInput const&) = delete;

  /// Opens a file and reads its header. A name that is not absolute is looked for in the working directory,
  /// then in the search path; registered in-memory files come first. `aliases`: the name may hold $VARIABLES.
  /// False when there is no such file, which is posted as a read error unless `notFoundIsOk`. Any other fault
  /// (a folder, no permission, a wrong header) is kept for whoever reads: SoDB::readAll() posts it.
  bool openFile(char const* name, bool notFoundIsOk = false, bool aliases = true);
  void closeFile();
  /// Reads from memory, without a header; the text must outlive the reading. Binary data that begins with its
  /// header is taken as what it is.
  void setBuffer(std::string_view text, bool binary = false);
  /// The header line of the opened file; empty for a buffer.
  SbString getHeader() const;
  /// Full name of the open file, empty when nothing is open.
  SbString getCurFileName() const;
  /// False before and after, and where opening found no file.
  bool isOpen() const { return m_start != nullptr; }
  bool isBinary() const { return m_binary; }
  /// Called with 0 to 100 as the read goes on, on the reading thread, at most a few hundred times a file.
  virtual void updateReadPercent(double percent);

  // Files that live in memory, and where files are looked for. Any thread.
  static void addInMemoryTextFile(SbString const& name, SbString const& text);
  /// The whole text of an in-memory file or a file on disk; empty when there is none.
  static SbString readTextFile(SbString const& name);
  static void addDirectoryFirst(SbString const& dir);
  static void addDirectoryLast(SbString const& dir);
  /// Removing an absent directory does nothing.
  static void removeDirectory(SbString const& dir);
  /// The first existing file of that name along the search path (or the name itself); empty when none exists.
  static SbString findFile(SbString const& name);

  // Values. ASCII: white space and comments before the value are skipped. Binary: little-endian.
  bool read(float& value) {
    return readFast(value, [](auto&&... text) { return SoNumberText::parseReal(text...); });
  }
  bool read(double& value) {
    return readFast(value, [](auto&&... text) { return SoNumberText::parseReal(text...); });
  }
  bool read(std::int32_t& value) {
    return readFast(value, [](auto&&... text) { return SoNumberText::parseInteger(text...); });
  }
  bool read(std::uint32_t& value);
  bool read(std::int16_t& value);
  bool read(std::uint16_t& value);
  /// A quoted string, or one plain word.
  bool read(SbString& value);
  bool read(SbName& value);
  /// The name of a field or a type: a plain word that '=', '~' and '.' end too; ASCII only.
  bool readWord(SbString& word);
  /// A symbol of letters, digits and '_'; ASCII only.
  bool readIdentifier(SbString& word);

  // ASCII structure.
  /// Skips white space and comments and answers the next character, -1 at the end.
  int peek() {
    for (;;) {
      while (m_next != m_end && SoNumberText::is(*m_next, SoNumberText::SPACE)) ++m_next;
      if (m_next != m_end && *m_next != '#') return static_cast<unsigned char>(*m_next);
      if (!skipMore()) return -1;
    }
  }
  /// Takes the character if it comes next.
  bool skip(char c) {
    if (peek() != static_cast<unsigned char>(c)) return false;
    ++m_next;
    return true;
  }
  /// Takes the word if it comes next and is not only the beginning of a longer one.
  bool skipWord(std::string_view word);
  /// Takes the character or fails with it as what was expected.
  bool expect(char c);
  bool atEnd() { return m_binary ? m_next == m_end && !more() : peek() < 0; }

  // Binary structure.
  /// Copies `bytes` bytes; fails when fewer are left.
  bool readBytes(void* to, std::size_t bytes);
  /// A count of items of at least `itemSize` bytes each; fails when fewer bytes than that are left, so that
  /// the caller may allocate for it. Where the rest is not known (compressed data) large counts are refused
  /// only as reading goes on: grow in steps then.
  bool readCount(std::uint32_t& count, std::size_t itemSize);
  /// A name as SoOutput::writeName() writes it.
  bool readName(SbName& name);
  /// Skips padding up to a multiple of `alignment` from the start of the data.
  bool align(std::size_t alignment);

  /// Notes the fault "expected <expected>, found ..." at the present line unless there is one already.
  /// Always false, so that a reader can end with `return in.fail(...)`.
  bool fail(std::string_view expected);
  /// Notes a fault in full words, at a place other than the present one when that is given.
  bool failText(SbString const& what, std::int64_t place = 0);
  /// Puts a fault of the file as a whole, or with an empty text none, in the place of the one that was noted.
  void replaceFault(SbString const& what);
  bool hasFailed() const { return m_failed; }
  /// "<file>:<place>: <what is wrong>"; without file and place for a buffer.
  SbString getErrorText() const;
  /// Names the file that wanted this one; the text of a fault then names it too.
  void setIncludedBy(SbString const& name) { m_includedBy = name; }
  /// Posts the fault, if there is one, through the read-error channel, once.
  void postError();
  /// The line of what comes next, 1 for the header.
  int getLine() const;
  /// The line of what comes next, in binary data the number of bytes before it.
  std::int64_t getPlace() const { return m_binary ? static_cast<std::int64_t>(getOffset()) : getLine(); }

 private:
  struct Source;
  template <class T, class Parse>
  bool readFast(T& value, Parse parse) {
    if (!m_binary) {
      peek();
      if (char const* end = parse(m_next, m_end, value)) {
        m_next = end;
        return !m_failed;
      }
    }
    return readSlow(value);
  }
  bool readSlow(float& value);
  bool readSlow(double& value);
  bool readSlow(std::int32_t& value);
  template <class T>
  bool readReal(T& value);
  template <class T>
  bool readInteger(T& value);
  template <class T>
  bool readBlock(T& value) {
    if (static_cast<std::size_t>(m_end - m_next) < sizeof value) return readBytes(&value, sizeof value);
    std::memcpy(&value, m_next, sizeof value);
    m_next += sizeof value;
    return !m_failed;
  }
  std::uint64_t getOffset() const { return m_before + static_cast<std::uint64_t>(m_next - m_start); }
  bool isBeyond(std::uint64_t bytes) const;
  template <class Ends>
  std::string_view token(Ends ends);
  std::string_view numberToken();
  SbString describeNext();
  char const* endName() const { return m_source ? "the end of the file" : "the end of the text"; }
  bool readQuoted(std::string& text);
  void readHeader();
  bool skipMore();
  bool more();
  bool readDirectly(char* to, std::size_t bytes);
  void reportProgress(bool isAtEnd);
  bool endSource();

  std::unique_ptr<Source> m_source;  // null while nothing is open, and for a buffer
  char const* m_next = nullptr;      // what is not read yet of the part that is in memory
  char const* m_end = nullptr;
  char const* m_start = nullptr;         // of that part
  mutable char const* m_counted = nullptr;  // lines are counted up to here
  mutable int m_line = 1;
  std::uint64_t m_before = 0;  // bytes before that part
  char m_lastBefore = 0;       // the last one of them
  SbString m_fault;
  std::int64_t m_faultPlace = 0;  // 0: of the file as a whole
  std::vector<SbName> m_names;    // that readName() read
  SbString m_includedBy;
  bool m_binary = false;
  bool m_failed = false;
  bool m_posted = false;
};
