// A program with a Qt application of its own that shows a scene and can have it inspected. It does not link
// the inspector: the toolkit loads it.

#include <QApplication>
#include <QCommandLineParser>
#include <cstdio>

#include "apps/host_qt/HostWindow.h"

namespace {

[[noreturn]] void refuse(char const* what) {
  std::fprintf(stderr, "host_qt: %s\nTry 'host_qt --help'.\n", what);
  std::exit(2);
}

} // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QCommandLineParser parser;
  parser.setApplicationDescription(
      "Shows an orrery that the inspector can look into: see the menu \"Inspector\". The menu \"Scene\" changes it "
      "meanwhile.");
  parser.addHelpOption();
  parser.addOptions({
      {"inspect", "Start the inspector at once on the <node>, the <manager> or the <area>.",
       "node|manager|area"},
      {"frames", "End after <N> turns of the program's timer, 60 a second.", "N"},
      {"keys", "Make the changes of the menu \"Scene\" with these <letters>, one every tenth turn.", "letters"},
      {"shot", "With --frames: write the view to <FILE.png> at the end.", "FILE.png"},
  });
  parser.process(application);
  if (!parser.positionalArguments().isEmpty()) refuse("takes options only");

  QString const inspect = parser.value("inspect");
  int const way = static_cast<int>(QStringList{"node", "manager", "area"}.indexOf(inspect));
  if (parser.isSet("inspect") && way < 0) refuse("--inspect takes node, manager or area");
  int const frames = parser.value("frames").toInt();
  if (parser.isSet("frames") && frames < 1) refuse("--frames takes a number from 1");
  if (parser.isSet("shot") && frames == 0) refuse("--shot goes with --frames");

  HostWindow window;
  window.resize(900, 700);
  window.show();
  if (way >= 0) window.inspect(HostWindow::Way(way));
  window.press(parser.value("keys").toStdString());
  if (frames > 0) window.endAfter(frames, parser.value("shot"));
  return QApplication::exec();
}
