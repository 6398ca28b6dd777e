#include "extender_base/VntFieldEditorPanel.h"

#include <QAbstractSpinBox>
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QStyle>
#include <QToolTip>
#include <utility>

#include "extender_base/VntEditorWidget.h"
#include "vnt/QtText.h"
#include "vnt/VntFieldEdit.h"
#include "vnt/VntFieldEditor.h"
#include "vnt/VntPluginsManager.h"

namespace {

/// A line that is cut to its width; the whole text is then its tool tip.
class ElidedLabel : public QLabel {
 public:
  explicit ElidedLabel(QWidget* parent) : QLabel(parent) { setTextFormat(Qt::PlainText); }
  QSize minimumSizeHint() const override {
    return {qMin(sizeHint().width(), fontMetrics().averageCharWidth() * 6), sizeHint().height()};
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    style()->drawItemText(&painter, contentsRect(), Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(),
                          fontMetrics().elidedText(text(), Qt::ElideRight, width()), foregroundRole());
  }
  bool event(QEvent* event) override {
    if (event->type() != QEvent::ToolTip) return QLabel::event(event);
    bool const isCut = fontMetrics().horizontalAdvance(text()) > width();
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), isCut ? text() : QString(), this);
    return true;
  }
};

QString describe(SoFieldContainer const* container) {
  QString const type = toQString(container->getTypeId().getName().getString());
  QString const name = toQString(container->getName().getString());
  return name.isEmpty() ? type
                        : VntFieldEditorPanel::tr("%1 \"%2\"", "type and name of a node").arg(type, name);
}

bool isTurnedByWheel(QObject const* widget) {
  return qobject_cast<QComboBox const*>(widget) || qobject_cast<QAbstractSpinBox const*>(widget);
}

bool hasOwnUndo(QObject const* widget, bool redo) {
  if (auto const* line = qobject_cast<QLineEdit const*>(widget))
    return redo ? line->isRedoAvailable() : line->isUndoAvailable();
  if (auto const* text = qobject_cast<QPlainTextEdit const*>(widget))
    return redo ? text->document()->isRedoAvailable() : text->document()->isUndoAvailable();
  return true;
}

} // namespace

VntFieldEditorPanel::VntFieldEditorPanel(QWidget* parent)
    : QWidget(parent),
      m_title(new ElidedLabel(this)),
      m_subtitle(new ElidedLabel(this)),
      m_state(new QWidget(this)),
      m_ignored(new QCheckBox(tr("Ignored"), m_state)),
      m_reset(new QPushButton(tr("Reset"), m_state)),
      m_source(new ElidedLabel(m_state)),
      m_disconnect(new QPushButton(tr("Disconnect"), m_state)),
      m_area(new QScrollArea(this)),
      m_problem(new QLabel(this)) {
  buildHeader();
  auto* const header = new QHBoxLayout;
  header->setSpacing(8);
  header->addWidget(m_title);
  header->addWidget(m_subtitle, 1);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(6, 6, 6, 6);
  layout->setSpacing(4);
  layout->addLayout(header);
  layout->addWidget(m_state);
  layout->addWidget(m_area, 1);
  layout->addWidget(m_problem);
  m_area->setObjectName("editorArea");
  m_area->setWidgetResizable(true);
  m_area->setFrameShape(QFrame::NoFrame);
  m_area->setFocusPolicy(Qt::NoFocus);
  clear();
}

VntFieldEditorPanel::~VntFieldEditorPanel() {
  if (m_edit) m_edit->disconnect();
  delete m_editor; // before what it edits
}

