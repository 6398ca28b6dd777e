// Reading and writing scene files.

#include <unistd.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "bench/bench.h"
#include "kestrava/actions/SoWriteAction.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTranslation.h"
#include "kestrava/nodes/SoVertexProperty.h"

namespace {

/// One mesh of side x side vertices with normals, as a modelling program writes it.
std::string meshText(int side) {
  std::string text = "#Kestrava V1.0 ascii\n\nSeparator {\n  Coordinate3 { point [\n";
  std::mt19937 random(1);
  std::uniform_real_distribution<float> height(-100, 100);
  auto put = [&text](float value) {
    char digits[32];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
  };
  for (int i = 0; i < side * side; ++i) {
    put(static_cast<float>(i % side) * 0.125f);
    text += ' ';
    put(height(random));
    text += ' ';
    put(static_cast<float>(i / side) * 0.125f);
    text += ",\n";
  }
  text += "] }\n  Normal { vector [\n";
  for (int i = 0; i < side * side; ++i) {
    float const a = height(random), b = height(random);
    put(std::sin(a));
    text += ' ';
    put(std::cos(a) * std::cos(b));
    text += ' ';
    put(std::sin(b));
    text += ",\n";
  }
  text += "] }\n  IndexedTriangleStripSet { coordIndex [\n";
  for (int y = 0; y + 1 < side; ++y) {
    for (int x = 0; x < side; ++x) {
      text += std::to_string((y + 1) * side + x) + ", " + std::to_string(y * side + x) + ", ";
    }
    text += "-1,\n";
  }
  return text + "] }\n}\n";
}

/// The numbers of a text, converted and added up: the least that reading it takes.
double addNumbers(std::string const& text) {
  double sum = 0;
  char const* const end = text.data() + text.size();
  for (char const* p = text.data() + text.find("point"); p < end;) {
    float value = 0;
    auto const [next, error] = std::from_chars(p, end, value);
    sum += error == std::errc() ? value : 0;
    p = error == std::errc() ? next : p + 1;
  }
  return sum;
}

struct TemporaryFile {
  explicit TemporaryFile(char const* name) : path(std::string("/tmp/bench-") + std::to_string(getpid()) + name) {}
  ~TemporaryFile() { std::remove(path.c_str()); }
  std::string path;
};

void writeWhole(std::string const& path, std::string const& text) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  std::fwrite(text.data(), 1, text.size(), file);
  std::fclose(file);
}

SoRef<SoNode> readFile(std::string const& path) {
  SoInput in;
  in.openFile(path.c_str());
  return SoRef<SoNode>(SoDB::readAll(&in));
}

/// A box of 24 vertices with normals.
SoNode* makeBox() {
  auto* const corners = new SoVertexProperty;
  std::vector<SbVec3f> vertices, normals;
  std::vector<std::int32_t> indices;
  for (int axis = 0; axis < 3; ++axis) {
    for (float side : {-0.5f, 0.5f}) {
      auto const first = static_cast<std::int32_t>(vertices.size());
      for (int corner = 0; corner < 4; ++corner) {
        SbVec3f vertex, normal(0, 0, 0);
        vertex[axis] = side;
        vertex[(axis + 1) % 3] = corner == 1 || corner == 2 ? 0.5f : -0.5f;
        vertex[(axis + 2) % 3] = corner > 1 ? 0.5f : -0.5f;
        normal[axis] = 2 * side;
        vertices.push_back(vertex);
        normals.push_back(normal);
      }
      for (int index : {0, 1, 2, -1, 0, 2, 3, -1}) indices.push_back(index < 0 ? -1 : first + index);
    }
  }
  corners->vertex.setValues(vertices);
  corners->normal.setValues(normals);
  auto* const box = new SoIndexedFaceSet;
  box->vertexProperty.setValue(corners);
  box->coordIndex.setValues(indices);
  return box;
}

/// 11,111 groups, ten a group, and 44,445 leaves spread over the last level, all of them named; each leaf has a
/// box of its own, or all have the same.
SoRef<SoNode> makeTree(bool ownBoxes) {
  SoRef<SoSeparator> const root(new SoSeparator);
  std::vector<SoSeparator*> level{root};
  int number = 0;
  for (int depth = 0; depth < 4; ++depth) {
    std::vector<SoSeparator*> next;
    for (SoSeparator* group : level) {
      for (int i = 0; i < 10; ++i) {
        next.push_back(new SoSeparator);
        next.back()->setName(SbString::format("group_%d", number++));
        group->addChild(next.back());
      }
    }
    level = std::move(next);
  }
  constexpr int LEAVES = 44'445;
  SoRef<SoNode> const shared(makeBox());
  for (int i = 0; i < LEAVES; ++i) {
    auto* const leaf = new SoSeparator;
    leaf->setName(SbString::format("leaf_%d", i));
    auto* const place = new SoTranslation;
    place->translation.setValue(SbVec3f(static_cast<float>(i % 211), static_cast<float>(i / 211 % 211), 0));
    leaf->addChild(place);
    leaf->addChild(ownBoxes ? makeBox() : shared.get());
    level[static_cast<std::size_t>(i) * level.size() / LEAVES]->addChild(leaf);
  }
  return SoRef<SoNode>(root.get());
}

