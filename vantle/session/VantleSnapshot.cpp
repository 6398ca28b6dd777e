#include "vantle/session/VantleSnapshot.h"

#include <QImage>
#include <QImageWriter>
#include <QPixmap>
#include <QTimer>
#include <cstdio>

#include "kestrava/base/SoPreferences.h"
#include "kestrava/sensors/SoSensorManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vnt/QtText.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VantleMessageBox.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/viewer/SoVantleViewer.h"

namespace {

constexpr char FILE_KEY[] = "KSV_VANTLE_SNAPSHOT";
constexpr char SIZE_KEY[] = "KSV_VANTLE_SNAPSHOT_SIZE";
constexpr char STATUS_KEY[] = "KSV_VANTLE_SNAPSHOT_STATUS";

QString wantedFile() { return toQString(SoPreferences::getString(FILE_KEY)); }

QSize wantedSize() {
  QStringList const parts = toQString(SoPreferences::getString(SIZE_KEY)).split('x');
  QSize const size(parts.value(0).toInt(), parts.value(1).toInt());
  return size.isEmpty() ? QSize(1280, 900) : size;
}

SoVantleMainFrame* mainFrame() { return VntShellImpl::getImplInstance()->getMainFrame(); }

} // namespace

void VantleSnapshot::prepare() {
  VantleMessageBox::setUnattended(!wantedFile().isEmpty());
  if (VantleMessageBox::isUnattended()) SoPreferences::setValue(STATUS_KEY, "1");
}

void VantleSnapshot::begin(bool sceneNamed) {
  if (!VantleMessageBox::isUnattended()) return;
  // What was wrong with the scene has been said when it was read.
  if (sceneNamed && SoVantleViewer::getInstance()->getFileName().isEmpty()) return end(false);
  SoVantleMainFrame* const frame = mainFrame();
  frame->showNormal();
  frame->resize(wantedSize());
  // Layouts, the delay queue and the columns of the lists settle within a few rounds of the event loop.
  settle(10);
}

void VantleSnapshot::settle(int rounds) {
  QTimer::singleShot(0, mainFrame(), [rounds] {
    SoSensorManager::processDelayQueue(true);
    if (rounds > 0) return settle(rounds - 1);
    end(save(wantedFile()));
  });
}

bool VantleSnapshot::save(QString const& file) {
  QImageWriter writer(file, "png");
  if (writer.write(mainFrame()->grab().toImage())) return true;
  std::fprintf(stderr, "vantle: can not write %s: %s\n", qPrintable(file), qPrintable(writer.errorString()));
  return false;
}

void VantleSnapshot::end(bool written) {
  SoPreferences::setValue(STATUS_KEY, written ? "0" : "1");
  SoVantleImpl::stop(false);
}
