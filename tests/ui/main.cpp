// The tests of the windows drive real widgets, without a display unless one is named.
#include <gtest/gtest.h>

#include <QApplication>

#include "ui/parts/held_keys.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  quendle::TellHeldKeys(&application);
  return RUN_ALL_TESTS();
}
