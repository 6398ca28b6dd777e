// The editor for an image, used by hand.

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QSpinBox>
#include <QToolButton>
#include <QWheelEvent>

#include "kestrava/base/SbImageReader.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTexture2.h"
#include "kestrava/nodes/SoTexture3.h"
#include "tests/extender_base/EditorTest.h"
#include "vnt/QtText.h"

class ImageTest : public EditorTest {
 public:
  ImageTest() {
    auto* const scene = new SoSeparator;
    texture = new SoTexture2;
    // Below red and half transparent green, above blue and white.
    texture->image =
        SbImage(SbVec2i32(2, 2), 4, {255, 0, 0, 255, 0, 255, 0, 128, 0, 0, 255, 255, 255, 255, 255, 255});
    original = image();
    scene->addChild(texture);
    edit(scene, "renderCaching");
    edit(texture, "image");
  }

  SbImage image() const { return texture->image.getValue(); }
  QLineEdit* line(char const* name) const { return find<QLineEdit>(name); }
  void press(char const* button) const { QTest::mouseClick(find<QToolButton>(button), Qt::LeftButton); }
  /// The colour in the middle of a quarter of the preview.
  QColor shown(double x, double y) const {
    auto* const preview = find<QWidget>("imagePreview");
    QImage const picture = preview->grab().toImage();
    // It stands at the top, in the middle, square here.
    int const side = qMin(64, qMin(picture.width(), picture.height()) - 4);
    return picture.pixelColor(picture.width() / 2 + qRound((x - 0.5) * side), 2 + qRound(y * side));
  }
  void answer(char const* dialogName, QString const& path) const {
    auto* const dialog = find<QFileDialog>(dialogName);
    ASSERT_TRUE(dialog);
    ASSERT_TRUE(waitFor([&] { return dialog->isVisible(); }));
    auto* const name = dialog->findChild<QLineEdit*>("fileNameEdit");
    ASSERT_TRUE(name);
    name->setText(path); // typed, it would open a list of completions
    QTest::keyClick(name, Qt::Key_Return);
  }

  SoTexture2* texture;
  SbImage original;
};

