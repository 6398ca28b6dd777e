#include "kestrava/io/SoByteSource.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <cerrno>
#include <cstring>

namespace {

// Read in stretches rather than mapped: a file that another program cuts short while it is read is then the
// end of the data and not a signal.
class FileBytes : public SoByteSource {
 public:
  FileBytes(int file, std::size_t size) : m_file(file), m_size(size) {}
  ~FileBytes() override { close(m_file); }

  std::size_t read(char* to, std::size_t space) override {
    for (;;) {
      ssize_t const count = ::read(m_file, to, space);
      if (count >= 0) {
        m_done += static_cast<std::size_t>(count);
        return static_cast<std::size_t>(count);
      }
      if (errno == EINTR) continue;
      m_fault = SbString("can not be read: ") + std::strerror(errno);
      return 0;
    }
  }
  std::uint64_t getMostLeft() const override { return m_done >= m_size ? 0 : m_size - m_done; }
  double getProgress() const override {
    return m_done >= m_size ? 1.0 : static_cast<double>(m_done) / static_cast<double>(m_size);
  }

 private:
  int m_file;
  std::size_t m_size, m_done = 0;
};

class TextBytes : public SoByteSource {
 public:
  explicit TextBytes(std::shared_ptr<std::string const> text) : m_text(std::move(text)) {}

  std::size_t read(char* to, std::size_t space) override {
    std::size_t const count = m_text->copy(to, space, m_done);
    m_done += count;
    return count;
  }
  std::uint64_t getMostLeft() const override { return m_text->size() - m_done; }
  double getProgress() const override {
    return m_text->empty() ? 1.0 : static_cast<double>(m_done) / static_cast<double>(m_text->size());
  }

 private:
  std::shared_ptr<std::string const> m_text;
  std::size_t m_done = 0;
};

/// A gzip stream, or several one after the other.
class PackedBytes : public SoByteSource {
 public:
  PackedBytes(std::unique_ptr<SoByteSource> packed, std::string alreadyRead)
      : m_packed(std::move(packed)), m_input(std::move(alreadyRead)) {
    constexpr int GZIP_ONLY = 16;
    if (inflateInit2(&m_stream, MAX_WBITS + GZIP_ONLY) != Z_OK) m_fault = "can not be unpacked: out of memory";
    m_stream.next_in = reinterpret_cast<Bytef*>(m_input.data());
    m_stream.avail_in = static_cast<uInt>(m_input.size());
  }
  ~PackedBytes() override { inflateEnd(&m_stream); }

  std::size_t read(char* to, std::size_t space) override {
    m_stream.next_out = reinterpret_cast<Bytef*>(to);
    m_stream.avail_out = static_cast<uInt>(std::min<std::size_t>(space, 1u << 30));
    uInt const wanted = m_stream.avail_out;
    while (m_stream.avail_out == wanted && m_fault.empty()) {
      if (m_stream.avail_in == 0 && !fetch()) {
        if (!m_streamEnded) m_fault = "the compressed data is cut short";
        break;
      }
      if (m_streamEnded) {
        inflateReset(&m_stream);
        m_streamEnded = false;
      }
      int const result = inflate(&m_stream, Z_NO_FLUSH);
      if (result == Z_STREAM_END) {
        m_streamEnded = true;
      } else if (result != Z_OK && result != Z_BUF_ERROR) {
        m_fault = SbString("the compressed data is damaged") +
                  (m_stream.msg ? std::string(" (") + m_stream.msg + ")" : std::string());
      }
    }
    return wanted - m_stream.avail_out;
  }
  double getProgress() const override { return m_packed->getProgress(); }

 private:
  bool fetch() {
    m_input.resize(1 << 16);
    std::size_t const count = m_packed->read(m_input.data(), m_input.size());
    m_fault = m_packed->getFault();
    m_stream.next_in = reinterpret_cast<Bytef*>(m_input.data());
    m_stream.avail_in = static_cast<uInt>(count);
    return count > 0;
  }

  std::unique_ptr<SoByteSource> m_packed;
  std::string m_input;
  z_stream m_stream{};
  bool m_streamEnded = false;
};

}  // namespace

std::unique_ptr<SoByteSource> SoByteSource::openFile(SbString const& name, SbString& fault) {
  // Without waiting: opening a pipe that nobody writes to must not hang.
  int const file = open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  struct stat status {};
  if (file < 0 || fstat(file, &status) != 0) {
    fault = SbString("can not be opened: ") + std::strerror(errno);
  } else if (S_ISDIR(status.st_mode)) {
    fault = SbString("can not be read: ") + std::strerror(EISDIR);
  } else if (!S_ISREG(status.st_mode)) {
    fault = "can not be read: it is not a regular file";
  } else {
    return std::make_unique<FileBytes>(file, static_cast<std::size_t>(status.st_size));
  }
  if (file >= 0) close(file);
  return nullptr;
}

std::unique_ptr<SoByteSource> SoByteSource::fromText(std::shared_ptr<std::string const> text) {
  return std::make_unique<TextBytes>(std::move(text));
}

std::unique_ptr<SoByteSource> SoByteSource::unpack(std::unique_ptr<SoByteSource> packed, std::string alreadyRead) {
  return std::make_unique<PackedBytes>(std::move(packed), std::move(alreadyRead));
}

bool SoByteSource::isPacked(char const* bytes, std::size_t count) {
  return count >= 2 && bytes[0] == '\x1f' && bytes[1] == '\x8b';
}
