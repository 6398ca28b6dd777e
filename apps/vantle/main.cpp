// The inspector as a program of its own: opens a scene file, or writes a picture of its window.

#include <QAbstractEventDispatcher>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "kestrava/base/SoLibVantle.h"
#include "kestrava/base/SoPreferences.h"

namespace {

constexpr char USAGE[] =
    "Usage: vantle [OPTION]... [SCENE]\n"
    "Shows the scene graph of SCENE (.kv, .kvz, .kv.gz): its tree, its fields and its picture.\n"
    "\n"
    "  --snapshot FILE.png   write a picture of the window to FILE.png and end; needs no display\n"
    "  --size WxH            size of the window for the picture, in pixels (default 1280x900)\n"
    "  --help                print this text\n"
    "  --version             print the version\n"
    "\n"
    "Status: 0 when all went well, 1 when a scene could not be read or a picture not be written, 2 when the\n"
    "arguments make no sense.\n";

struct Arguments {
  std::string snapshot, size;
  std::vector<std::string> scenes;
};

[[noreturn]] void refuse(std::string const& what) {
  std::fprintf(stderr, "vantle: %s\nTry 'vantle --help'.\n", what.c_str());
  std::exit(2);
}

bool isSize(std::string const& text) {
  int width = 0, height = 0;
  char rest = 0;
  bool const whole = std::sscanf(text.c_str(), "%5dx%5d%c", &width, &height, &rest) == 2;
  return whole && width >= 100 && width <= 16384 && height >= 100 && height <= 16384;
}

Arguments parse(int argc, char** argv) {
  Arguments result;
  bool optionsEnd = false;
  for (int i = 1; i < argc; ++i) {
    std::string const argument = argv[i];
    auto const value = [&] {
      if (i + 1 == argc) refuse(argument + " needs a value");
      return std::string(argv[++i]);
    };
    if (optionsEnd || argument.empty() || argument[0] != '-') {
      result.scenes.push_back(argument);
    } else if (argument == "--") {
      optionsEnd = true;
    } else if (argument == "--snapshot") {
      result.snapshot = value();
      if (!std::string_view(result.snapshot).ends_with(".png")) refuse("--snapshot writes .png files only");
    } else if (argument == "--size") {
      result.size = value();
      if (!isSize(result.size)) refuse("--size takes WIDTHxHEIGHT, 100 to 16384 each");
    } else if (argument == "--help") {
      std::fputs(USAGE, stdout);
      std::exit(0);
    } else if (argument == "--version") {
      std::printf("vantle %s\n", VANTLE_VERSION);
      std::exit(0);
    } else {
      refuse("unknown option " + argument);
    }
  }
  if (!result.size.empty() && result.snapshot.empty()) refuse("--size goes with --snapshot");
  return result;
}

void prepareSnapshot(Arguments const& arguments) {
  SoPreferences::setValue("KSV_VANTLE_SNAPSHOT", arguments.snapshot);
  SoPreferences::setValue("KSV_VANTLE_SNAPSHOT_SIZE", arguments.size.empty() ? "1280x900" : arguments.size);
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
}

void run(SoLibVantle* inspector) {
  while (inspector->processEvents()) {
    // Sleeps until Qt has something to do.
    if (auto* const events = QAbstractEventDispatcher::instance()) {
      events->processEvents(QEventLoop::WaitForMoreEvents);
    }
  }
}

} // namespace

int main(int argc, char** argv) {
  Arguments arguments = parse(argc, argv);
  bool const hasDisplay = std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY");
  if (!arguments.snapshot.empty()) {
    prepareSnapshot(arguments);
  } else if (!hasDisplay && !std::getenv("QT_QPA_PLATFORM")) {
    std::fprintf(stderr, "vantle: there is no display; --snapshot works without one.\n");
    return 1;
  }

  std::vector<char*> passed{argv[0]};
  for (std::string& scene : arguments.scenes) passed.push_back(scene.data());
  int const count = static_cast<int>(passed.size());
  passed.push_back(nullptr);

  SoLibVantle* const inspector = SoLibVantle::instance();
  if (!SoLibVantle::isAvailable()) {
    std::fprintf(stderr, "vantle: %s\n", SoLibVantle::getLastError().c_str());
    return 1;
  }
  inspector->startStandalone(count, passed.data());
  run(inspector);
  return arguments.snapshot.empty() ? 0 : SoPreferences::getInt("KSV_VANTLE_SNAPSHOT_STATUS", 1);
}