namespace {

TEST_F(ImageTest, ThePreviewShowsRowsFromTheBottomAndWhatIsTransparent) {
  EXPECT_EQ(shown(0.25, 0.75), QColor(255, 0, 0));
  EXPECT_EQ(shown(0.25, 0.25), QColor(0, 0, 255));
  EXPECT_EQ(shown(0.75, 0.25), QColor(255, 255, 255));
  QColor const mixed = shown(0.75, 0.75);
  EXPECT_GT(mixed.green(), mixed.red());
  EXPECT_GT(mixed.red(), 50) << "nothing of the checkerboard can be seen";
  texture->image = SbImage(SbVec2i32(1, 1), 2, {100, 255});
  EXPECT_TRUE(waitFor([&] { return shown(0.3, 0.3) == QColor(100, 100, 100); }));
  EXPECT_EQ(line("imageWidth")->text(), "1");
  EXPECT_EQ(find<QComboBox>("imageComponents")->currentText(), "2, grey and alpha");
  texture->image = SbImage();
  EXPECT_TRUE(waitFor([&] { return !line("imageWidth")->isEnabled(); }));
  EXPECT_FALSE(find<QToolButton>("imageSave")->isEnabled());
}

TEST_F(ImageTest, ComponentsAndSizeAreConvertedAndUndone) {
  auto* const components = find<QComboBox>("imageComponents");
  components->setFocus();
  QTest::keyClick(components, Qt::Key_Up);
  EXPECT_EQ(image(), SbImage(SbVec2i32(2, 2), 3, {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255}));
  QTest::keyClick(components, Qt::Key_Up);
  EXPECT_EQ(image().getNumComponents(), 2);
  QTest::keyClick(components, Qt::Key_Up);
  EXPECT_EQ(image().getNumComponents(), 1);
  EXPECT_EQ(*image().getPixel(1, 1), 255);
  EXPECT_EQ(countSteps(), 3);
  for (int i = 0; i < 3; ++i) undo();
  EXPECT_EQ(image(), original);

  type(line("imageWidth"), "2*2");
  EXPECT_EQ(image().getSize(), SbVec3i32(4, 2, 0));
  type(line("imageHeight"), "1");
  EXPECT_EQ(image().getSize(), SbVec3i32(4, 1, 0));
  type(line("imageHeight"), "0");
  EXPECT_FALSE(problem().isEmpty());
  EXPECT_EQ(line("imageHeight")->text(), "0");
  QTest::keyClick(line("imageHeight"), Qt::Key_Escape);
  EXPECT_EQ(line("imageHeight")->text(), "1");
  type(line("imageHeight"), "32768");
  type(line("imageWidth"), "32768");
  EXPECT_TRUE(problem().contains("too much memory")) << qPrintable(problem());
  EXPECT_EQ(line("imageWidth")->text(), "4");
  EXPECT_EQ(countSteps(), 3);
  for (int i = 0; i < 3; ++i) undo();
  EXPECT_EQ(image(), original);
}

TEST_F(ImageTest, FilesAreSavedAndLoaded) {
  QString const path = folder() + "/a picture.png";
  press("imageSave");
  answer("imageSaveDialog", path.chopped(4));
  ASSERT_TRUE(waitFor([&] { return QFileInfo::exists(path); })) << "the name has got no ending";
  EXPECT_EQ(problem(), "");
  SbImage saved;
  EXPECT_EQ(SbImageReader::read(toSbString(path), saved), "");
  EXPECT_EQ(saved, original);
  EXPECT_EQ(countSteps(), 0);

  press("imageClear");
  EXPECT_TRUE(image().isEmpty());
  press("imageLoad");
  answer("imageLoadDialog", path);
  EXPECT_TRUE(waitFor([&] { return image() == original; }));
  EXPECT_EQ(countSteps(), 2);
  undo();
  EXPECT_TRUE(image().isEmpty());
  undo();
  EXPECT_EQ(image(), original);

  QString const wrong = writeFile("wrong.png", "no picture at all");
  press("imageLoad");
  answer("imageLoadDialog", wrong);
  EXPECT_TRUE(waitFor([&] { return problem().contains("wrong.png"); })) << qPrintable(problem());
  EXPECT_EQ(image(), original);
}

TEST_F(ImageTest, TheClipboardTakesAndGivesImages) {
  press("imageCopy");
  press("imageClear");
  auto* const preview = find<QWidget>("imagePreview");
  preview->setFocus();
  QTest::keyClick(preview, Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(image(), original);
  QImage grey(3, 1, QImage::Format_Grayscale8);
  grey.fill(7);
  QApplication::clipboard()->setImage(grey);
  press("imagePaste");
  EXPECT_EQ(image(), SbImage(SbVec2i32(3, 1), 1, {7, 7, 7}));
  QTest::keyClick(preview, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->image().size(), QSize(3, 1));
  QApplication::clipboard()->setText("words");
  press("imagePaste");
  EXPECT_EQ(problem(), "There is no image on the clipboard.");
  EXPECT_EQ(countSteps(), 3);
}

TEST_F(ImageTest, AWheelThatScrollsPastConvertsNothing) {
  auto* const list = find<QComboBox>("imageComponents");
  EXPECT_EQ(list->focusPolicy(), Qt::StrongFocus);
  auto const turn = [&] {
    QPointF const at = list->rect().center();
    QWheelEvent wheel(at, list->mapToGlobal(at), {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(list, &wheel);
  };
  find<QToolButton>("imageCopy")->setFocus();
  turn();
  EXPECT_EQ(image(), original);
  list->setFocus();
  turn();
  EXPECT_EQ(image().getNumComponents(), 3);
}

TEST_F(ImageTest, SlicesAreShownAndConvertedTogether) {
  SoRef<SoTexture3> const deep(new SoTexture3);
  deep->images = SbImage(SbVec3i32(1, 1, 3), 1, {10, 20, 30});
  edit(deep, "images");
  EXPECT_EQ(shown(0.3, 0.3), QColor(10, 10, 10));
  auto* const slice = find<QSpinBox>("imageSlice");
  slice->setFocus();
  QTest::keyClick(slice, Qt::Key_Up);
  QTest::keyClick(slice, Qt::Key_Up);
  EXPECT_EQ(shown(0.3, 0.3), QColor(30, 30, 30));
  type(line("imageWidth"), "2");
  EXPECT_EQ(deep->images.getValue(), SbImage(SbVec3i32(2, 1, 3), 1, {10, 10, 20, 20, 30, 30}));
  undo();
  EXPECT_EQ(deep->images.getValue().getNumBytes(), 3u);
}

} // namespace
