#include "vantle/session/VantleMessageBox.h"

#include <QMessageBox>
#include <cstdio>

bool VantleMessageBox::m_unattended = false;

namespace {

bool printed(QString const& title, QString const& text) {
  if (VantleMessageBox::isUnattended()) std::fprintf(stderr, "%s: %s\n", qPrintable(title), qPrintable(text));
  return VantleMessageBox::isUnattended();
}

} // namespace

void VantleMessageBox::information(QWidget* parent, QString const& title, QString const& text) {
  if (!printed(title, text)) QMessageBox::information(parent, title, text, QMessageBox::Ok);
}

void VantleMessageBox::warning(QWidget* parent, QString const& title, QString const& text) {
  if (!printed(title, text)) QMessageBox::warning(parent, title, text, QMessageBox::Ok);
}

void VantleMessageBox::critical(QWidget* parent, QString const& title, QString const& text) {
  if (!printed(title, text)) QMessageBox::critical(parent, title, text, QMessageBox::Ok);
}
