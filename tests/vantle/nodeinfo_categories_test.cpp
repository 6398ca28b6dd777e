// Categories of nodes, their names and pictures.

#include <gtest/gtest.h>

#include "kestrava/kits/SoSeparatorKit.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoSeparator.h"
#include "vnt/QtText.h"
#include "vantle/session/VntNodeInfo.h"

namespace {

QImage picture(QPixmap const& pixmap) { return pixmap.toImage().convertToFormat(QImage::Format_ARGB32); }

TEST(NodeInfoTest, EveryTypeHasItsCategory) {
  struct {
    char const* type;
    Vnt::NodeCategory category;
  } const cases[] = {
      {"Dragger", Vnt::Manipulator},
      {"Group", Vnt::Group},
      {"Selection", Vnt::Selection},
      {"Separator", Vnt::Separator},
      {"Annotation", Vnt::Separator},
      {"Switch", Vnt::Switch},
      {"LOD", Vnt::Group},
      {"Transform", Vnt::Transform},
      {"TransformManip", Vnt::Manipulator},
      {"Texture2Transform", Vnt::Transform},
      {"Callback", Vnt::Callback},
      {"EventCallback", Vnt::Callback},
      {"IndexedFaceSet", Vnt::Shape},
      {"Text2", Vnt::Shape},
      {"PerspectiveCamera", Vnt::Camera},
      {"PointLight", Vnt::Light},
      {"PointLightManip", Vnt::Manipulator},
      {"SpotLightManip", Vnt::Manipulator},
      {"DirectionalLightManip", Vnt::Manipulator},
      {"DirectionalLight", Vnt::Light},
      {"ClipPlaneManip", Vnt::Manipulator},
      {"ClipPlane", Vnt::Property},
      {"Coordinate3", Vnt::Topology},
      {"Coordinate4", Vnt::Topology},
      {"Normal", Vnt::Topology},
      {"TextureCoordinate2", Vnt::Topology},
      {"TextureCoordinate3", Vnt::Topology},
      {"VertexProperty", Vnt::Topology},
      {"Material", Vnt::Appearance},
      {"GradientBackground", Vnt::Appearance},
      {"MaterialBinding", Vnt::Appearance},
      {"BaseColor", Vnt::Appearance},
      {"ColorIndex", Vnt::Appearance},
      {"DrawStyle", Vnt::Appearance},
      {"Font", Vnt::Appearance},
      {"Texture2", Vnt::Appearance},
      {"Texture3", Vnt::Appearance},
      {"TextureCoordinateBinding", Vnt::Appearance},
      {"TextureCoordinateFunction", Vnt::Appearance},
      {"ShapeHints", Vnt::Appearance},
      {"PickStyle", Vnt::Appearance},
      {"SeparatorKit", Vnt::Nodekit},
      {"NodeKitListPart", Vnt::Property},
      {"File", Vnt::Property},
      {"WWWInline", Vnt::Property},
      {"Complexity", Vnt::Property},
  };
  for (auto const& c : cases) {
    SoType const type = SoType::fromName(c.type);
    ASSERT_FALSE(type.isBad()) << c.type;
    EXPECT_EQ(VntNodeInfo::category(type), c.category) << c.type;
  }
}

TEST(NodeInfoTest, NamesKeysAndPictures) {
  for (int value = 1; value <= Vnt::Transform; value *= 2) {
    auto const category = static_cast<Vnt::NodeCategory>(value);
    QString const name = VntNodeInfo::categoryName(category);
    EXPECT_EQ(VntNodeInfo::iconPath(category), "treeview." + name.toLower());
    QPixmap* const pixmap = VntNodeInfo::pixmap(category);
    ASSERT_TRUE(pixmap) << qPrintable(name);
    EXPECT_EQ(picture(*pixmap), picture(QPixmap(":/Vantle_icons/Icons/" + name.toLower() + ".png")))
        << qPrintable(name);
    EXPECT_EQ(VntNodeInfo::pixmap(category), pixmap);
    EXPECT_EQ(picture(VntNodeInfo::icon(category).pixmap(16, 16)), picture(*pixmap));
  }
  EXPECT_TRUE(VntNodeInfo::categoryName(Vnt::Unknown).isEmpty());
  EXPECT_TRUE(VntNodeInfo::iconPath(Vnt::Unknown).isEmpty());
  EXPECT_EQ(picture(*VntNodeInfo::pixmap(Vnt::Unknown)), picture(QPixmap(":/Vantle_icons/Icons/help.png")));
  for (auto [alias, as] :
       {std::pair{Vnt::ManipulatorAlias, Vnt::Manipulator}, {Vnt::AppearanceAlias, Vnt::Appearance}}) {
    EXPECT_EQ(VntNodeInfo::categoryName(alias), VntNodeInfo::categoryName(as));
    EXPECT_EQ(VntNodeInfo::iconPath(alias), VntNodeInfo::iconPath(as));
    EXPECT_FALSE(VntNodeInfo::pixmap(alias));
  }
}

TEST(NodeInfoTest, CleanForgetsButKeepsThePixmaps) {
  SoRef<SoSeparator> const node(new SoSeparator);
  VntNodeInfo const info(node);
  QPixmap* const before = VntNodeInfo::pixmap(node.get());
  EXPECT_EQ(info.getPixmap(), before);
  EXPECT_EQ(info.getCategory(), Vnt::Separator);
  QImage const image = before->toImage();
  VntNodeInfo::clean();
  EXPECT_EQ(before->toImage(), image) << "a plug-in may still hold it";
  EXPECT_NE(VntNodeInfo::pixmap(node.get()), before);
}

} // namespace
