#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "kestrava/base/SbName.h"
#include "kestrava/base/SbString.h"

/// Writes scene text or binary data to a file or to memory.
///
/// A file is written beside its name and replaces what stands there only when closeFile() finds every byte
/// written; until then, and after any fault, the old file is untouched.
class SoOutput {
 public:
  SoOutput();
  ~SoOutput();
  SoOutput(SoOutput const&) = delete;
  SoOutput& operator=(SoOutput const&) = delete;

  /// False when the file can not be created; getErrorText() says why. What is no regular file (a pipe, a
  /// device) is written directly.
  bool openFile(SbString const& name);
  /// Writes into memory; takeBuffer() gets what was written.
  void setBuffer();
  std::string takeBuffer();
  /// The header line written first; the default one of the form that setBinary() chose unless set.
  void setHeader(SbString const& header);
  void setBinary(bool on);
  bool isBinary() const { return m_binary; }
  /// gzip; takes effect when the first bytes go out, so it may be set after openFile(). Not for memory.
  void setCompression(bool on);
  /// False when something could not be written; the old file then still stands and getErrorText() says why.
  bool closeFile();
  /// Notes that what is written here is of no use; closeFile() then leaves the old file as it was.
  void fail(SbString const& why);
  bool hasFailed() const { return !m_fault.empty(); }
  /// "<file>: <what is wrong>"; empty while nothing is.
  SbString getErrorText() const;

  static SbString getDefaultASCIIHeader();
  static SbString getDefaultBinaryHeader();

  /// Writes the header line, unless that was done already.
  void writeHeader();

  // Values. ASCII: reals in the shortest form that reads back to the same value, C locale. No separators are
  // added. Binary: little-endian.
  void write(float value) { writeNumber(value); }
  void write(double value) { writeNumber(value); }
  void write(std::int32_t value) { writeNumber(value); }
  void write(std::uint32_t value) { writeNumber(value); }
  void write(std::int16_t value) { writeNumber(value); }
  void write(std::uint16_t value) { writeNumber(value); }
  /// ASCII: a plain word where it can stand without quotes is still quoted; quotes and backslashes are escaped.
  void write(SbString const& value);
  void write(SbName const& value);

  // ASCII structure.
  /// Characters as they are.
  void put(std::string_view text) {
    m_pending += text;
    if (m_pending.size() >= FULL) flush();
  }
  /// A new line indented to the present depth; what lies very deep is not indented further.
  void newLine();
  /// Characters in the present line.
  int getColumn() const { return static_cast<int>(static_cast<std::ptrdiff_t>(m_pending.size()) - m_lineStart); }
  void indent(int levels) { m_indent += levels; }

  // Binary structure.
  void writeBytes(void const* from, std::size_t bytes);
  void writeCount(std::uint32_t count) { write(count); }
  /// A name that may come again: its number, after which the text follows the first time, padded to four bytes.
  void writeName(SbName const& name);
  /// Pads with zero bytes to a multiple of `alignment` from the start of the data.
  void align(std::size_t alignment);

 private:
  struct Target;
  static constexpr std::size_t FULL = 1 << 16;
  template <class T>
  void writeNumber(T value);
  void flush();
  void reset();

  std::unique_ptr<Target> m_target;  // null while no file is open
  std::string m_pending;             // not handed to the target yet
  std::unordered_map<SbName, std::uint32_t> m_names;  // that writeName() wrote
  SbString m_header;
  SbString m_fault;
  std::ptrdiff_t m_lineStart = 0;  // of the present line from the start of m_pending
  std::uint64_t m_before = 0;      // bytes written before m_pending
  int m_indent = 0;
  bool m_binary = false;
  bool m_compress = false;
  bool m_headerWritten = false;
};
