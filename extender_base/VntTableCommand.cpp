#include "extender_base/VntTableCommand.h"

#include "kestrava/fields/SoMField.h"
#include "kestrava/io/SoDB.h"
#include "vnt/QtText.h"

VntTableCommand::VntTableCommand(SoMField* field, QString const& text) : m_field(field) {
  setText(toSbString(text));
}

void VntTableCommand::execute() {
  if (m_isDone) return;
  if (SoField const* field = m_field.get()) m_wasDefault = field->isDefault();
  run(false);
}

void VntTableCommand::run(bool back) {
  auto* const field = static_cast<SoMField*>(m_field.get());
  if (!field) return;
  SoDB::writelock();
  apply(*field, back);
  field->setDefault(back && m_wasDefault);
  field->touch();
  SoDB::writeunlock();
}

void VntTableReorder::apply(SoMField& field, bool back) {
  bool const fits = m_start + static_cast<int>(m_order.size()) <= field.getNum();
  // Once the program has removed some of the values there is no order to give, nor one to give back.
  if (back && !std::exchange(m_isApplied, false)) return;
  if (!fits) return;
  m_access.reorder(field, m_start, m_order, back);
  if (!back) m_isApplied = true;
}
