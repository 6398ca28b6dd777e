#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "kestrava/actions/SoWriteAction.h"
#include "kestrava/base/SoError.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/nodes/SoNode.h"

namespace io_test {

inline char const* const HEADER = "#Kestrava V1.0 ascii\n";

/// Collects the read errors posted while it lives.
class ReadErrors {
 public:
  ReadErrors() : m_oldCallback(SoReadError::getHandlerCallback()), m_oldData(SoReadError::getHandlerData()) {
    SoReadError::setHandlerCallback(
        [](SoError const* error, void* data) {
          static_cast<ReadErrors*>(data)->texts.push_back(error->getDebugString().str());
        },
        this);
  }
  ~ReadErrors() { SoReadError::setHandlerCallback(m_oldCallback, m_oldData); }
  std::vector<std::string> texts;

 private:
  SoErrorCB* m_oldCallback;
  void* m_oldData;
};

/// A folder of its own, removed with all it holds.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    char name[] = "/tmp/kestrava-io-XXXXXX";
    path = mkdtemp(name);
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  std::string operator/(std::string const& name) const { return path + "/" + name; }
  std::string write(std::string const& name, std::string const& bytes) const {
    std::ofstream(*this / name, std::ios::binary) << bytes;
    return *this / name;
  }
  std::string path;
};

inline std::string fileText(std::string const& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

inline SoRef<SoNode> readFile(std::string const& path) {
  SoInput in;
  if (!in.openFile(path.c_str())) return {};
  return SoRef<SoNode>(SoDB::readAll(&in));
}

/// Reads nodes, without a header, or binary data with one.
inline SoRef<SoNode> readText(std::string_view text) {
  SoInput in;
  in.setBuffer(text);
  return SoRef<SoNode>(SoDB::readAll(&in));
}

/// The text of a graph with its header.
inline std::string writeText(SoNode* root) {
  SoOutput out;
  out.setBuffer();
  SoWriteAction(&out).apply(root);
  return out.takeBuffer();
}

/// A graph in the binary form with its header; readText() takes it.
inline std::string writeBytes(SoNode* root) {
  SoOutput out;
  out.setBuffer();
  out.setBinary(true);
  SoWriteAction(&out).apply(root);
  return out.takeBuffer();
}

/// The folder with the large scenes; empty where it is missing.
inline std::string scenesFolder() {
  char const* const given = std::getenv("VANTLE_SCENES");
  std::string const folder = given ? given : VANTLE_SOURCE_DIR "/../shared/scenes";
  return std::filesystem::is_directory(folder) ? folder : std::string();
}

}  // namespace io_test
