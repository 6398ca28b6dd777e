#include "vantle/session/VntShellLedger.h"

#include <QCoreApplication>
#include <algorithm>
#include <iterator>

#include "vnt/VntPluginsManager.h"

namespace {

QString tr(char const* text) { return QCoreApplication::translate("VntShellLedger", text); }

} // namespace

bool VntShellLedger::enter(Kind kind, QObject* object, QString const& title, VntExtension* extension) {
  if (contains(kind, object)) return false;
  if (!extension) extension = VntPluginsManager::getCalledExtension();
  SbString plugin = VntPluginsManager::getPluginOf(extension);
  if (plugin.empty()) plugin = VntPluginsManager::getCalledPlugin();
  m_entries.push_back({kind, object, extension, plugin, title});
  return true;
}

bool VntShellLedger::leave(Kind kind, QObject const* object) {
  return object && std::erase_if(m_entries, [&](Entry const& entry) {
                     return entry.kind == kind && entry.object == object;
                   }) > 0;
}

bool VntShellLedger::contains(Kind kind, QObject const* object) const {
  return std::any_of(m_entries.begin(), m_entries.end(),
                     [&](Entry const& entry) { return entry.kind == kind && entry.object == object; });
}

void VntShellLedger::objectDies(QObject const* object) {
  for (Entry& entry : m_entries) {
    if (entry.object == object) entry.object = nullptr;
  }
}

std::vector<VntShellLedger::Entry> VntShellLedger::takeOf(VntExtension* extension, bool counts) {
  std::vector<Entry> result;
  for (Entry& entry : m_entries) {
    if (entry.extension != extension) continue;
    result.push_back(entry);
    entry.object = nullptr;
    entry.extension = nullptr;
    entry.counts = counts;
  }
  std::erase_if(m_entries, [](Entry const& entry) { return !entry.counts; });
  return result;
}

std::vector<VntShellLedger::Entry> VntShellLedger::takeOf(SbString const& plugin) {
  auto const first = std::stable_partition(m_entries.begin(), m_entries.end(), [&](Entry const& entry) {
    return !plugin.empty() && entry.plugin != plugin;
  });
  std::vector<Entry> result(std::make_move_iterator(first), std::make_move_iterator(m_entries.end()));
  m_entries.erase(first, m_entries.end());
  return result;
}

QObject* VntShellLedger::dockOf(VntExtension const* extension) const {
  for (Entry const& entry : m_entries) {
    if (extension && entry.kind == DOCK && entry.extension == extension && entry.object) return entry.object;
  }
  return nullptr;
}

VntExtension* VntShellLedger::extensionOf(QObject const* object) const {
  for (Entry const& entry : m_entries) {
    if (object && entry.object == object) return entry.extension;
  }
  return nullptr;
}

QString VntShellLedger::describe(Entry const& entry) {
  switch (entry.kind) {
    case DOCK:
      return tr("the dock \"%1\"").arg(entry.title);
    case TOOL_BAR:
      return tr("the tool bar \"%1\"").arg(entry.title);
    case MENU:
      return tr("the menu \"%1\"").arg(entry.title);
    case CONTEXT_MENU:
      return tr("the contextual menu \"%1\"").arg(entry.title);
    case VIEW_ENTRY:
      return tr("the view menu's entry \"%1\"").arg(entry.title);
    case PREFERENCE_PAGE:
      return tr("the preference page \"%1\"").arg(entry.title);
    case STATUS_WIDGET:
      return tr("the status bar's widget \"%1\"").arg(entry.title);
  }
  return QString();
}
