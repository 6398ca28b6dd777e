#include "kestrava/io/SoInput.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SoError.h"
#include "kestrava/io/SoByteSource.h"
#include "kestrava/io/SoOutput.h"
#include "kestrava/io/SoSearchPath.h"

using namespace SoNumberText;

struct SoInput::Source {
  SbString name;
  SbString header;
  std::unique_ptr<SoByteSource> bytes;  // null after a fault in opening
  std::vector<char> buffer;
  double reported = 0;
};

namespace {

constexpr std::size_t CHUNK = 1 << 16;
constexpr std::size_t LONGEST_HEADER = 200;
constexpr double PERCENT_STEP = 0.5;

/// A text of any length, made fit for a message.
SbString shorten(std::string_view text) {
  constexpr std::size_t LONGEST = 40;
  std::string result;
  for (char c : text.substr(0, LONGEST)) result += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
  return SbString(text.size() > LONGEST ? result + "..." : result);
}

bool endsWord(char c) { return is(c, END_WORD); }
bool endsName(char c) { return is(c, END_WORD) || c == '=' || c == '~' || c == '.'; }

}  // namespace

SoInput::SoInput() = default;
SoInput::~SoInput() = default;

bool SoInput::openFile(char const* name, bool notFoundIsOk, bool aliases) {
  closeFile();
  SbString const wanted = aliases ? SbFileHelper::expandString(name) : SbString(name);
  std::shared_ptr<std::string const> const text = SoSearchPath::getInMemoryText(wanted);
  SbString const found = text ? wanted : SoSearchPath::find(wanted);
  if (found.empty()) {
    if (!notFoundIsOk) SoReadError::post("%s: can not be opened: %s", wanted.c_str(), std::strerror(ENOENT));
    return false;
  }
  m_source = std::make_unique<Source>();
  m_source->name = found;
  m_start = m_next = m_end = m_counted = "";
  SbString fault;
  m_source->bytes = text ? SoByteSource::fromText(text) : SoByteSource::openFile(found, fault);
  if (m_source->bytes) {
    readHeader();
  } else {
    m_failed = true;
    m_fault = fault;
  }
  return true;
}

void SoInput::closeFile() {
  m_source.reset();
  setBuffer({});
}

void SoInput::setBuffer(std::string_view text, bool binary) {
  m_source.reset();
  m_start = m_next = m_counted = text.data();
  m_end = m_next + text.size();
  m_line = 1;
  m_before = 0;
  m_lastBefore = 0;
  m_fault = SbString();
  m_faultPlace = 0;
  m_names.clear();
  m_failed = m_posted = false;
  std::string const header = SoOutput::getDefaultBinaryHeader().str() + "\n";
  m_binary = binary || text.starts_with(header);
  if (text.starts_with(header)) m_next += header.size();
}

void SoInput::readHeader() {
  Source& source = *m_source;
  if (!more()) {
    failText("the file is empty", 1);
    return;
  }
  while (m_end - m_next < 2 && more()) {
  }
  if (SoByteSource::isPacked(m_next, static_cast<std::size_t>(m_end - m_next))) {
    source.bytes = SoByteSource::unpack(std::move(source.bytes), std::string(m_next, m_end));
    m_end = m_next;
    m_before = 0;
    if (!more()) {
      failText("the file is empty", 1);
      return;
    }
  }
  while (static_cast<std::size_t>(m_end - m_next) < LONGEST_HEADER && more()) {
  }
  if (m_failed) return;
  std::string_view line(m_next, static_cast<std::size_t>(m_end - m_next));
  line = line.substr(0, std::min(line.find('\n'), LONGEST_HEADER));
  std::size_t const length = line.size();
  while (!line.empty() && is(line.back(), SPACE)) line.remove_suffix(1);
  source.header = SbString(line);
  m_binary = source.header == SoOutput::getDefaultBinaryHeader();
  if (m_binary || source.header == SoOutput::getDefaultASCIIHeader()) {
    m_next += length;
    if (m_binary && m_next != m_end) ++m_next;
  } else if (line.starts_with("#Kestrava V") && (line.ends_with(" ascii") || line.ends_with(" binary"))) {
    std::string_view version = line.substr(11);
    version = version.substr(0, version.find(' '));
    failText("the file is of version " + shorten(version).str() + ", and only files of version 1.0 can be read", 1);
  } else {
    failText("expected the header \"" + SoOutput::getDefaultASCIIHeader().str() + "\", found \"" +
                 shorten(line).str() + "\"",
             1);
  }
}

SbString SoInput::getHeader() const { return m_source ? m_source->header : SbString(); }

