#include "vantle/session/VntNodeInfo.h"

#include <QCoreApplication>
#include <QHash>
#include <vector>

#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/draggers/SoDragger.h"
#include "kestrava/nodes/SoBackground.h"
#include "kestrava/nodes/SoBaseColor.h"
#include "kestrava/nodes/SoCallback.h"
#include "kestrava/nodes/SoCamera.h"
#include "kestrava/nodes/SoClipPlaneManip.h"
#include "kestrava/nodes/SoColorIndex.h"
#include "kestrava/nodes/SoCoordinate3.h"
#include "kestrava/nodes/SoCoordinate4.h"
#include "kestrava/nodes/SoDirectionalLightManip.h"
#include "kestrava/nodes/SoDrawStyle.h"
#include "kestrava/nodes/SoEventCallback.h"
#include "kestrava/nodes/SoFont.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoLight.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoMaterialBinding.h"
#include "kestrava/nodes/SoNormal.h"
#include "kestrava/nodes/SoPickStyle.h"
#include "kestrava/nodes/SoPointLightManip.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoShape.h"
#include "kestrava/nodes/SoShapeHints.h"
#include "kestrava/nodes/SoSpotLightManip.h"
#include "kestrava/nodes/SoSwitch.h"
#include "kestrava/nodes/SoTexture2.h"
#include "kestrava/nodes/SoTexture2Transform.h"
#include "kestrava/nodes/SoTexture3.h"
#include "kestrava/nodes/SoTextureCoordinate2.h"
#include "kestrava/nodes/SoTextureCoordinate3.h"
#include "kestrava/nodes/SoTextureCoordinateBinding.h"
#include "kestrava/nodes/SoTextureCoordinateFunction.h"
#include "kestrava/nodes/SoTransformManip.h"
#include "kestrava/nodes/SoTransformation.h"
#include "kestrava/nodes/SoVertexProperty.h"

QPixmap* VntNodeInfo::m_unknownPixmap = nullptr;
QPixmap* VntNodeInfo::m_appearancePixmap = nullptr;
QPixmap* VntNodeInfo::m_callbackPixmap = nullptr;
QPixmap* VntNodeInfo::m_cameraPixmap = nullptr;
QPixmap* VntNodeInfo::m_groupPixmap = nullptr;
QPixmap* VntNodeInfo::m_lightPixmap = nullptr;
QPixmap* VntNodeInfo::m_manipulatorPixmap = nullptr;
QPixmap* VntNodeInfo::m_nodekitPixmap = nullptr;
QPixmap* VntNodeInfo::m_propertyPixmap = nullptr;
QPixmap* VntNodeInfo::m_selectionPixmap = nullptr;
QPixmap* VntNodeInfo::m_separatorPixmap = nullptr;
QPixmap* VntNodeInfo::m_shapePixmap = nullptr;
QPixmap* VntNodeInfo::m_switchPixmap = nullptr;
QPixmap* VntNodeInfo::m_topologyPixmap = nullptr;
QPixmap* VntNodeInfo::m_transformPixmap = nullptr;

