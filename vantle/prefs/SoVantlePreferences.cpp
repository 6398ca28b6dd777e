#include "vantle/prefs/SoVantlePreferences.h"

#include "ui_QPreferences.h"

SoVantlePreferences::SoVantlePreferences(QList<Preferences> const& pages, QWidget* parent, char const* name,
                                         Qt::WindowFlags flags)
    : QDialog(parent, flags), m_form(std::make_unique<Ui::QPreferences>()) {
  m_form->setupUi(this);
  setObjectName(QString::fromUtf8(name));
  m_form->m_preferenceList->setSelectionMode(QAbstractItemView::SingleSelection);
  m_form->m_widgetStack->removeWidget(m_form->page);
  for (Preferences const& record : pages) {
    m_form->m_preferenceList->insertItem(m_form->m_preferenceList->count(), record.title);
    m_form->m_widgetStack->addWidget(record.page);
    auto const& sender = m_senders.emplace_back(std::make_unique<SenderObject>());
    if (record.setSlot) {
      connect(m_form->m_okButton, SIGNAL(clicked()), record.receiver, record.setSlot);
      connect(m_form->m_applyButton, SIGNAL(clicked()), record.receiver, record.setSlot);
    }
    if (record.initSlot) connect(sender.get(), SIGNAL(initSignal()), record.receiver, record.initSlot);
    sender->emitInitSignal();
  }
  connect(m_form->m_preferenceList, &QListWidget::currentItemChanged, this,
          &SoVantlePreferences::raiseWidget);
  m_form->m_preferenceList->setCurrentRow(0);
}

// The pages outlive the dialog.
SoVantlePreferences::~SoVantlePreferences() {
  m_senders.clear();
  for (int row = m_form->m_widgetStack->count() - 1; row >= 0; --row) {
    QWidget* const page = m_form->m_widgetStack->widget(row);
    m_form->m_widgetStack->removeWidget(page);
    page->setParent(nullptr);
  }
}

void SoVantlePreferences::emitInitSignal(int index) {
  if (index >= 0 && index < static_cast<int>(m_senders.size())) m_senders[index]->emitInitSignal();
}

void SoVantlePreferences::raiseWidget(QListWidgetItem* current, QListWidgetItem*) {
  if (current) m_form->m_widgetStack->setCurrentIndex(m_form->m_preferenceList->row(current));
}