SbString SoInput::getCurFileName() const {
  if (!m_source) return SbString();
  return SoSearchPath::getInMemoryText(m_source->name) ? m_source->name : SbFileHelper::toAbsolutePath(m_source->name);
}

void SoInput::updateReadPercent(double) {}

void SoInput::addInMemoryTextFile(SbString const& name, SbString const& text) {
  SoSearchPath::addInMemoryText(name, text);
}

SbString SoInput::readTextFile(SbString const& name) {
  std::shared_ptr<std::string const> const known = SoSearchPath::getInMemoryText(name);
  if (known) return SbString(*known);
  SbString fault;
  auto bytes = SoByteSource::openFile(SoSearchPath::find(name), fault);
  std::string text;
  char part[4096];
  while (std::size_t const count = bytes ? bytes->read(part, sizeof part) : 0) text.append(part, count);
  return SbString(std::move(text));
}

void SoInput::addDirectoryFirst(SbString const& dir) { SoSearchPath::addFirst(dir); }
void SoInput::addDirectoryLast(SbString const& dir) { SoSearchPath::addLast(dir); }
void SoInput::removeDirectory(SbString const& dir) { SoSearchPath::remove(dir); }
SbString SoInput::findFile(SbString const& name) { return SoSearchPath::find(name); }

// Brings more of the file into memory behind what is not read yet, which may move. False at the end.
bool SoInput::more() {
  if (!m_source || !m_source->bytes) return false;
  if (!m_binary) getLine();
  std::vector<char>& buffer = m_source->buffer;
  auto const kept = static_cast<std::size_t>(m_end - m_next);
  if (m_next != m_start) m_lastBefore = m_next[-1];
  m_before += static_cast<std::uint64_t>(m_next - m_start);
  if (kept > 0) std::memmove(buffer.data(), m_next, kept);
  // A token longer than the buffer makes it grow; so does what lies ahead of it never.
  if (buffer.size() < kept + CHUNK / 2) buffer.resize(std::max(CHUNK, buffer.size() * 2));
  std::size_t const count = m_source->bytes->read(buffer.data() + kept, buffer.size() - kept);
  m_start = m_next = m_counted = buffer.data();
  m_end = m_next + kept + count;
  reportProgress(count == 0);
  return count > 0 || endSource();
}

void SoInput::reportProgress(bool isAtEnd) {
  double const percent = m_before == 0 ? 0 : isAtEnd ? 100 : 100 * m_source->bytes->getProgress();
  if (percent < m_source->reported + PERCENT_STEP && (!isAtEnd || m_source->reported >= 100)) return;
  m_source->reported = isAtEnd ? 100 : std::min(percent, 100 - PERCENT_STEP);
  updateReadPercent(m_source->reported);
}

bool SoInput::endSource() {
  SbString const fault = m_source->bytes->getFault();
  if (!fault.empty()) failText(fault);
  m_source->bytes.reset();
  return false;
}

// Past the buffer, of which nothing is left. For more than fits there.
bool SoInput::readDirectly(char* to, std::size_t bytes) {
  while (bytes > 0) {
    std::size_t const count = m_source->bytes->read(to, bytes);
    m_before += static_cast<std::uint64_t>(m_next - m_start) + count;
    m_start = m_next = m_counted = m_end;
    reportProgress(count == 0);
    if (count == 0) return endSource();
    to += count;
    bytes -= count;
  }
  return true;
}

// At the end of what is in memory, or at a comment. False at the end of everything.
bool SoInput::skipMore() {
  if (m_next == m_end) return more();
  while (*m_next != '\n') {
    auto const* lineEnd = static_cast<char const*>(
        std::memchr(m_next, '\n', static_cast<std::size_t>(m_end - m_next)));
    m_next = lineEnd ? lineEnd : m_end;
    if (m_next == m_end && !more()) return false;
  }
  return true;
}

// From the next character up to one that ends it; all of it is in memory and nothing of it is taken.
template <class Ends>
std::string_view SoInput::token(Ends ends) {
  std::size_t length = 0;
  for (;;) {
    auto const inMemory = static_cast<std::size_t>(m_end - m_next);
    while (length < inMemory && !ends(m_next[length])) ++length;
    if (length < inMemory || !more()) return {m_next, length};
  }
}

std::string_view SoInput::numberToken() {
  if (peek() < 0) return {};
  return token([](char c) { return is(c, END_NUMBER); });
}

