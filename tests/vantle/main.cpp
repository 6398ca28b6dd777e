#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // The session opens the application's last argument as a scene; the test program has none to offer.
  int applicationArgc = 1;
  QApplication application(applicationArgc, argv);
  application.setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
