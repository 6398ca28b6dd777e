// kv: looks at scene files, checks them and converts them, without a display.

#include <cmath>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <set>
#include <string>

#include "apps/kv/SceneStatistics.h"
#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SoModuleTool.h"
#include "kestrava/base/SoReadError.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/io/SoOutput.h"
#include "kestrava/io/SoValueIO.h"
#include "kestrava/io/SoWriter.h"
#include "kestrava/nodes/SoGroup.h"

namespace {

constexpr int OK = 0, FAULT = 1, WRONG_USE = 2;

int showUsage(std::FILE* to, int status) {
  std::fputs(
      "kv info [--json] FILE                     what a scene consists of\n"
      "kv check FILE...                          reads the files, tells of faults\n"
      "kv convert IN OUT [--ascii|--binary] [--compress]\n"
      "                                          writes a scene anew, in the form that it had where none is given;\n"
      "                                          compressed too when OUT ends in .kvz or .gz\n",
      to);
  return status;
}

/// A scene as its file shows it.
struct Scene {
  explicit Scene(char const* name) : folder(SbFileHelper::getDirName(name)) {
    // What the scene refers to lies beside it.
    SoInput::addDirectoryFirst(folder);
    SoInput in;
    if (!in.openFile(name, false, false)) return;
    header = in.getHeader().str();
    if (!header.starts_with("#Kestrava")) header = "none, the file is of another format";
    bool hasAddedRoot = false;
    root = SoRef<SoNode>(SoDB::readAll(&in, &hasAddedRoot));
    if (!root) return;
    // The node that reading puts above several others is none of the file's.
    if (hasAddedRoot) {
      SoChildList const* children = root->getChildren();
      top.assign(children->begin(), children->end());
    } else {
      top.push_back(root);
    }
  }

  ~Scene() { SoInput::removeDirectory(folder); }
  Scene(Scene const&) = delete;

  SbString folder;
  SoRef<SoNode> root;  // null after a fault, which was posted to standard error
  std::vector<SoNode*> top;
  std::string header;
};

std::string jsonText(std::string const& text) {
  std::string result = "\"";
  for (char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    if (static_cast<unsigned char>(c) < ' ') {
      result += SbString::format("\\u%04x", c).str();
    } else {
      result += c;
    }
  }
  return result + "\"";
}

std::string cornerText(SbVec3f const& corner, char const* separator) {
  std::string text;
  for (int i = 0; i < 3; ++i) {
    // JSON has no infinity.
    text += (i == 0 ? "" : separator) + (std::isfinite(corner[i]) ? SoValueToText(corner[i]).str() : "null");
  }
  return text;
}

std::string jsonBox(SbBox3f const& box) {
  if (box.isEmpty()) return "null";
  return "{\"min\": [" + cornerText(box.getMin(), ", ") + "], \"max\": [" + cornerText(box.getMax(), ", ") + "]}";
}

int info(char const* file, bool json) {
  Scene const scene(file);
  if (!scene.root) return FAULT;
  SceneStatistics const s(scene.top, scene.root);
  std::pair<char const*, std::uint64_t> const counts[] = {
      {"nodes", s.nodes},         {"places", s.places},
      {"shared", s.shared},       {"depth", s.depth},
      {"triangles", s.triangles}, {"trianglesDrawn", s.trianglesDrawn},
      {"lines", s.lines},         {"points", s.points},
  };
  std::string text;
  if (json) {
    text = "{\n  \"header\": " + jsonText(scene.header);
    for (auto const& [name, count] : counts) {
      text += ",\n  \"" + std::string(name) + "\": " + std::to_string(count);
    }
    text += ",\n  \"boundingBox\": " + jsonBox(s.boundingBox) + ",\n  \"types\": {";
    char const* separator = "";
    for (auto const& [type, count] : s.types) {
      text += separator + jsonText(type) + ": " + std::to_string(count);
      separator = ", ";
    }
    text += "}\n}\n";
  } else {
    char const* const titles[] = {"nodes", "places", "shared", "depth", "triangles", "triangles drawn", "lines", "points"};
    text = SbString::format("%-16s %s\n", "header", scene.header.c_str()).str();
    for (std::size_t i = 0; i < std::size(counts); ++i) {
      text += SbString::format("%-16s %llu\n", titles[i], static_cast<unsigned long long>(counts[i].second)).str();
    }
    text += SbString::format("%-16s ", "bounding box").str();
    text += s.boundingBox.isEmpty() ? "empty\n"
                                    : cornerText(s.boundingBox.getMin(), " ") + " to " +
                                          cornerText(s.boundingBox.getMax(), " ") + "\n";
    text += "types\n";
    for (auto const& [type, count] : s.types) {
      text += SbString::format("  %-30s %llu\n", type.c_str(), static_cast<unsigned long long>(count)).str();
    }
  }
  bool const written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
  return written ? OK : FAULT;
}

/// Faults of files that a file includes leave it readable, but not in order.
int check(int count, char** files) {
  int faults = 0;
  SoReadError::setHandlerCallback(
      [](SoError const* error, void* data) {
        ++*static_cast<int*>(data);
        std::fprintf(stderr, "%s\n", error->getDebugString().c_str());
      },
      &faults);
  for (int i = 0; i < count; ++i) Scene const scene(files[i]);
  SoReadError::setHandlerCallback(nullptr);
  return faults == 0 ? OK : FAULT;
}

enum class Form { AS_IT_WAS, ASCII, BINARY };

int convert(char const* from, char const* to, Form form, bool compress) {
  Scene const scene(from);
  if (!scene.root) return FAULT;
  SoOutput out;
  std::string const extension = SbFileHelper::getExtension(to).lower().str();
  out.setCompression(compress || extension == "kvz" || extension == "gz");
  bool const wasBinary = scene.header == SoOutput::getDefaultBinaryHeader().str();
  out.setBinary(form == Form::BINARY || (form == Form::AS_IT_WAS && wasBinary));
  if (out.openFile(to)) {
    out.writeHeader();
    SoWriter(out).writeFile(scene.top);
    if (out.closeFile()) return OK;
  }
  std::fprintf(stderr, "%s\n", out.getErrorText().c_str());
  return FAULT;
}

}  // namespace

int main(int argc, char** argv) {
  // What is not there is said when a file needs it.
  for (char const* module : {"foreign_formats", "image_formats"}) SoModuleTool::initModule(module);
  std::string const command = argc > 1 ? argv[1] : "";
  std::vector<char*> files;
  std::set<std::string> options;
  for (int i = 2; i < argc; ++i) {
    if (std::strncmp(argv[i], "--", 2) == 0) {
      options.insert(argv[i]);
    } else {
      files.push_back(argv[i]);
    }
  }
  auto const count = files.size();
  auto const take = [&options](char const* option) { return options.erase(option) > 0; };
  if (command == "--help" || command == "help") return showUsage(stdout, OK);
  if (command == "info" && count == 1) {
    bool const json = take("--json");
    if (options.empty()) return info(files[0], json);
  }
  if (command == "check" && count > 0 && options.empty()) return check(static_cast<int>(count), files.data());
  if (command == "convert" && count == 2) {
    bool const ascii = take("--ascii"), binary = take("--binary"), compress = take("--compress");
    Form const form = binary ? Form::BINARY : ascii ? Form::ASCII : Form::AS_IT_WAS;
    if (options.empty() && !(ascii && binary)) return convert(files[0], files[1], form, compress);
  }
  return showUsage(stderr, WRONG_USE);
}