namespace {

struct Rule {
  SoType base;
  Vnt::NodeCategory category;
};

/// The first rule whose base a type derives from decides.
Vnt::NodeCategory classify(SoType type) {
  static Rule const rules[] = {
      {SoDragger::getClassTypeId(), Vnt::Manipulator},
      {SoSelection::getClassTypeId(), Vnt::Selection},
      {SoSeparator::getClassTypeId(), Vnt::Separator},
      {SoSwitch::getClassTypeId(), Vnt::Switch},
      {SoGroup::getClassTypeId(), Vnt::Group},
      {SoTransformManip::getClassTypeId(), Vnt::Manipulator},
      {SoTransformation::getClassTypeId(), Vnt::Transform},
      {SoTexture2Transform::getClassTypeId(), Vnt::Transform},
      {SoCallback::getClassTypeId(), Vnt::Callback},
      {SoEventCallback::getClassTypeId(), Vnt::Callback},
      {SoShape::getClassTypeId(), Vnt::Shape},
      {SoCamera::getClassTypeId(), Vnt::Camera},
      {SoDirectionalLightManip::getClassTypeId(), Vnt::Manipulator},
      {SoPointLightManip::getClassTypeId(), Vnt::Manipulator},
      {SoSpotLightManip::getClassTypeId(), Vnt::Manipulator},
      {SoLight::getClassTypeId(), Vnt::Light},
      {SoClipPlaneManip::getClassTypeId(), Vnt::Manipulator},
      {SoCoordinate3::getClassTypeId(), Vnt::Topology},
      {SoCoordinate4::getClassTypeId(), Vnt::Topology},
      {SoNormal::getClassTypeId(), Vnt::Topology},
      {SoTextureCoordinate2::getClassTypeId(), Vnt::Topology},
      {SoTextureCoordinate3::getClassTypeId(), Vnt::Topology},
      {SoVertexProperty::getClassTypeId(), Vnt::Topology},
      {SoMaterial::getClassTypeId(), Vnt::Appearance},
      {SoBackground::getClassTypeId(), Vnt::Appearance},
      {SoMaterialBinding::getClassTypeId(), Vnt::Appearance},
      {SoBaseColor::getClassTypeId(), Vnt::Appearance},
      {SoColorIndex::getClassTypeId(), Vnt::Appearance},
      {SoDrawStyle::getClassTypeId(), Vnt::Appearance},
      {SoFont::getClassTypeId(), Vnt::Appearance},
      {SoTexture2::getClassTypeId(), Vnt::Appearance},
      {SoTexture3::getClassTypeId(), Vnt::Appearance},
      {SoTextureCoordinateBinding::getClassTypeId(), Vnt::Appearance},
      {SoTextureCoordinateFunction::getClassTypeId(), Vnt::Appearance},
      {SoShapeHints::getClassTypeId(), Vnt::Appearance},
      {SoPickStyle::getClassTypeId(), Vnt::Appearance},
      {SoBaseKit::getClassTypeId(), Vnt::Nodekit},
  };
  for (Rule const& rule : rules) {
    if (type.isDerivedFrom(rule.base)) return rule.category;
  }
  return Vnt::Property;
}

struct Names {
  Vnt::NodeCategory category;
  char const* name; // also that of the picture, in lower case
};
constexpr Names names[] = {
    {Vnt::Appearance, QT_TRANSLATE_NOOP("VntNodeInfo", "Appearance")},
    {Vnt::Callback, QT_TRANSLATE_NOOP("VntNodeInfo", "Callback")},
    {Vnt::Camera, QT_TRANSLATE_NOOP("VntNodeInfo", "Camera")},
    {Vnt::Group, QT_TRANSLATE_NOOP("VntNodeInfo", "Group")},
    {Vnt::Light, QT_TRANSLATE_NOOP("VntNodeInfo", "Light")},
    {Vnt::Manipulator, QT_TRANSLATE_NOOP("VntNodeInfo", "Manipulator")},
    {Vnt::Nodekit, QT_TRANSLATE_NOOP("VntNodeInfo", "Nodekit")},
    {Vnt::Property, QT_TRANSLATE_NOOP("VntNodeInfo", "Property")},
    {Vnt::Selection, QT_TRANSLATE_NOOP("VntNodeInfo", "Selection")},
    {Vnt::Separator, QT_TRANSLATE_NOOP("VntNodeInfo", "Separator")},
    {Vnt::Shape, QT_TRANSLATE_NOOP("VntNodeInfo", "Shape")},
    {Vnt::Switch, QT_TRANSLATE_NOOP("VntNodeInfo", "Switch")},
    {Vnt::Topology, QT_TRANSLATE_NOOP("VntNodeInfo", "Topology")},
    {Vnt::Transform, QT_TRANSLATE_NOOP("VntNodeInfo", "Transform")},
    {Vnt::ManipulatorAlias, QT_TRANSLATE_NOOP("VntNodeInfo", "Manipulator")},
    {Vnt::AppearanceAlias, QT_TRANSLATE_NOOP("VntNodeInfo", "Appearance")},
};

char const* nameOf(Vnt::NodeCategory category) {
  for (Names const& entry : names) {
    if (entry.category == category) return entry.name;
  }
  return nullptr;
}

QString resourceOf(Vnt::NodeCategory category) {
  char const* const name = nameOf(category);
  return QStringLiteral(":/Vantle_icons/Icons/%1.png")
      .arg(name ? QString::fromLatin1(name).toLower() : QStringLiteral("help"));
}

unsigned cleanings = 0;

/// The pixmaps of a category, used in turn from one cleaning to the next.
std::array<QPixmap*, 2>& keptPixmaps(int category) {
  static auto& kept = *new QHash<int, std::array<QPixmap*, 2>>;
  return kept[category];
}

/// Not destroyed at exit, when there may be no application any more.
QHash<int, QIcon>& icons() {
  static auto& cache = *new QHash<int, QIcon>;
  return cache;
}

} // namespace

