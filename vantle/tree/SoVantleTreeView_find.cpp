#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>
#include <unordered_map>

#include "kestrava/nodes/SoNode.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vnt/QtText.h"

// The search.

namespace {

char lowered(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter; }

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char letter) { return static_cast<unsigned char>(letter) < 128; });
}

/// Whether a text fits what is looked for. Made for a million of them: those of plain letters are compared as
/// they are, and no text is made of a number.
class TextMatcher {
 public:
  TextMatcher(QString const& wanted, int flags)
      : m_exact(flags & SoVantleTreeView::FIND_EXACT),
        m_caseSensitive(flags & SoVantleTreeView::FIND_CASE_SENSITIVE),
        m_wanted(m_caseSensitive ? wanted : wanted.toLower()),
        m_bytes(m_wanted.toStdString()),
        m_isAscii(isAscii(m_bytes)) {}

  bool operator()(std::string const& text) const {
    if (m_caseSensitive) return m_exact ? text == m_bytes : text.find(m_bytes) != std::string::npos;
    // Only a letter outside of ASCII may be an ASCII one in lower case; there are such.
    if (!isAscii(text)) return fits(QString::fromStdString(text).toLower());
    if (!m_isAscii || text.size() < m_bytes.size()) return false;
    auto const same = [](char own, char wanted) { return lowered(own) == wanted; };
    if (m_exact) return std::equal(text.begin(), text.end(), m_bytes.begin(), m_bytes.end(), same);
    return m_bytes.empty() ||
           std::search(text.begin(), text.end(), m_bytes.begin(), m_bytes.end(), same) != text.end();
  }

  /// Its digits, with what stands in front of them.
  bool operator()(std::uint64_t number, std::string_view prefix, int base) const {
    char text[32];
    char* const end =
        std::to_chars(std::copy(prefix.begin(), prefix.end(), text), text + sizeof text, number, base).ptr;
    std::string_view const digits(text, static_cast<std::size_t>(end - text));
    return m_exact ? digits == m_bytes : digits.find(m_bytes) != std::string_view::npos;
  }

 private:
  bool fits(QString const& text) const { return m_exact ? text == m_wanted : text.contains(m_wanted); }

  bool m_exact, m_caseSensitive;
  QString m_wanted; // in lower case, unless that counts
  std::string m_bytes;
  bool m_isAscii;
};

} // namespace

SoTreeViewItem* SoVantleTreeView::find(int mode, QString const& text, int flags) const {
  bool const backwards = flags & FIND_BACKWARD;
  if (!firstChild() || (text.isEmpty() && !(flags & FIND_EXACT))) return nullptr;
  TextMatcher const fits(text, flags);
  // There are few types, and neighbours often have the same name, or none.
  std::unordered_map<char const*, bool> types;
  SbName lastName;
  bool lastFits = fits(lastName.str());
  auto const matches = [&](SoTreeViewItem const* item) {
    SoNode const* const node = item->m_node;
    switch (mode) {
      case FIND_TYPE: {
        SbName const type = node->getTypeId().getName();
        auto const [known, isNew] = types.try_emplace(type.c_str(), false);
        if (isNew) known->second = fits(type.str());
        return known->second;
      }
      case FIND_NAME: {
        SbName const name = item->getNodeName();
        if (name == lastName) return lastFits;
        lastName = name;
        return lastFits = fits(name.str());
      }
      case FIND_ADDRESS:
        return fits(reinterpret_cast<std::uintptr_t>(node), "0x", 16);
      case FIND_ID:
        return fits(node->getNodeId(), "", 10);
      default:
        return false;
    }
  };

  // The row after the current one first, that one last.
  SoTreeViewItem* item = currentItem();
  if (item) {
    stepAround(item, backwards);
  } else {
    item = backwards ? lastItem() : firstChild();
  }
  SoTreeViewItem* const start = item;
  do {
    if (matches(item)) return item;
    stepAround(item, backwards);
  } while (item != start);
  return nullptr;
}