template <class T>
bool SoInput::readReal(T& value) {
  std::string_view text = numberToken();
  std::size_t const length = text.size();
  if (text.starts_with('+')) text.remove_prefix(1);
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (m_failed) return false;
  if (error == std::errc::invalid_argument || end != text.data() + text.size()) return fail("a real number");
  bool const infinite = value > std::numeric_limits<T>::max() || value < std::numeric_limits<T>::lowest();
  if (error == std::errc::result_out_of_range || (infinite && text.find_first_of("iI") == text.npos)) {
    // Both too large and too small; what is too small for a long double may well be called zero.
    long double wide = 0;
    std::from_chars(text.data(), text.data() + text.size(), wide);
    if (!(wide < 1 && wide > -1)) return failText("the number '" + shorten(text).str() + "' is out of range");
    value = static_cast<T>(wide);
  }
  m_next += length;
  return true;
}

template <class T>
bool SoInput::readInteger(T& value) {
  std::string_view const text = numberToken();
  if (m_failed) return false;
  std::string_view digits = text;
  bool const negative = digits.starts_with('-');
  if (negative || digits.starts_with('+')) digits.remove_prefix(1);
  int base = 10;
  if (digits.starts_with("0x") || digits.starts_with("0X")) {
    base = 16;
    digits.remove_prefix(2);
  } else if (digits.size() > 1 && digits[0] == '0') {
    base = 8;
    digits.remove_prefix(1);
  }
  std::uint64_t magnitude = 0;
  auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), magnitude, base);
  if (error == std::errc::invalid_argument || end != digits.data() + digits.size()) return fail("an integer");
  auto const most = static_cast<std::uint64_t>(std::numeric_limits<T>::max());
  std::uint64_t const least = std::is_signed_v<T> ? most + 1 : 0;
  if (error == std::errc::result_out_of_range || magnitude > (negative ? least : most)) {
    return failText("the number '" + shorten(text).str() + "' is out of range");
  }
  value = static_cast<T>(negative ? std::uint64_t{0} - magnitude : magnitude);
  m_next += text.size();
  return true;
}

bool SoInput::readSlow(float& value) { return m_binary ? readBlock(value) : readReal(value); }
bool SoInput::readSlow(double& value) { return m_binary ? readBlock(value) : readReal(value); }
bool SoInput::readSlow(std::int32_t& value) { return m_binary ? readBlock(value) : readInteger(value); }
bool SoInput::read(std::uint32_t& value) { return m_binary ? readBlock(value) : readInteger(value); }
bool SoInput::read(std::int16_t& value) { return m_binary ? readBlock(value) : readInteger(value); }
bool SoInput::read(std::uint16_t& value) { return m_binary ? readBlock(value) : readInteger(value); }

// After the opening quote, which is taken already.
bool SoInput::readQuoted(std::string& text) {
  int const line = getLine();
  for (;;) {
    char const* stop = m_next;
    while (stop != m_end && *stop != '"' && *stop != '\\') ++stop;
    text.append(m_next, stop);
    m_next = stop;
    if (m_end - m_next < 2 && (m_next == m_end || *m_next == '\\')) {
      if (more()) continue;
      m_next = m_end;
      return failText(std::string("expected '\"' at the end of the string, found ") + endName(), line);
    }
    if (*m_next++ == '"') return !m_failed;
    // A backslash before anything but a quote or a backslash is a character like others.
    if (*m_next == '"' || *m_next == '\\') {
      text += *m_next++;
    } else {
      text += '\\';
    }
  }
}

bool SoInput::read(SbString& value) {
  std::string text;
  if (m_binary) {
    std::uint32_t count = 0;
    if (!readCount(count, 1)) return false;
    while (text.size() < count) {
      std::size_t const done = text.size(), part = std::min<std::size_t>(count - done, CHUNK);
      text.resize(done + part);
      if (!readBytes(text.data() + done, part)) return false;
    }
  } else if (skip('"')) {
    if (!readQuoted(text)) return false;
  } else {
    std::string_view const word = peek() < 0 ? std::string_view() : token(endsWord);
    if (word.empty()) return fail("a string");
    text = word;
    m_next += word.size();
  }
  value = SbString(std::move(text));
  return !m_failed;
}

bool SoInput::read(SbName& value) {
  SbString text;
  if (!read(text)) return false;
  value = SbName(text);
  return true;
}

bool SoInput::readWord(SbString& word) {
  std::string_view const text = peek() < 0 ? std::string_view() : token(endsName);
  if (text.empty()) return fail("a name");
  word = SbString(text);
  m_next += text.size();
  return !m_failed;
}