VntNodeInfo::VntNodeInfo(SoNode* node)
    : m_node(node), m_category(category(node)), m_pixmap(pixmap(m_category)) {}

Vnt::NodeCategory VntNodeInfo::category(SoType type) {
  // Asked for every row of the tree: a type is sorted once.
  static std::vector<int> known;
  auto const index = static_cast<std::size_t>(type.getIndex());
  if (index >= known.size()) known.resize(index + 64, -1);
  if (known[index] < 0) known[index] = classify(type);
  return static_cast<Vnt::NodeCategory>(known[index]);
}

Vnt::NodeCategory VntNodeInfo::category(SoNode* node) { return category(node->getTypeId()); }

QString VntNodeInfo::categoryName(Vnt::NodeCategory category) {
  char const* const name = nameOf(category);
  return name ? QCoreApplication::translate("VntNodeInfo", name) : QString();
}

QString VntNodeInfo::iconPath(Vnt::NodeCategory category) {
  char const* const name = nameOf(category);
  return name ? QStringLiteral("treeview.") + QString::fromLatin1(name).toLower() : QString();
}

QPixmap** VntNodeInfo::slot(Vnt::NodeCategory category) {
  switch (category) {
    case Vnt::Unknown:
      return &m_unknownPixmap;
    case Vnt::Appearance:
      return &m_appearancePixmap;
    case Vnt::Callback:
      return &m_callbackPixmap;
    case Vnt::Camera:
      return &m_cameraPixmap;
    case Vnt::Group:
      return &m_groupPixmap;
    case Vnt::Light:
      return &m_lightPixmap;
    case Vnt::Manipulator:
      return &m_manipulatorPixmap;
    case Vnt::Nodekit:
      return &m_nodekitPixmap;
    case Vnt::Property:
      return &m_propertyPixmap;
    case Vnt::Selection:
      return &m_selectionPixmap;
    case Vnt::Separator:
      return &m_separatorPixmap;
    case Vnt::Shape:
      return &m_shapePixmap;
    case Vnt::Switch:
      return &m_switchPixmap;
    case Vnt::Topology:
      return &m_topologyPixmap;
    case Vnt::Transform:
      return &m_transformPixmap;
    default:
      return nullptr;
  }
}

QPixmap* VntNodeInfo::pixmap(Vnt::NodeCategory category) {
  QPixmap** const cached = slot(category);
  if (!cached) return nullptr;
  if (!*cached) {
    QPixmap*& kept = keptPixmaps(category)[cleanings % 2];
    if (!kept) kept = new QPixmap;
    *kept = QPixmap(resourceOf(category)); // the application may be another one than the last time
    *cached = kept;
  }
  return *cached;
}

QIcon VntNodeInfo::icon(Vnt::NodeCategory category) {
  // A pixmap has one resolution; an icon picks the right one of its pictures.
  if (!slot(category)) return QIcon();
  QIcon& icon = icons()[category];
  if (icon.isNull()) icon = QIcon(resourceOf(category));
  return icon;
}

void VntNodeInfo::clean() {
  ++cleanings;
  icons().clear();
  for (int category = 0; category <= Vnt::Transform; category = category ? category * 2 : 1) {
    *slot(static_cast<Vnt::NodeCategory>(category)) = nullptr;
  }
}
