#include <QClipboard>
#include <QGuiApplication>
#include <vector>

#include "kestrava/fields/SoMFString.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/fields/SoSFString.h"
#include "kestrava/nodes/SoFile.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vnt/QtText.h"

// Where a row stands, in words.

namespace {

/// Steps in a tool tip: of longer ways the first and the last ones.
constexpr int FIRST_STEPS = 4, LAST_STEPS = 15;
/// Letters in a line of a tool tip, and of one name in it.
constexpr int LINE = 100, MAX_NAME = 60;

/// From the root row to this one.
std::vector<SoTreeViewItem const*> wayTo(SoTreeViewItem const* item) {
  std::vector<SoTreeViewItem const*> way;
  for (; item; item = item->parent()) way.push_back(item);
  std::reverse(way.begin(), way.end());
  return way;
}

/// Among the values of its field; -1 in a field of a single one.
int valueIndex(SoTreeViewItem const* item) {
  SoField* const field = item->getFieldParent();
  if (field->isOfType(SoSFNode::getClassTypeId())) return -1;
  int index = 0;
  for (int i = item->row(); i-- > 0;) {
    SoTreeViewItem const* const before = item->parent()->rawChild(i);
    if (before->getFieldParent() != field) break;
    index += before->isInSceneGraph();
  }
  return index;
}

QString typeOf(SoTreeViewItem const* item) {
  return toQString(item->getNode()->getTypeId().getName().toString());
}

QString nameOf(SoTreeViewItem const* item) { return toQString(item->getNode()->getName().toString()); }

QString quoted(QString name) {
  name.replace(QLatin1Char('\\'), QStringLiteral("\\\\")).replace(QLatin1Char('"'), QStringLiteral("\\\""));
  return QLatin1Char('"') + name + QLatin1Char('"');
}

QString shortened(QString const& name, int length) {
  return name.size() <= length ? name : name.left(length / 2) + QChar(0x2026) + name.right(length / 2 - 1);
}

/// The file that a node is read from, or that it shows.
QString fileOf(SoNode* node) {
  if (node->isOfType(SoFile::getClassTypeId())) {
    auto const* file = static_cast<SoFile*>(node);
    return toQString(file->getFullName().empty() ? file->name.getValue() : file->getFullName());
  }
  if (node->isOfType(SoWWWInline::getClassTypeId()))
    return toQString(static_cast<SoWWWInline*>(node)->name.getValue());
  SoField* const file = node->getField("filename");
  if (file && file->isOfType(SoSFString::getClassTypeId()))
    return toQString(static_cast<SoSFString*>(file)->getValue());
  SoField* const files = node->getField("filenames");
  if (!files || !files->isOfType(SoMFString::getClassTypeId())) return QString();
  auto const* names = static_cast<SoMFString*>(files);
  if (names->getNum() == 0) return QString();
  QString const first = toQString((*names)[0]);
  return names->getNum() == 1 ? first
                              : SoVantleTreeView::tr("%1 and %2 more").arg(first).arg(names->getNum() - 1);
}

/// Text without spaces is not broken by itself.
QString inLines(QString const& text) {
  QStringList lines;
  for (qsizetype i = 0; i < text.size(); i += LINE) lines << text.mid(i, LINE);
  return lines.join(QLatin1Char('\n'));
}

} // namespace

QString SoVantleTreeView::pathText(SoTreeViewItem const* item) {
  QStringList steps;
  for (SoTreeViewItem const* row : wayTo(item)) {
    QString step = typeOf(row);
    if (QString const name = nameOf(row); !name.isEmpty()) step += QLatin1Char(' ') + quoted(name);
    if (row->getFieldParent()) {
      step += QStringLiteral(" .") + toQString(row->getFieldParent()->getName().toString());
      if (int const index = valueIndex(row); index >= 0) step += QStringLiteral("[%1]").arg(index);
    } else if (row->parent() && row->isInSceneGraph()) {
      step += QStringLiteral(" [%1]").arg(row->getSceneIndex());
    }
    if (row->isIgnored()) step += QLatin1Char(' ') + tr("(ignored)");
    steps << step;
  }
  return steps.join(QStringLiteral(" / "));
}

static QString toolTipStep(SoTreeViewItem const* row) {
  QString step = typeOf(row);
  if (QString const name = nameOf(row); !name.isEmpty())
    step += QLatin1Char(' ') + quoted(shortened(name, MAX_NAME));
  QStringList place;
  bool const isPart = row->baseKitPart();
  if (isPart) place << SoVantleTreeView::tr("part %1").arg(toQString(row->partName().toString()));
  if (SoField const* field = row->getFieldParent()) {
    int const index = valueIndex(row);
    QString const name = toQString(field->getName().toString());
    if (index >= 0) {
      place << SoVantleTreeView::tr("value %1 of field %2").arg(index).arg(name);
    } else if (!isPart) {
      place << SoVantleTreeView::tr("field %1").arg(name);
    }
  } else if (row->parent() && row->isInSceneGraph()) {
    place << SoVantleTreeView::tr("child %1").arg(row->getSceneIndex());
  }
  if (row->isIgnored()) place << SoVantleTreeView::tr("ignored");
  return place.isEmpty() ? step : step + QStringLiteral(": ") + place.join(QStringLiteral(", "));
}

QString SoVantleTreeView::toolTipText(SoTreeViewItem const* item) {
  std::vector<SoTreeViewItem const*> const way = wayTo(item);
  std::size_t const left =
      way.size() > FIRST_STEPS + LAST_STEPS + 1 ? way.size() - FIRST_STEPS - LAST_STEPS : 0;
  QStringList lines;
  for (std::size_t i = 0; i < way.size(); ++i) {
    if (left && i == FIRST_STEPS) {
      lines << tr("... %1 levels ...").arg(left);
      i += left;
    }
    lines << toolTipStep(way[i]);
  }
  QString const name = nameOf(item), file = fileOf(item->getNode());
  if (name.size() > MAX_NAME) lines << tr("Name:") + QLatin1Char(' ') + inLines(name);
  if (!file.isEmpty()) lines << tr("File:") + QLatin1Char(' ') + inLines(file);
  // As markup whatever it holds: what looks like some would be taken for it otherwise.
  return QStringLiteral("<div style=\"white-space: pre\">%1</div>")
      .arg(lines.join(QLatin1Char('\n')).toHtmlEscaped());
}

void SoVantleTreeView::copyPath() {
  SoTreeViewItem const* const item = currentItem();
  if (!item) return;
  QGuiApplication::clipboard()->setText(pathText(item));
  if (!VntServicesImpl::isInstance()) return;
  if (SoCommandManager* commands = VntServicesImpl::getImplInstance()->getCommandManager())
    commands->announce(tr("The path of %1 is on the clipboard").arg(typeOf(item)));
}