void writeScene(SoNode* root, std::string const& path, bool binary) {
  SoWriteAction action;
  action.getOutput()->setBinary(binary);
  action.getOutput()->openFile(SbString(path));
  action.apply(root);
  action.getOutput()->closeFile();
}

/// Reading and writing of a tree in one form; the floor of each is a copy of as many bytes in memory.
void measureTree(bool ownBoxes, bool binary) {
  std::string const name = std::string(ownBoxes ? "tree100k" : "tree100k-shared") + (binary ? "_binary" : "_text");
  TemporaryFile const file(("-" + name + ".kv").c_str());
  SoRef<SoNode> root = makeTree(ownBoxes);
  double const write = bench::fastest([&] { writeScene(root, file.path, binary); });
  root.reset();
  std::vector<char> from(std::filesystem::file_size(file.path), 'x'), to(from.size());
  double const floor = bench::fastest([&] {
    std::memcpy(to.data(), from.data(), from.size());
    bench::keep(to.data());
  });
  // Releasing the scene is no part of reading it.
  double read = 0;
  for (int run = 0; run < 5; ++run) {
    SoRef<SoNode> scene;
    double const seconds = bench::fastest([&] { scene = readFile(file.path); }, 1);
    read = run == 0 ? seconds : std::min(read, seconds);
  }
  bench::report({"write_" + name, 1000 * write, "ms", 1000 * floor});
  bench::report({"read_" + name, 1000 * read, "ms", 1000 * floor});
}

}  // namespace

// Milliseconds for the tree of 100,001 nodes, with boxes of their own and with one for all.
BENCH(tree_binary) {
  for (bool ownBoxes : {true, false}) measureTree(ownBoxes, true);
}
BENCH(tree_text) {
  for (bool ownBoxes : {true, false}) measureTree(ownBoxes, false);
}

// Seconds for a text file of one mesh of 262,144 vertices with normals; floor: std::from_chars over its numbers.
BENCH(read_ascii) {
  TemporaryFile const file("-mesh.kv");
  std::string const text = meshText(512);
  writeWhole(file.path, text);
  double const floor = bench::fastest([&] { bench::keep(addNumbers(text)); });
  double const seconds = bench::fastest([&] { bench::keep(readFile(file.path).get()); });
  bench::report({"", 1000 * seconds, "ms", 1000 * floor});
  double const megabytes = static_cast<double>(text.size()) / 1e6;
  bench::report({"read_ascii_rate", megabytes / seconds, "MB/s", megabytes / floor});
}

// The same mesh in binary form; floor: a copy of as many bytes in memory.
BENCH(read_binary) {
  TemporaryFile const from("-mesh.kv"), file("-mesh-binary.kv");
  writeWhole(from.path, meshText(512));
  SoRef<SoNode> const root = readFile(from.path);
  double const write = bench::fastest([&] { writeScene(root, file.path, true); });
  std::vector<char> bytes(std::filesystem::file_size(file.path), 'x'), copy(bytes.size());
  double const floor = bench::fastest([&] {
    std::memcpy(copy.data(), bytes.data(), bytes.size());
    bench::keep(copy.data());
  });
  double const read = bench::fastest([&] { bench::keep(readFile(file.path).get()); });
  bench::report({"", 1000 * read, "ms", 1000 * floor});
  bench::report({"write_binary", 1000 * write, "ms", 1000 * floor});
}

// The same mesh written; floor: std::to_chars of as many numbers into memory.
BENCH(write_ascii) {
  TemporaryFile const from("-from.kv"), to("-to.kv");
  writeWhole(from.path, meshText(512));
  SoRef<SoNode> const root = readFile(from.path);
  std::vector<float> numbers(2 * 3 * 512 * 512);
  for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = std::sin(static_cast<float>(i));
  double const floor = bench::fastest([&] {
    char digits[32];
    for (float number : numbers) bench::keep(std::to_chars(digits, digits + sizeof digits, number).ptr);
  });
  double const seconds = bench::fastest([&] {
    SoWriteAction action;
    action.getOutput()->openFile(SbString(to.path));
    action.apply(root.get());
    action.getOutput()->closeFile();
  });
  bench::report({"", 1000 * seconds, "ms", 1000 * floor});
}
