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
#include "bench/tree100k.h"
#include "kestrava/actions/SoWriteAction.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"

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
  SoRef<SoNode> root(bench::makeTree100k(ownBoxes).get());
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
