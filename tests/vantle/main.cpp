#include <gtest/gtest.h>

#include <QApplication>
#include <cstring>

#include "tests/vantle/SessionChild.h"

int main(int argc, char** argv) {
  if (argc == 3 && std::strcmp(argv[1], "--child") == 0) return SessionChild::main(argv[2]);
  testing::InitGoogleTest(&argc, argv);
  // The session opens the application's last argument as a scene; the test program has none to offer.
  int applicationArgc = 1;
  QApplication application(applicationArgc, argv);
  application.setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
