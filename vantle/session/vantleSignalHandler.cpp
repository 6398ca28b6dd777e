#include "vantle/session/vantleSignalHandler.h"

#include <QCoreApplication>
#include <QDialog>
#include <QMessageBox>
#include <QTextEdit>
#include <QThread>
#include <QVBoxLayout>
#include <cstdio>
#include <cstdlib>

#include "kestrava/base/SoErrorStack.h"
#include "vnt/QtText.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VantleMessageBox.h"

namespace {

QString tr(char const* text) { return QCoreApplication::translate("vantleSignalHandler", text); }

void showReport(QString const& report) {
  QDialog dialog;
  dialog.setWindowTitle(tr("Error report"));
  auto* layout = new QVBoxLayout(&dialog);
  auto* text = new QTextEdit(&dialog);
  text->setReadOnly(true);
  text->setPlainText(report);
  layout->addWidget(text);
  dialog.resize(500, 800);
  dialog.exec();
}

void ask(QString const& report) {
  // Whatever is done while the boxes are open, what called the handler is on the stack.
  SoVantleImpl::Call const call;
  auto const answer = QMessageBox::critical(
      nullptr, tr("Critical error"),
      tr("The application produced a critical error, click the ignore button to debug the application, ok to "
         "exit and help to view the callstack."),
      QMessageBox::Ok | QMessageBox::Ignore | QMessageBox::Help, QMessageBox::Ok);
  if (answer == QMessageBox::Help) showReport(report);
  if (answer == QMessageBox::Ok || answer == QMessageBox::Help) std::exit(1);
}

} // namespace

void vantleSignalHandler(SoError const* error, void*) {
  QString report = tr("------- No callstack information -------");
  if (error && error->isOfType(SoErrorStack::getClassTypeId())) {
    report = QString::fromStdU16String(static_cast<SoErrorStack const*>(error)->getStack().toUtf16());
  }
  if (VantleMessageBox::isUnattended()) {
    std::fprintf(stderr, "%s\n%s\n", error ? error->getDebugString().c_str() : "", qPrintable(report));
    std::exit(1);
  }
  QCoreApplication* const application = QCoreApplication::instance();
  if (!application) return;
  // Errors come on the thread that made them; boxes are for the GUI thread, which may be waiting for that one.
  if (QThread::currentThread() == application->thread())
    ask(report);
  else
    QMetaObject::invokeMethod(application, [report] { ask(report); }, Qt::QueuedConnection);
}
