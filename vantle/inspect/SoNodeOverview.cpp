#include "vantle/inspect/SoNodeOverview.h"

#include <QCheckBox>
#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/nodes/SoNode.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/inspect/SoFieldItem.h"
#include "vantle/inspect/SoNodeOverviewList.h"
#include "vantle/inspect/SoSteadyLabel.h"
#include "vnt/QtText.h"
#include "vantle/session/VntServicesImpl.h"

namespace {

SoCommandManager* commandManager() {
  return VntServicesImpl::isInstance() ? VntServicesImpl::getImplInstance()->getCommandManager() : nullptr;
}

SoNode* asNode(SoFieldContainer* container) {
  return container && container->isOfType(SoNode::getClassTypeId()) ? static_cast<SoNode*>(container)
                                                                    : nullptr;
}

} // namespace

SoNodeOverview::SoNodeOverview(QWidget* parent, char const* name, Qt::WindowFlags flags)
    : QWidget(parent, flags), m_sensor(&SoNodeOverview::nodeSensorCB, this) {
  setObjectName(QString::fromLatin1(name ? name : "SoNodeOverview"));
  initClass();
  languageChange();
}

SoNodeOverview::SoNodeOverview(SoFieldContainer* container, SoNode* kit, QWidget* parent, char const* name,
                               Qt::WindowFlags flags)
    : SoNodeOverview(parent, name, flags) {
  setSceneNode(container, kit);
}

SoNodeOverview::~SoNodeOverview() = default;

void SoNodeOverview::initClass() {
  auto* const layout = new QVBoxLayout(this);
  layout->setObjectName(QStringLiteral("m_nodeOverviewLayout"));
  layout->setContentsMargins(0, 0, 0, 0);

  auto* const frame = new QFrame(this);
  frame->setObjectName(QStringLiteral("m_upperFrame"));
  frame->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  auto* const frameLayout = new QVBoxLayout(frame);
  frameLayout->setObjectName(QStringLiteral("m_upperFrameLayout"));
  frameLayout->setContentsMargins(3, 3, 3, 3);
  frameLayout->setSpacing(0);

  auto makeLabel = [frame](char const* name) {
    auto* const label = new QLabel(frame);
    label->setObjectName(QString::fromLatin1(name));
    label->setTextFormat(Qt::RichText);
    return label;
  };
  auto makeBox = [frame](char const* name) {
    auto* const box = new QCheckBox(frame);
    box->setObjectName(QString::fromLatin1(name));
    return box;
  };

  auto* const info = new QHBoxLayout;
  info->setObjectName(QStringLiteral("m_nodeInfoLayout"));
  info->setContentsMargins(4, 4, 4, 4);
  info->setSpacing(6);
  m_nodeNameLabel = makeLabel("m_nodeNameLabel");
  m_nodeNameValue = new QLineEdit(frame);
  m_nodeNameValue->setObjectName(QStringLiteral("m_nodeNameValue"));
  m_nodeNameValue->setMinimumWidth(60);
  info->addWidget(m_nodeNameLabel);
  info->addWidget(m_nodeNameValue);
  if (SoVantleList::hasNetNameColumn()) info->addWidget(m_nodeNetNameLabel = makeLabel("m_nodeNetNameLabel"));
  info->addStretch();
  m_adressLabel = makeLabel("m_adressLabel");
  m_adressLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
  m_nodeIdLabel = makeLabel("m_nodeIdLabel");
  // In a narrow panel these take two lines instead of keeping it wide, in a wide one they have room for one.
  m_adressLabel->setWordWrap(true);
  m_nodeIdLabel->setWordWrap(true);
  // In a narrow dock the address takes a second line, nothing else.
  m_nodeNameLabel->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Preferred);
  m_nodeIdLabel->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Preferred);
  info->addWidget(m_adressLabel, 3);
  info->addWidget(new SoSteadyLabel(m_nodeIdLabel), 1);
  info->setStretchFactor(m_nodeNameValue, 2);
  frameLayout->addLayout(info);

  auto* const checks = new QHBoxLayout;
  checks->setObjectName(QStringLiteral("m_checkLayout"));
  checks->setContentsMargins(4, 4, 4, 4);
  checks->setSpacing(6);
  m_overrideCheckBox = makeBox("m_overrideCheckBox");
  m_overrideCheckBox->setEnabled(false);
  m_showChangedCheckBox = makeBox("m_showChangedCheckBox");
  m_watchButton = new QPushButton(frame);
  m_watchButton->setObjectName(QStringLiteral("m_watchButton"));
  m_watchButton->setEnabled(false);
  checks->addWidget(m_overrideCheckBox);
  checks->addWidget(m_showChangedCheckBox);
  checks->addStretch();
  checks->addWidget(m_watchButton);
  frameLayout->addLayout(checks);

  m_list = new SoNodeOverviewList(this, "m_nodeOverviewList");
  layout->addWidget(frame);
  layout->addWidget(m_list, 1);

  m_sensor.setDeleteCallback(&SoNodeOverview::containerDiesCB, this);
  m_idPause.setSingleShot(true);
  m_idPause.setInterval(250);
  connect(&m_idPause, &QTimer::timeout, this, [this] {
    if (std::exchange(m_idIsOld, false) && m_container) idChanged();
  });
  connect(m_showChangedCheckBox, &QCheckBox::toggled, m_list, &SoVantleList::showChangedValues);
  connect(m_overrideCheckBox, &QCheckBox::released, this, &SoNodeOverview::overrideButtonStateChanged);
  connect(m_watchButton, &QPushButton::clicked, this, [] {
    if (SoCommandManager* commands = commandManager()) commands->setFieldWatch();
  });
  connect(m_nodeNameValue, &QLineEdit::textEdited, this, &SoNodeOverview::nameEdited);
  clear();
}

