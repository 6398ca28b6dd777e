#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "kestrava/base/SbString.h"

/// Where the bytes of an open file come from, one stretch after the other: a file on disk or a text in
/// memory, either of them compressed or not.
class SoByteSource {
 public:
  virtual ~SoByteSource() = default;

  /// Puts up to `space` bytes (at least 1) at `to` and answers how many; 0 at the end of the data, and at a
  /// fault, which getFault() then tells.
  virtual std::size_t read(char* to, std::size_t space) = 0;
  /// What went wrong; empty as long as nothing did.
  SbString const& getFault() const { return m_fault; }
  /// No more bytes than these are to come; the largest number where that is not known.
  virtual std::uint64_t getMostLeft() const { return ~std::uint64_t{0}; }
  /// Share of the stored bytes that has been read, 0 to 1.
  virtual double getProgress() const = 0;

  /// Null when the file can not be opened; the reason is then in `fault`.
  static std::unique_ptr<SoByteSource> openFile(SbString const& name, SbString& fault);
  static std::unique_ptr<SoByteSource> fromText(std::shared_ptr<std::string const> text);
  /// Unpacks what `packed` gives after the bytes that were read from it already.
  static std::unique_ptr<SoByteSource> unpack(std::unique_ptr<SoByteSource> packed, std::string alreadyRead);
  /// True when the first bytes of a file say that it is compressed.
  static bool isPacked(char const* bytes, std::size_t count);

 protected:
  SbString m_fault;
};