void VntFieldEditorPanel::buildHeader() {
  QFont bold = m_title->font();
  bold.setBold(true);
  m_title->setFont(bold);
  m_title->setObjectName("fieldName");
  m_subtitle->setObjectName("fieldOwner");
  m_ignored->setObjectName("ignored");
  m_ignored->setToolTip(tr("The node behaves as if this field had not been set"));
  m_reset->setObjectName("reset");
  m_reset->setToolTip(tr("Gives the field its default value"));
  m_disconnect->setObjectName("disconnect");
  m_disconnect->setToolTip(tr("The field keeps its value and follows no other one"));
  m_source->setObjectName("source");
  m_problem->setObjectName("problem");
  m_problem->setTextFormat(Qt::PlainText);
  m_problem->setWordWrap(true);
  m_problem->setTextInteractionFlags(Qt::TextSelectableByMouse);
  colorProblem();

  auto* const row = new QHBoxLayout(m_state);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(4);
  row->addWidget(m_ignored);
  row->addWidget(m_source, 1);
  row->addWidget(m_disconnect);
  row->addStretch();
  row->addWidget(m_reset);
  connect(m_ignored, &QCheckBox::clicked, this, [this](bool on) {
    if (m_edit) m_edit->setIgnored(on);
  });
  connect(m_reset, &QPushButton::clicked, this, [this] {
    if (m_edit) m_edit->resetToDefault();
  });
  connect(m_disconnect, &QPushButton::clicked, this, [this] {
    if (m_edit) m_edit->disconnectField();
  });
}

void VntFieldEditorPanel::colorProblem() {
  bool const isDark = palette().color(QPalette::Window).lightness() < 128;
  QPalette red = palette();
  red.setColor(QPalette::WindowText, isDark ? QColor(0xff, 0x80, 0x80) : QColor(0xb0, 0x00, 0x20));
  m_problem->setPalette(red);
}

void VntFieldEditorPanel::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) colorProblem();
  QWidget::changeEvent(event);
}

bool VntFieldEditorPanel::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Wheel && isTurnedByWheel(watched) &&
      !static_cast<QWidget*>(watched)->hasFocus()) {
    event->ignore(); // somebody scrolls past
    return true;
  }
  if (event->type() == QEvent::ShortcutOverride) {
    auto const* const key = static_cast<QKeyEvent*>(event);
    bool const redo = key->matches(QKeySequence::Redo);
    if ((redo || key->matches(QKeySequence::Undo)) && !hasOwnUndo(watched, redo)) {
      event->ignore();
      return true;
    }
  }
  return QWidget::eventFilter(watched, event);
}

void VntFieldEditorPanel::clear() {
  if (m_editor) {
    // What was half typed or dragged belongs to the field that is left. Losing the focus would enter it.
    if (auto* const editor = qobject_cast<VntEditorWidget*>(m_editor)) {
      editor->giveUp();
      editor->getNote()->setParent(editor);
    }
    // It may be in the middle of its own event: the field goes while a button in it is still pressed. The
    // panel stays its parent: whoever ends the session at once takes it along.
    QWidget* const editor = m_area->takeWidget();
    editor->disconnect();
    editor->setParent(this);
    editor->setEnabled(false);
    if (m_edit) {
      m_edit->disconnect();
      m_edit->cancel();
      m_edit.release()->setParent(editor);
    }
    editor->deleteLater();
    m_editor = nullptr;
  }
  m_edit.reset();
  m_title->setText(tr("No field is selected"));
  m_subtitle->setText(tr("Select a row of the Node Overview."));
  m_state->hide();
  showProblem({});
}