void SoNodeOverview::languageChange() {
  setWindowTitle(tr("Node Overview"));
  m_overrideCheckBox->setText(tr("Override"));
  m_showChangedCheckBox->setText(tr("Show Changed"));
  m_watchButton->setText(tr("Watch"));
}

void SoNodeOverview::changeEvent(QEvent* event) {
  if (event->type() == QEvent::LanguageChange) languageChange();
  QWidget::changeEvent(event);
}

void SoNodeOverview::setSceneNode(SoFieldContainer* container, SoNode* kit) {
  if (!container) return clear();
  m_container = container;
  // Any container may go while it is shown; only a node changes its id.
  m_sensor.attach(container);
  m_watchButton->setEnabled(false);
  m_list->setNode(container);

  showName(kit);
  if (m_nodeNetNameLabel) {
    SbName const name = container->getNetName();
    QString const text = name.empty() ? tr("&lt No NetName&gt ") : toQString(name.toString()).toHtmlEscaped();
    m_nodeNetNameLabel->setText(tr("<b> Node NetName </b>: %1").arg(text));
  }
  QString const address = QStringLiteral("0x") + QString::number(reinterpret_cast<quintptr>(container), 16);
  m_adressLabel->setText(tr("<b> Node Address </b>: %1").arg(address));
  showId();
  m_list->revert(nullptr);
  showState();
  m_showChangedCheckBox->setChecked(false);
}

void SoNodeOverview::showName(SoNode* kit) {
  SbString part;
  if (kit && kit->isOfType(SoBaseKit::getClassTypeId()))
    part = static_cast<SoBaseKit*>(kit)->getPartString(m_container);
  m_nodeNameLabel->setText(part.empty() ? tr("<b> Node Name </b>:") : tr("<b> Part Name </b>:"));
  m_nodeNameValue->setText(toQString(part.empty() ? m_container->getName().toString() : part));
  m_nodeNameValue->setReadOnly(!part.empty());
}

void SoNodeOverview::showId() {
  SoNode const* const node = asNode(m_container);
  QString const id = node ? QString::number(node->getNodeId()) : QString();
  m_nodeIdLabel->setText(tr("<b> Node Id </b>: ") + id);
}

void SoNodeOverview::showState() {
  static SbName const override("override");
  SoNode const* const node = asNode(m_container);
  m_overrideCheckBox->setEnabled(m_container && m_container->getField(override));
  m_overrideCheckBox->setChecked(node && node->isOverride());
}

void SoNodeOverview::clear() {
  m_sensor.detach();
  m_container = nullptr;
  m_list->clear();
  m_nodeNameLabel->setText(tr("<b> Node Name </b>: "));
  if (m_nodeNetNameLabel) m_nodeNetNameLabel->setText(tr("<b> Node NetName </b>: "));
  m_nodeIdLabel->setText(tr("<b> Node Id </b>: "));
  m_adressLabel->setText(tr("<b> Node Address </b>: "));
  m_nodeNameValue->clear();
  m_nodeNameValue->setReadOnly(true);
  m_watchButton->setEnabled(false);
  showState();
}

void SoNodeOverview::nameEdited(QString const& text) {
  if (!m_container) return;
  m_container->setName(SbName(toSbString(text)));
  SoNode* const node = asNode(m_container);
  if (node && commandManager()) commandManager()->nodeNameChanged(node);
  // The container may keep another name than the one that was typed.
  QString const kept = toQString(m_container->getName().toString());
  if (kept != text) {
    int const cursor = m_nodeNameValue->cursorPosition() + static_cast<int>(kept.size() - text.size());
    m_nodeNameValue->setText(kept);
    m_nodeNameValue->setCursorPosition(cursor);
  }
  for (int i = 0; i < m_list->topLevelItemCount(); ++i) {
    m_list->topLevelItem(i)->setText(SoVantleList::NODE_NAME_COLUMN, kept);
  }
  Q_EMIT containerRenamed();
}

void SoNodeOverview::overrideButtonStateChanged() {
  if (SoCommandManager* commands = commandManager())
    commands->nodeSetOverride(m_overrideCheckBox->isChecked());
}

void SoNodeOverview::nodeNameChanged(QString const&) { m_nodeNameValue->clear(); }

void SoNodeOverview::nodeSensorCB(void* data, SoSensor*) {
  auto* const overview = static_cast<SoNodeOverview*>(data);
  if (!overview || !asNode(overview->m_container)) return;
  overview->showState();
  overview->idChanged();
}

// In a scene that moves, the id is another one in every frame, which nobody can read, and which costs the host's
// frame more than all else here.
void SoNodeOverview::idChanged() {
  m_idIsOld = m_idPause.isActive();
  if (m_idIsOld) return;
  showId();
  m_idPause.start();
}

void SoNodeOverview::containerDiesCB(void* data, SoSensor*) {
  // The rows have lost their fields already and keep the last values; nothing here may ask the container
  // again.
  auto* const overview = static_cast<SoNodeOverview*>(data);
  SoFieldContainer* const gone = std::exchange(overview->m_container, nullptr);
  overview->m_nodeNameValue->setReadOnly(true);
  overview->m_watchButton->setEnabled(false);
  overview->showState();
  VntServices* const services = VntServices::getInstance();
  if (services && services->getSelectedNode() == gone) services->setSelectedNode(nullptr);
  Q_EMIT overview->containerDied();
}
