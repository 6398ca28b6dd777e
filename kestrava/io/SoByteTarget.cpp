#include "kestrava/io/SoByteTarget.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

namespace {

SbString systemText() { return std::strerror(errno); }

/// Writes to a file beside the wanted one, which it replaces in the end; `temporary` is empty for what is
/// written directly.
class FileTarget : public SoByteTarget {
 public:
  FileTarget(int file, std::string name, std::string temporary)
      : m_file(file), m_name(std::move(name)), m_temporary(std::move(temporary)) {}
  ~FileTarget() override {
    if (m_file >= 0) close(m_file);
    if (!m_temporary.empty()) unlink(m_temporary.c_str());
  }

  SbString write(std::string_view bytes) override {
    while (!bytes.empty()) {
      ssize_t const count = ::write(m_file, bytes.data(), bytes.size());
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) return SbString("can not be written: ") + systemText().str();
      bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return SbString();
  }

  SbString finish() override {
    if (close(std::exchange(m_file, -1)) != 0) return SbString("can not be written: ") + systemText().str();
    if (m_temporary.empty()) return SbString();
    if (rename(m_temporary.c_str(), m_name.c_str()) != 0) {
      return SbString("can not be replaced: ") + systemText().str();
    }
    m_temporary.clear();
    return SbString();
  }

 private:
  int m_file;
  std::string m_name, m_temporary;
};

class PackingTarget : public SoByteTarget {
 public:
  explicit PackingTarget(std::unique_ptr<SoByteTarget> to) : m_to(std::move(to)) {
    constexpr int GZIP = 16, MEMORY_LEVEL = 8;
    m_ready = deflateInit2(&m_stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, MAX_WBITS + GZIP, MEMORY_LEVEL,
                           Z_DEFAULT_STRATEGY) == Z_OK;
  }
  ~PackingTarget() override { deflateEnd(&m_stream); }

  SbString write(std::string_view bytes) override { return deflateAll(bytes, Z_NO_FLUSH); }
  SbString finish() override {
    SbString const fault = deflateAll({}, Z_FINISH);
    return fault.empty() ? m_to->finish() : fault;
  }

 private:
  SbString deflateAll(std::string_view bytes, int mode) {
    if (!m_ready) return "can not be compressed: out of memory";
    m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    m_stream.avail_in = static_cast<uInt>(bytes.size());
    char packed[1 << 14];
    do {
      m_stream.next_out = reinterpret_cast<Bytef*>(packed);
      m_stream.avail_out = sizeof packed;
      if (deflate(&m_stream, mode) == Z_STREAM_ERROR) return "can not be compressed";
      SbString const fault = m_to->write({packed, sizeof packed - m_stream.avail_out});
      if (!fault.empty()) return fault;
    } while (m_stream.avail_out == 0);
    return SbString();
  }

  std::unique_ptr<SoByteTarget> m_to;
  z_stream m_stream{};
  bool m_ready;
};

}  // namespace

std::unique_ptr<SoByteTarget> SoByteTarget::openFile(SbString const& name, SbString& fault) {
  auto failed = [&fault] {
    fault = SbString("can not be written: ") + systemText().str();
    return nullptr;
  };
  std::string path = name.str();
  struct stat old {};
  bool const exists = stat(path.c_str(), &old) == 0;
  if (exists) {
    // What stands there is replaced by the right to write it, though only the folder is written to.
    if (access(path.c_str(), W_OK) != 0) return failed();
    if (S_ISDIR(old.st_mode)) {
      errno = EISDIR;
      return failed();
    }
    if (!S_ISREG(old.st_mode)) {
      int const file = open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
      if (file < 0) return failed();
      return std::make_unique<FileTarget>(file, path, std::string());
    }
    // A link stays a link.
    if (char* real = realpath(path.c_str(), nullptr)) {
      path = real;
      std::free(real);
    }
  }
  static std::atomic<unsigned> lastNumber{0};
  for (int attempt = 0; attempt < 100; ++attempt) {
    std::string const temporary =
        path + "." + std::to_string(getpid()) + "-" + std::to_string(++lastNumber) + ".tmp";
    int const file = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file >= 0) {
      // Rights that can not be kept are no reason not to save.
      if (exists && fchmod(file, old.st_mode & 07777) != 0) errno = 0;
      return std::make_unique<FileTarget>(file, path, temporary);
    }
    if (errno != EEXIST) break;
  }
  return failed();
}

std::unique_ptr<SoByteTarget> SoByteTarget::pack(std::unique_ptr<SoByteTarget> to) {
  return std::make_unique<PackingTarget>(std::move(to));
}
