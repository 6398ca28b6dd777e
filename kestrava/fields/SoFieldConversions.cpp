// How fields take the values of fields of other types.

#include <memory>

#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoMFPath.h"
#include "kestrava/fields/SoMFString.h"
#include "kestrava/fields/SoMField.h"
#include "kestrava/fields/SoSFFieldContainer.h"
#include "kestrava/fields/SoSFName.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/fields/SoSFString.h"

namespace {

template <class T> T* as(SoField& field) {
  return field.isOfType(T::getClassTypeId()) ? static_cast<T*>(&field) : nullptr;
}
template <class T> T const* as(SoField const& field) {
  return field.isOfType(T::getClassTypeId()) ? static_cast<T const*>(&field) : nullptr;
}

/// True for fields whose values are any text, so that text needs no quotes there.
bool holdsText(SoField const& field) { return as<SoSFString>(field) || as<SoSFName>(field); }

/// True for fields that refer to objects: as text these would become others.
bool holdsObjects(SoField const& field) {
  return as<SoSFNode>(field) || as<SoMFNode>(field) || as<SoSFPath>(field) || as<SoMFPath>(field) ||
         as<SoSFFieldContainer>(field);
}

/// The first value, or the only one: strings without quotes, everything else as in files.
SbString firstText(SoField const& field) {
  SbString text;
  if (auto const* string = as<SoSFString>(field)) {
    text = string->getValue();
  } else if (auto const* name = as<SoSFName>(field)) {
    text = name->getValue().toString();
  } else if (auto const* strings = as<SoMFString>(field)) {
    if (strings->getNum() > 0) text = (*strings)[0];
  } else if (auto const* many = as<SoMField>(field)) {
    if (many->getNum() > 0) many->get1(0, text);
  } else {
    field.get(text);
  }
  return text;
}

bool nodesInto(SoField& field, SoField const& source, bool isTrial) {
  auto* const one = as<SoSFNode>(field);
  auto* const many = as<SoMFNode>(field);
  auto const* const fromOne = as<SoSFNode>(source);
  auto const* const fromMany = as<SoMFNode>(source);
  if (!(one && fromMany) && !(many && fromOne)) return false;
  if (isTrial) return true;
  bool const notify = field.enableNotify(false);
  if (one && fromMany->getNum() > 0) one->setValue((*fromMany)[0]);
  if (many) many->setValue(fromOne->getValue());
  field.enableNotify(notify);
  return true;
}

/// Paths too stay what they are: as text they would get a graph of their own.
bool pathsInto(SoField& field, SoField const& source, bool isTrial) {
  auto* const one = as<SoSFPath>(field);
  auto* const many = as<SoMFPath>(field);
  auto const* const fromOne = as<SoSFPath>(source);
  auto const* const fromMany = as<SoMFPath>(source);
  if (!(one && fromMany) && !(many && fromOne)) return false;
  if (isTrial) return true;
  bool const notify = field.enableNotify(false);
  if (one && fromMany->getNum() > 0) one->setValue((*fromMany)[0]);
  if (many) many->setValues({SoRef<SoPath>(fromOne->getValue())});
  field.enableNotify(notify);
  return true;
}

} // namespace

bool SoField::isConvertible(SoField& source) const {
  if (source.getTypeId() == getTypeId()) return true;
  if (countNumbers() > 0 && countNumbers() == source.countNumbers()) return true;
  auto& self = const_cast<SoField&>(*this);
  if (nodesInto(self, source, true) || pathsInto(self, source, true)) return true;
  // Any value has a text, and what a text gives shows only when it comes.
  if (holdsText(*this) || as<SoMFString>(*this))
    return source.isOfType(SoSField::getClassTypeId()) || as<SoMField>(source);
  if ((holdsText(source) || as<SoMFString>(source)) && getTypeId().canCreateInstance()) return true;
  if (holdsObjects(*this) || holdsObjects(source)) return false;
  // For the rest the present value tells.
  std::unique_ptr<SoField> const trial(static_cast<SoField*>(getTypeId().createInstance()));
  if (!trial) return false;
  trial->links().parsedFor = this;
  SbString reason;
  return trial->convertFrom(source, &reason);
}

bool SoField::convertFrom(SoField const& source, SbString* reason) {
  if (countNumbers() > 0 && countNumbers() == source.countNumbers()) {
    std::vector<double> numbers;
    source.getNumbers(numbers);
    setNumbers(numbers);
    return true;
  }
  if (nodesInto(*this, source, false) || pathsInto(*this, source, false)) return true;
  auto const* const many = as<SoMField>(source);
  bool const notify = enableNotify(false);
  bool ok = true;
  if (auto* const string = as<SoSFString>(*this)) {
    string->setValue(firstText(source));
  } else if (auto* const name = as<SoSFName>(*this)) {
    name->setValue(SbName(firstText(source)));
  } else if (auto* const strings = as<SoMFString>(*this)) {
    std::vector<SbString> texts;
    for (int i = 0; many && i < many->getNum(); ++i) many->get1(i, texts.emplace_back());
    if (!many) texts.push_back(firstText(source));
    strings->setValues(std::move(texts));
  } else if (auto* const values = as<SoMField>(*this); values && as<SoMFString>(source)) {
    auto const& texts = *as<SoMFString>(source);
    std::unique_ptr<SoField> const trial(static_cast<SoField*>(getTypeId().createInstance()));
    auto& parsed = static_cast<SoMField&>(*trial);
    parsed.links().parsedFor = this;
    for (int i = 0; ok && i < texts.getNum(); ++i) {
      ok = parsed.set1(i, texts[i].c_str());
      if (!ok) *reason = SbString("'" + texts[i].str() + "' is no value of it");
    }
    if (ok) takeValueOf(parsed);
  } else if (many && many->getNum() == 0 && !as<SoMField>(*this)) {
    // Nothing to take.
  } else {
    ok = set(firstText(source).c_str(), reason);
  }
  enableNotify(notify);
  return ok;
}