bool SoInput::readIdentifier(SbString& word) {
  std::string_view const text =
      peek() < 0 ? std::string_view() : token([](char c) { return !is(c, IDENTIFIER); });
  if (text.empty()) return fail("a symbol");
  word = SbString(text);
  m_next += text.size();
  return !m_failed;
}

bool SoInput::skipWord(std::string_view word) {
  if (peek() != static_cast<unsigned char>(word[0])) return false;
  if (token([](char c) { return !is(c, IDENTIFIER); }) != word) return false;
  m_next += word.size();
  return !m_failed;
}

bool SoInput::expect(char c) {
  char const text[] = {'\'', c, '\'', 0};
  return (skip(c) && !m_failed) || fail(text);
}

bool SoInput::readBytes(void* to, std::size_t bytes) {
  auto* out = static_cast<char*>(to);
  while (bytes > 0) {
    bool const isLong = bytes >= CHUNK && m_source && m_source->bytes;
    if (m_next == m_end && isLong) return (readDirectly(out, bytes) && !m_failed) || failText("the data ends too early");
    if (m_next == m_end && !more()) return failText("the data ends too early");
    std::size_t const part = std::min(bytes, static_cast<std::size_t>(m_end - m_next));
    std::memcpy(out, m_next, part);
    m_next += part;
    out += part;
    bytes -= part;
  }
  return !m_failed;
}

/// True when fewer bytes are certainly left.
bool SoInput::isBeyond(std::uint64_t bytes) const {
  auto const inMemory = static_cast<std::uint64_t>(m_end - m_next);
  if (bytes <= inMemory) return false;
  return !m_source || !m_source->bytes || bytes - inMemory > m_source->bytes->getMostLeft();
}

bool SoInput::readCount(std::uint32_t& count, std::size_t itemSize) {
  if (!readBlock(count)) return false;
  if (isBeyond(std::uint64_t{count} * itemSize)) {
    return failText("a count of " + std::to_string(count) + " is more than the data can hold");
  }
  return true;
}

bool SoInput::readName(SbName& name) {
  std::uint32_t number = 0;
  if (!readBlock(number)) return false;
  if (number > m_names.size()) return failText("there is no name of the number " + std::to_string(number));
  if (number == m_names.size()) {
    SbName added;
    if (!read(added) || !align(4)) return false;
    m_names.push_back(added);
  }
  name = m_names[number];
  return true;
}

bool SoInput::align(std::size_t alignment) {
  std::size_t const over = getOffset() % alignment;
  if (over == 0) return !m_failed;
  char padding[64];
  return readBytes(padding, alignment - over);
}

int SoInput::getLine() const {
  m_line += static_cast<int>(std::count(m_counted, m_next, '\n'));
  m_counted = m_next;
  return m_line;
}

SbString SoInput::describeNext() {
  int const next = peek();
  if (next < 0) return endName();
  if (!is(static_cast<char>(next), END_WORD)) return "'" + shorten(token(endsWord)).str() + "'";
  if (next != '"') return SbString(std::string{'\'', static_cast<char>(next), '\''});
  std::string_view const inMemory(m_next + 1, static_cast<std::size_t>(m_end - m_next - 1));
  return "the string \"" + shorten(inMemory.substr(0, inMemory.find('"'))).str() + "\"";
}

bool SoInput::fail(std::string_view expected) {
  if (m_failed) return false;
  SbString const found = describeNext();
  if (m_failed) return false;  // what comes next could not be read
  int line = getLine();
  // The end of the file is not in the empty line that follows the last line end.
  char const last = m_next == m_start ? m_lastBefore : m_next[-1];
  if (m_next == m_end && last == '\n' && line > 1) --line;
  return failText("expected " + std::string(expected) + ", found " + found.str(), line);
}

bool SoInput::failText(SbString const& what, std::int64_t place) {
  if (m_failed) return false;
  m_failed = true;
  m_fault = what;
  m_faultPlace = place > 0 ? place : getPlace();
  return false;
}

void SoInput::replaceFault(SbString const& what) {
  m_failed = !what.empty();
  m_fault = what;
  m_faultPlace = 0;
}

SbString SoInput::getErrorText() const {
  if (!m_failed || !m_source) return m_fault;
  std::string const place = m_faultPlace > 0 ? std::to_string(m_faultPlace) + ":" : std::string();
  std::string const by = m_includedBy.empty() ? std::string() : " (included by " + m_includedBy.str() + ")";
  return m_source->name.str() + ":" + place + " " + m_fault.str() + by;
}

void SoInput::postError() {
  if (!m_failed || m_posted) return;
  m_posted = true;
  SoReadError::post("%s", getErrorText().c_str());
}
