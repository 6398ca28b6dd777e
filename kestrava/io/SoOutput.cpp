#include "kestrava/io/SoOutput.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "kestrava/io/SoByteTarget.h"

namespace {

constexpr int DEEPEST_INDENT = 20;

/// Text of a small multiple of an eighth, which is what many coordinates are, for a fraction of what others
/// cost. Answers its end, null for other values. No shorter text reads back to these.
template <class T>
char* writeEighths(char* to, T value) {
  constexpr T LIMIT = 8 * 99'999;  // beyond, an exponent may be shorter
  static constexpr std::string_view FRACTIONS[] = {"", ".125", ".25", ".375", ".5", ".625", ".75", ".875"};
  T const scaled = value * 8;
  if (!(scaled >= -LIMIT && scaled <= LIMIT)) return nullptr;
  auto const eighths = static_cast<int>(scaled);
  if (static_cast<T>(eighths) != scaled || (eighths == 0 && std::signbit(value))) return nullptr;
  if (eighths < 0) *to++ = '-';
  int const magnitude = std::abs(eighths);
  to = std::to_chars(to, to + 8, magnitude / 8).ptr;
  std::string_view const fraction = FRACTIONS[magnitude % 8];
  return to + fraction.copy(to, fraction.size());
}

}  // namespace

struct SoOutput::Target {
  SbString name;
  std::unique_ptr<SoByteTarget> bytes;
};

SoOutput::SoOutput() = default;
SoOutput::~SoOutput() = default;

void SoOutput::reset() {
  m_target.reset();
  m_pending.clear();
  m_names.clear();
  m_fault = SbString();
  m_lineStart = 0;
  m_before = 0;
  m_indent = 0;
  m_headerWritten = false;
}

bool SoOutput::openFile(SbString const& name) {
  reset();
  m_target = std::make_unique<Target>();
  m_target->name = name;
  SbString fault;
  m_target->bytes = SoByteTarget::openFile(name, fault);
  if (!m_target->bytes) fail(fault);
  return !hasFailed();
}

void SoOutput::setBuffer() { reset(); }

std::string SoOutput::takeBuffer() {
  std::string text = std::move(m_pending);
  reset();
  return text;
}

void SoOutput::setHeader(SbString const& header) { m_header = header; }
void SoOutput::setBinary(bool on) { m_binary = on; }
void SoOutput::setCompression(bool on) { m_compress = on; }

bool SoOutput::closeFile() {
  if (!m_target) return !hasFailed();
  flush();
  if (!hasFailed()) {
    if (SbString const fault = m_target->bytes->finish(); !fault.empty()) fail(fault);
  }
  SbString const fault = m_fault;
  reset();
  m_fault = fault;
  return !hasFailed();
}

void SoOutput::fail(SbString const& why) {
  if (hasFailed()) return;
  m_fault = m_target ? m_target->name + ": " + why.str() : why;
}

SbString SoOutput::getErrorText() const { return m_fault; }
SbString SoOutput::getDefaultASCIIHeader() { return "#Kestrava V1.0 ascii"; }
SbString SoOutput::getDefaultBinaryHeader() { return "#Kestrava V1.0 binary"; }

void SoOutput::flush() {
  if (!m_target) return;  // memory keeps it all
  if (m_target->bytes && m_compress && m_before == 0) m_target->bytes = SoByteTarget::pack(std::move(m_target->bytes));
  if (!hasFailed()) {
    if (SbString const fault = m_target->bytes->write(m_pending); !fault.empty()) fail(fault);
  }
  m_before += m_pending.size();
  m_lineStart -= static_cast<std::ptrdiff_t>(m_pending.size());
  m_pending.clear();
}

void SoOutput::writeHeader() {
  if (m_headerWritten) return;
  m_headerWritten = true;
  SbString const header = !m_header.empty() ? m_header : m_binary ? getDefaultBinaryHeader() : getDefaultASCIIHeader();
  std::string_view line = header.str();
  while (line.ends_with('\n') || line.ends_with('\r')) line.remove_suffix(1);
  m_pending += line;
  m_pending += '\n';
  m_lineStart = static_cast<std::ptrdiff_t>(m_pending.size());
}

template <class T>
void SoOutput::writeNumber(T value) {
  if (m_binary) {
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    put({bytes, sizeof value});
    return;
  }
  char text[32];
  if constexpr (std::is_floating_point_v<T>) {
    if (std::isnan(value)) return put("nan");
    if (char const* const end = writeEighths(text, value)) return put({text, end});
  }
  put({text, std::to_chars(text, text + sizeof text, value).ptr});
}

template void SoOutput::writeNumber(float);
template void SoOutput::writeNumber(double);
template void SoOutput::writeNumber(std::int32_t);
template void SoOutput::writeNumber(std::uint32_t);
template void SoOutput::writeNumber(std::int16_t);
template void SoOutput::writeNumber(std::uint16_t);

void SoOutput::write(SbString const& value) {
  std::string_view const text = value.str();
  if (m_binary) {
    writeCount(static_cast<std::uint32_t>(text.size()));
    put(text);
    return;
  }
  put("\"");
  for (std::size_t from = 0; from < text.size();) {
    std::size_t const special = std::min(text.find_first_of("\"\\", from), text.size());
    put(text.substr(from, special - from));
    if (special < text.size()) put(text[special] == '"' ? "\\\"" : "\\\\");
    from = special + 1;
  }
  put("\"");
}

void SoOutput::write(SbName const& value) { write(value.toString()); }

void SoOutput::newLine() {
  m_pending += '\n';
  m_lineStart = static_cast<std::ptrdiff_t>(m_pending.size());
  m_pending.append(static_cast<std::size_t>(2 * std::min(m_indent, DEEPEST_INDENT)), ' ');
  if (m_pending.size() >= FULL) flush();
}

void SoOutput::writeBytes(void const* from, std::size_t bytes) { put({static_cast<char const*>(from), bytes}); }

void SoOutput::writeName(SbName const& name) {
  auto const [known, added] = m_names.try_emplace(name, static_cast<std::uint32_t>(m_names.size()));
  write(known->second);
  if (!added) return;
  write(name);
  align(4);
}

void SoOutput::align(std::size_t alignment) {
  std::uint64_t const position = m_before + m_pending.size();
  m_pending.append(static_cast<std::size_t>((alignment - position % alignment) % alignment), '\0');
}
