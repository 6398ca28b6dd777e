#include "modules/foreign_formats/ModelFiles.h"

#include <strings.h>
#include <sys/stat.h>

#include <algorithm>
#include <assimp/IOStream.hpp>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/io/SoByteSource.h"
#include "kestrava/io/SoSearchPath.h"

namespace {

bool isFile(std::string const& path) {
  struct stat status {};
  // Nothing else: opening a pipe would wait for who writes to it.
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::string decodePercent(std::string const& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned value = 0;
    if (text[i] == '%' && i + 2 < text.size() && std::isxdigit(static_cast<unsigned char>(text[i + 1])) &&
        std::isxdigit(static_cast<unsigned char>(text[i + 2])) &&
        std::sscanf(&text[i + 1], "%2x", &value) == 1) {
      result += static_cast<char>(value);
      i += 2;
    } else {
      result += text[i];
    }
  }
  return result;
}

/// The file of a folder whose name differs in the case of letters only.
std::string findInOtherCase(std::string const& folder, std::string const& name) {
  std::error_code failed;
  for (auto const& entry : std::filesystem::directory_iterator(folder, failed)) {
    std::string const found = entry.path().filename().string();
    if (strcasecmp(found.c_str(), name.c_str()) == 0 && isFile(entry.path().string())) return folder + found;
  }
  return {};
}

/// Ends the reading of a file whose reader goes on asking behind the end, as for a count that is damaged.
class EndGuard {
 public:
  std::size_t check(std::size_t wanted, std::size_t got) {
    constexpr int PATIENCE = 1000;
    m_vain = wanted > 0 && got == 0 ? m_vain + 1 : 0;
    if (m_vain > PATIENCE) throw std::runtime_error("the file ends too early");
    return got;
  }

 private:
  int m_vain = 0;
};

class FileStream : public Assimp::IOStream {
 public:
  FileStream(std::FILE* file, std::size_t size) : m_file(file), m_size(size) {}
  ~FileStream() override { std::fclose(m_file); }

  std::size_t Read(void* to, std::size_t size, std::size_t count) override {
    return m_guard.check(size * count, std::fread(to, size, count, m_file));
  }
  std::size_t Write(void const*, std::size_t, std::size_t) override { return 0; }
  aiReturn Seek(std::size_t offset, aiOrigin origin) override {
    int const whence = origin == aiOrigin_SET ? SEEK_SET : origin == aiOrigin_CUR ? SEEK_CUR : SEEK_END;
    return std::fseek(m_file, static_cast<long>(offset), whence) == 0 ? aiReturn_SUCCESS : aiReturn_FAILURE;
  }
  std::size_t Tell() const override { return static_cast<std::size_t>(std::ftell(m_file)); }
  std::size_t FileSize() const override { return m_size; }
  void Flush() override {}

 private:
  std::FILE* m_file;
  std::size_t m_size;
  EndGuard m_guard;
};

class TextStream : public Assimp::IOStream {
 public:
  explicit TextStream(std::shared_ptr<std::string const> text) : m_text(std::move(text)) {}

  std::size_t Read(void* to, std::size_t size, std::size_t count) override {
    if (size == 0) return 0;
    std::size_t const wanted = size * count;
    count = std::min(count, (m_text->size() - m_place) / size);
    std::memcpy(to, m_text->data() + m_place, size * count);
    m_place += size * count;
    return m_guard.check(wanted, count);
  }
  std::size_t Write(void const*, std::size_t, std::size_t) override { return 0; }
  aiReturn Seek(std::size_t offset, aiOrigin origin) override {
    std::size_t const from = origin == aiOrigin_SET ? 0 : origin == aiOrigin_CUR ? m_place : m_text->size();
    if (from + offset > m_text->size()) return aiReturn_FAILURE;
    m_place = from + offset;
    return aiReturn_SUCCESS;
  }
  std::size_t Tell() const override { return m_place; }
  std::size_t FileSize() const override { return m_text->size(); }
  void Flush() override {}

 private:
  std::shared_ptr<std::string const> m_text;
  std::size_t m_place = 0;
  EndGuard m_guard;
};

} // namespace

SbString findModelFile(SbString const& model, std::string const& name) {
  std::string const folder = SbFileHelper::getDirName(model).str();
  std::string given = SbFileHelper::toUnixPath(SbString(name)).str();
  if (given.starts_with("file://")) given.erase(0, 7);
  std::string const decoded = decodePercent(given);
  // What Assimp makes of a name that goes up begins as if it were absolute.
  std::string const upwards = decoded.starts_with("/..") ? decoded.substr(1) : decoded;
  for (std::string const& candidate : {given, decoded, upwards}) {
    SbString const found = SoSearchPath::findBeside(model, SbString(candidate));
    if (!found.empty() && isFile(found.str())) return found;
  }
  // Paths of the machine where the model was made.
  std::string const bare = SbFileHelper::getBaseName(SbString(decoded)).str();
  if (bare.empty()) return SbString();
  SbString const found = SoSearchPath::findBeside(model, SbString(bare));
  if (!found.empty() && isFile(found.str())) return found;
  std::string const sub =
      SbFileHelper::isAbsolute(SbString(upwards)) ? "" : SbFileHelper::getDirName(SbString(upwards)).str();
  std::string inOtherCase = findInOtherCase(folder + sub, bare);
  if (inOtherCase.empty()) inOtherCase = findInOtherCase(folder, bare);
  return SbString(inOtherCase);
}

bool ModelFiles::Exists(char const* name) const {
  return isModel(name) || !findModelFile(m_model.name, name).empty();
}

std::shared_ptr<std::string const> ModelFiles::loadModel() {
  auto const known = SoSearchPath::getInMemoryText(m_model.name);
  if (known && !m_model.isPacked) return known;
  auto bytes = known ? SoByteSource::fromText(known) : SoByteSource::openFile(m_model.name, m_fault);
  if (bytes) bytes = SoByteSource::unpack(std::move(bytes), {});
  auto text = std::make_shared<std::string>();
  constexpr std::size_t LARGEST = std::size_t(1) << 31;
  char part[1 << 16];
  while (std::size_t const count = bytes ? bytes->read(part, sizeof part) : 0) {
    if (text->size() + count > LARGEST) {
      m_fault = "the file is too large when it is unpacked";
      return nullptr;
    }
    text->append(part, count);
  }
  if (bytes) m_fault = bytes->getFault();
  return m_fault.empty() ? text : nullptr;
}

Assimp::IOStream* ModelFiles::Open(char const* name, char const*) {
  bool const isOwn = isModel(name);
  if (isOwn && (m_model.isPacked || SoSearchPath::getInMemoryText(m_model.name))) {
    if (!m_text && m_fault.empty()) m_text = loadModel();
    return m_text ? new TextStream(m_text) : nullptr;
  }
  std::string const path = isOwn ? m_model.name.str() : findModelFile(m_model.name, name).str();
  std::FILE* const file = path.empty() || !isFile(path) ? nullptr : std::fopen(path.c_str(), "rbe");
  if (!file) {
    if (!isOwn) m_missing.insert(name);
    return nullptr;
  }
  std::error_code ignored;
  return new FileStream(file, static_cast<std::size_t>(std::filesystem::file_size(path, ignored)));
}

void ModelFiles::Close(Assimp::IOStream* stream) { delete stream; }
