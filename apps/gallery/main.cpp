// A gallery of what the toolkit can do, a page a subject; or pictures of all its pages.

#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "apps/gallery/GalleryFiles.h"
#include "apps/gallery/GalleryPage.h"
#include "apps/gallery/GalleryShots.h"
#include "apps/gallery/GalleryWindow.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"
#include "kestrava_qt/SoQt.h"

namespace {

constexpr char USAGE[] =
    "Usage: gallery [PAGE]\n"
    "       gallery --list\n"
    "       gallery --shots FOLDER [--size WxH] [PAGE]...\n"
    "Shows what the toolkit can do, a page a subject.\n"
    "\n"
    "  PAGE            the page to open, or to write; all of them when none is given\n"
    "  --list          print the names of the pages\n"
    "  --shots FOLDER  write a picture of each page to FOLDER/PAGE.png and end; needs no display\n"
    "  --size WxH      size of the pictures in pixels (default 1000x700)\n"
    "  --help          print this text\n"
    "\n"
    "Status: 0 when all went well, 1 when a page or a picture could not be made, 2 when the arguments make "
    "no\n"
    "sense.\n";

struct Arguments {
  bool list = false;
  std::string shots;
  int width = 0, height = 0;
  std::vector<GalleryPage const*> pages;
};

[[noreturn]] void refuse(std::string const& what) {
  std::fprintf(stderr,
               "gallery: %s\nUsage: gallery [PAGE] | --list | --shots FOLDER [--size WxH] [PAGE]...\n",
               what.c_str());
  std::exit(2);
}

bool readSize(std::string const& text, int& width, int& height) {
  char rest = 0;
  bool const whole = std::sscanf(text.c_str(), "%5dx%5d%c", &width, &height, &rest) == 2;
  return whole && width >= 16 && width <= 8192 && height >= 16 && height <= 8192;
}

Arguments parse(int argc, char** argv) {
  Arguments result;
  for (int i = 1; i < argc; ++i) {
    std::string const argument = argv[i];
    auto const value = [&] {
      if (i + 1 == argc || !argv[i + 1][0]) refuse(argument + " needs a value");
      return std::string(argv[++i]);
    };
    if (argument == "--help") {
      std::fputs(USAGE, stdout);
      std::exit(0);
    } else if (argument == "--list") {
      result.list = true;
    } else if (argument == "--shots") {
      result.shots = value();
    } else if (argument == "--size") {
      if (!readSize(value(), result.width, result.height))
        refuse("--size takes WIDTHxHEIGHT, 16 to 8192 each");
    } else if (argument.starts_with("-")) {
      refuse("unknown option " + argument);
    } else if (GalleryPage const* const page = GalleryPage::find(argument)) {
      result.pages.push_back(page);
    } else {
      refuse("there is no page '" + argument + "'; gallery --list names them");
    }
  }
  if (result.shots.empty()) {
    if (result.width) refuse("--size goes with --shots");
    if (result.pages.size() > 1) refuse("one page at a time can be opened");
  }
  if (result.list && (!result.shots.empty() || !result.pages.empty())) refuse("--list stands alone");
  return result;
}

void printList() {
  for (GalleryPage const& page : GalleryPage::all()) {
    std::printf("%-20s %s: %s\n", page.name, page.group, page.title);
  }
}

int writeShots(Arguments const& arguments) {
  std::vector<GalleryPage const*> pages = arguments.pages;
  if (pages.empty()) {
    for (GalleryPage const& page : GalleryPage::all()) pages.push_back(&page);
  }
  bool const given = arguments.width > 0;
  return GalleryShots::write(arguments.shots, given ? arguments.width : 1000, given ? arguments.height : 700,
                             pages)
             ? 0
             : 1;
}

int showWindow(int argc, char** argv, GalleryPage const& page) {
  QApplication application(argc, argv);
  int status = 0;
  {
    GalleryWindow window;
    window.resize(1100, 760);
    window.showPage(page);
    window.show();
    status = QApplication::exec();
  }
  SoQt::finish();
  return status;
}

} // namespace

int main(int argc, char** argv) {
  Arguments const arguments = parse(argc, argv);
  SoDB::init();
  if (GalleryFiles::sceneFolder().empty()) {
    std::fprintf(stderr, "gallery: the folder with the scenes, scenes/gallery, is not there\n");
    return 1;
  }
  // Textures and images are named in the scenes without a folder.
  SoInput::addDirectoryLast(GalleryFiles::sceneFolder());
  if (arguments.list) {
    printList();
    return 0;
  }
  if (!arguments.shots.empty()) return writeShots(arguments);
  if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY") && !std::getenv("QT_QPA_PLATFORM")) {
    std::fprintf(stderr, "gallery: there is no display; --shots works without one\n");
    return 1;
  }
  return showWindow(argc, argv,
                    arguments.pages.empty() ? GalleryPage::all().front() : *arguments.pages.front());
}
