#pragma once

#include <QDesktopServices>
#include <QObject>
#include <QStringList>
#include <QUrl>

/// Gets the pages that would be opened in a browser.
class UrlCatcher : public QObject {
  Q_OBJECT
 public:
  UrlCatcher() { QDesktopServices::setUrlHandler("https", this, "take"); }
  ~UrlCatcher() override { QDesktopServices::unsetUrlHandler("https"); }
  QStringList urls;
 public Q_SLOTS:
  void take(QUrl const& url) { urls << url.toString(); }
};
