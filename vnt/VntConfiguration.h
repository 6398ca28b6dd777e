#pragma once

#include <QString>
#include <QStringList>
#include <vector>

class QXmlStreamReader;

/// What a configuration file says, element by element. Lines count from 1.
struct VntConfiguration {
  struct Module {
    QString file; // empty when the attribute is missing
    qint64 line;
  };
  struct Reference {
    QString plugin, extension;
    qint64 line;
  };
  struct ActiveExtension : Reference {
    std::vector<Reference> controlled;
  };
  struct Profile {
    QString name;
    std::vector<ActiveExtension> active;
  };

  std::vector<Module> modules;
  QString defaultProfile;
  qint64 profilesLine = 0; // 0: there are no profiles
  std::vector<Profile> profiles;

  /// Elements that are not known are passed over, so that a configuration may hold more than this framework
  /// uses; what is known but makes no sense is left out and told as "line: text". Whether the XML itself is
  /// well-formed is the reader's to say.
  static VntConfiguration read(QXmlStreamReader& xml, std::vector<std::pair<qint64, QString>>& problems);
};
