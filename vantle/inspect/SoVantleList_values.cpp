#include "kestrava/fields/SoMFInstanceParameter.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoMFUniformShaderParameter.h"
#include "kestrava/fields/SoSFArray.h"
#include "kestrava/fields/SoSFBufferObject.h"
#include "kestrava/fields/SoSFImage.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/nodes/SoNode.h"
#include "vantle/inspect/SoVantleList.h"
#include "vnt/QtText.h"

// Values of fields as text.

namespace {

constexpr int SHOWN_VALUES = 6;
constexpr std::int64_t MAX_ARRAY = 4096;

QString typeName(SoNode const* node) { return toQString(node->getTypeId().getName().toString()); }

QString ownText(SoField const* field) {
  SbString text;
  field->get(text);
  return toQString(text);
}

QString nodesText(SoMFNode const* field, int count) {
  QString text;
  for (int i = 0; i < count; ++i) {
    if (SoNode const* node = field->getNode(i)) text += typeName(node) + QStringLiteral(", ");
  }
  return text;
}

} // namespace

SoVantleList::Value SoVantleList::multipleValueOf(SoMField* field) {
  Value value;
  int const count = field->getNumValues();
  int const shown = std::min(count, SHOWN_VALUES);
  QString& text = value.text;
  if (field->isOfType(SoMFInstanceParameter::getClassTypeId())) {
    text = QStringLiteral(","); // trimmed away below: there is nothing to say about instances
  } else if (field->isOfType(SoMFNode::getClassTypeId()) ||
             field->isOfType(SoMFUniformShaderParameter::getClassTypeId())) {
    text = nodesText(static_cast<SoMFNode*>(field), shown);
    value.enabled = false;
  } else if (count == 0) {
    text = ownText(field);
    return value;
  } else {
    SbString one;
    for (int i = 0; i < shown; ++i) {
      field->get1(i, one);
      text += toQString(one) + QStringLiteral(", ");
    }
  }
  text.chop(2);
  if (count > SHOWN_VALUES) text += QStringLiteral("...");
  return value;
}

SoVantleList::Value SoVantleList::valueOf(SoField* field) {
  field->evaluate();
  if (field->isOfType(SoMField::getClassTypeId())) return multipleValueOf(static_cast<SoMField*>(field));
  Value value;
  if (field->isOfType(SoSFNode::getClassTypeId())) {
    SoNode const* const node = static_cast<SoSFNode*>(field)->getValue();
    if (node) value.text = typeName(node);
    value.enabled = false;
  } else if (field->isOfType(SoSFBufferObject::getClassTypeId())) {
    if (static_cast<SoSFBufferObject*>(field)->getValue()) value.text = QStringLiteral("SoBufferObject");
    value.enabled = false;
  } else if (field->isOfType(SoSFImage::getClassTypeId())) {
    value.isImage = true;
  } else if (field->isOfType(SoSFArray::getClassTypeId())) {
    SbVec3i32 const& size = static_cast<SoSFArray*>(field)->getSize();
    value.enabled = std::int64_t{size[0]} * size[1] * size[2] <= MAX_ARRAY;
    value.text = value.enabled ? ownText(field) : QStringLiteral("ARRAY TOO BIG");
  } else {
    value.text = ownText(field);
  }
  return value;
}