void VntFieldEditorPanel::setField(SoField* field, QList<VntFieldEditor*> const& makers) {
  if (m_edit && m_edit->getField() == field) return;
  clear();
  if (!field) return;
  m_edit = std::make_unique<VntFieldEdit>(field);
  connect(m_edit.get(), &VntFieldEdit::gone, this, &VntFieldEditorPanel::clear);
  connect(m_edit.get(), &VntFieldEdit::changed, this, &VntFieldEditorPanel::showState);
  connect(m_edit.get(), &VntFieldEdit::failed, this, &VntFieldEditorPanel::showProblem);
  for (VntFieldEditor* maker : makers) {
    VntPluginsManager::call(maker, "createEditor()",
                            [&] { m_editor = maker->createEditor(m_edit.get(), m_area); });
    if (m_editor) break;
  }
  if (m_editor) {
    m_area->setWidget(m_editor);
    if (auto* const editor = qobject_cast<VntEditorWidget*>(m_editor)) {
      auto* const lines = static_cast<QVBoxLayout*>(layout());
      lines->insertWidget(lines->indexOf(m_problem), editor->getNote());
    }
    // Widgets of the editor's own know better what they can undo.
    for (QWidget* widget : m_editor->findChildren<QWidget*>()) {
      QMetaObject const* const type = widget->metaObject();
      bool const isText = type == &QLineEdit::staticMetaObject || type == &QPlainTextEdit::staticMetaObject;
      if (isText || isTurnedByWheel(widget)) widget->installEventFilter(this);
      if (isTurnedByWheel(widget)) widget->setFocusPolicy(Qt::StrongFocus);
    }
  }
  orderTabs();
  m_title->setText(
      toQString((field->getContainer() ? field->getName() : field->getTypeId().getName()).getString()));
  m_state->show();
  showState();
}

/// A new widget is the last of the window; the editor's are to follow those above it.
void VntFieldEditorPanel::orderTabs() {
  if (!m_editor) return;
  QList<QWidget*> stops;
  for (QWidget* next = m_editor->nextInFocusChain(); next != m_editor; next = next->nextInFocusChain()) {
    if (m_editor->isAncestorOf(next) && (next->focusPolicy() & Qt::TabFocus) && !next->focusProxy())
      stops << next;
  }
  QWidget* last = m_reset;
  for (QWidget* stop : stops) setTabOrder(std::exchange(last, stop), stop);
}

void VntFieldEditorPanel::showState() {
  SoField const* const field = m_edit->getField();
  if (!field) return;
  bool const isConnected = field->isConnected(), isEditable = m_edit->isEditable();
  QString const type = toQString(field->getTypeId().getName().getString());
  SoFieldContainer const* const container = field->getContainer();
  m_subtitle->setText(container ? tr("%1 of %2", "a type of field, a node").arg(type, describe(container))
                                : tr("stands alone"));
  m_ignored->setChecked(field->isIgnored());
  m_reset->setEnabled(isEditable && !field->isDefault());
  m_reset->setText(field->isDefault() ? tr("Default") : tr("Reset"));
  m_disconnect->setVisible(isConnected);
  if (isConnected) {
    SoField const* const source = field->getConnectedField();
    SoFieldContainer const* const owner = source->getContainer();
    m_source->setText(
        tr("follows %1 of %2")
            .arg(toQString(source->getName().getString()), owner ? describe(owner) : tr("the program")));
  } else {
    m_source->setText(isEditable ? QString() : tr("set by its node only"));
  }
  m_source->setVisible(!m_source->text().isEmpty());
  if (auto* const editor = qobject_cast<VntEditorWidget*>(m_editor))
    editor->setReadOnly(!isEditable);
  else if (m_editor)
    m_editor->setEnabled(isEditable);
}

void VntFieldEditorPanel::showProblem(QString const& problem) {
  m_problem->setText(problem);
  m_problem->setVisible(!problem.isEmpty());
}

void VntFieldEditorPanel::focusEditor() {
  auto const takesKeys = [](QWidget const* widget) {
    return widget->isVisible() && widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus);
  };
  auto const firstIn = [&](QWidget* root) -> QWidget* {
    if (!root) return nullptr;
    QWidget* proxy = root;
    while (proxy->focusProxy()) proxy = proxy->focusProxy();
    if (takesKeys(proxy)) return proxy;
    for (QWidget* next = root->nextInFocusChain(); next != root; next = next->nextInFocusChain()) {
      if (root->isAncestorOf(next) && takesKeys(next)) return next;
    }
    return nullptr;
  };
  QWidget* target = firstIn(m_editor);
  if (!target) target = firstIn(m_state);
  if (target) target->setFocus(Qt::ShortcutFocusReason);
}
