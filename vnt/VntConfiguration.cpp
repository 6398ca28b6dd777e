#include "vnt/VntConfiguration.h"

#include <QXmlStreamReader>

namespace {

class Reader {
 public:
  Reader(QXmlStreamReader& xml, std::vector<std::pair<qint64, QString>>& problems)
      : m_xml(xml), m_problems(problems) {}

  VntConfiguration read() {
    if (m_xml.readNextStartElement() && !at("configuration")) {
      m_xml.raiseError(QStringLiteral("the root element is \"%1\", not \"configuration\"").arg(m_xml.name()));
    }
    while (m_xml.readNextStartElement()) {
      if (at("plugins"))
        readPlugins();
      else if (at("profiles"))
        readProfiles();
      else
        passOver();
    }
    return std::move(m_result);
  }

 private:
  bool at(char const* element) const { return m_xml.name() == QLatin1String(element); }

  QString attribute(char const* name) {
    QString const value = m_xml.attributes().value(QLatin1String(name)).toString();
    if (value.isEmpty())
      complain(QStringLiteral("%1 has no attribute \"%2\"").arg(m_xml.name(), QLatin1String(name)));
    return value;
  }
  void complain(QString const& text) { m_problems.emplace_back(m_xml.lineNumber(), text); }

  /// An extension that nothing controls would silently do nothing.
  void passOver() {
    if (at("controlledExtension")) {
      complain(
          QStringLiteral("extension \"%1\" is controlled by nobody: the element is in no activeExtension")
              .arg(m_xml.attributes().value(QLatin1String("extension"))));
    } else if (at("activeExtension")) {
      complain(QStringLiteral("extension \"%1\" is active in no profile: the element is in no profile")
                   .arg(m_xml.attributes().value(QLatin1String("extension"))));
    }
    m_xml.skipCurrentElement();
  }

  void readPlugins() {
    while (m_xml.readNextStartElement()) {
      if (at("loadPlugin")) {
        m_result.modules.push_back({attribute("file"), m_xml.lineNumber()});
        m_xml.skipCurrentElement();
      } else {
        passOver();
      }
    }
  }

  void readProfiles() {
    m_result.profilesLine = m_xml.lineNumber();
    m_result.defaultProfile = attribute("default");
    while (m_xml.readNextStartElement()) {
      if (at("profile"))
        readProfile();
      else
        passOver();
    }
  }

  void readProfile() {
    VntConfiguration::Profile profile{attribute("name"), {}};
    while (m_xml.readNextStartElement()) {
      VntConfiguration::ActiveExtension active;
      if (!at("activeExtension")) {
        passOver();
      } else if (readReference(active)) {
        readControlled(active);
        profile.active.push_back(std::move(active));
      }
    }
    m_result.profiles.push_back(std::move(profile));
  }

  /// What is below one without a name goes with it.
  bool readReference(VntConfiguration::Reference& reference) {
    reference = {attribute("plugin"), attribute("extension"), m_xml.lineNumber()};
    if (!reference.plugin.isEmpty() && !reference.extension.isEmpty()) return true;
    m_xml.skipCurrentElement();
    return false;
  }

  void readControlled(VntConfiguration::ActiveExtension& active) {
    while (m_xml.readNextStartElement()) {
      VntConfiguration::Reference controlled;
      if (!at("controlledExtension")) {
        passOver();
      } else if (readReference(controlled)) {
        active.controlled.push_back(controlled);
        m_xml.skipCurrentElement();
      }
    }
  }

  QXmlStreamReader& m_xml;
  std::vector<std::pair<qint64, QString>>& m_problems;
  VntConfiguration m_result;
};

} // namespace

VntConfiguration VntConfiguration::read(QXmlStreamReader& xml,
                                        std::vector<std::pair<qint64, QString>>& problems) {
  VntConfiguration const result = Reader(xml, problems).read();
  // Behind the root element, too, there may be what does not belong there.
  while (!xml.atEnd()) xml.readNext();
  return result;
}
