// The editor for an image.

#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QMimeData>
#include <QPointer>
#include <QResizeEvent>
#include <QSpinBox>
#include <QToolButton>
#include <QUrl>

#include "extender_base/VntEditorTable.h"
#include "extender_base/VntEditorWidget.h"
#include "extender_base/VntImagePreview.h"
#include "extender_base/VntImages.h"
#include "extender_base/VntNumberEdit.h"
#include "kestrava/base/SbImageReader.h"
#include "kestrava/base/SbImageWriter.h"
#include "kestrava/fields/SoSFImage.h"
#include "vnt/QtText.h"
#include "vnt/VntFieldEdit.h"

namespace {

constexpr int LARGEST_EXTENT = 1 << 15;

/// Preview, size and components, files and clipboard.
class ImageEditor : public VntEditorWidget {
 public:
  ImageEditor(VntFieldEdit* edit, QWidget* parent);

 private:
  void buildNumbers(QGridLayout* grid);
  void buildButtons(QGridLayout* grid);
  QToolButton* makeButton(char const* name, QString const& text, QString const& tip,
                          void (ImageEditor::*action)());
  void showValue() override;
  QString valueText() const override;
  void escape() override;
  void resizeEvent(QResizeEvent* event) override;

  SbImage image() const;
  void setImage(SbImage const& image, QString const& what);
  void resize(int width, int height);
  void convert(int components);
  void takeMime(QMimeData const* data);
  void load(QString const& path);
  void save(QString const& path);
  QFileDialog* openDialog(char const* name, QString const& title);
  void askLoad();
  void askSave();
  void copy();
  void paste();
  void clear();

  QBoxLayout* m_halves;
  VntImagePreview* m_preview;
  VntNumberEdit *m_width, *m_height;
  QComboBox* m_components;
  QLabel* m_sliceLabel;
  QSpinBox* m_slice;
  QLabel* m_bytes;
  QToolButton *m_save = nullptr, *m_copy = nullptr, *m_clear = nullptr;
  QPointer<QFileDialog> m_dialog;
};

ImageEditor::ImageEditor(VntFieldEdit* edit, QWidget* parent)
    : VntEditorWidget(edit, parent),
      m_halves(new QBoxLayout(QBoxLayout::TopToBottom)),
      m_preview(new VntImagePreview(this)),
      m_width(new VntNumberEdit(VntNumberEdit::INTEGER, this)),
      m_height(new VntNumberEdit(VntNumberEdit::INTEGER, this)),
      m_components(new QComboBox(this)),
      m_sliceLabel(new QLabel(tr("Slice"), this)),
      m_slice(new QSpinBox(this)),
      m_bytes(new QLabel(this)) {
  m_preview->setObjectName("imagePreview");
  m_preview->setAccessibleName(tr("Image"));
  m_preview->setToolTip(tr("Drop an image or an image file here, or paste one"));
  connect(m_preview, &VntImagePreview::copyWanted, this, &ImageEditor::copy);
  connect(m_preview, &VntImagePreview::pasteWanted, this, &ImageEditor::paste);
  connect(m_preview, &VntImagePreview::dropped, this, &ImageEditor::takeMime);
  auto* const grid = new QGridLayout;
  grid->setHorizontalSpacing(8);
  grid->setVerticalSpacing(4);
  buildNumbers(grid);
  buildButtons(grid);
  grid->setColumnStretch(1, 1);
  auto* const side = new QVBoxLayout;
  side->addLayout(grid);
  side->addStretch();
  m_halves->setSpacing(8);
  m_halves->addWidget(m_preview, 1);
  m_halves->addLayout(side);
  content()->addLayout(m_halves, 1);
  setFocusProxy(m_preview);
}

void ImageEditor::buildNumbers(QGridLayout* grid) {
  m_width->setObjectName("imageWidth");
  m_height->setObjectName("imageHeight");
  int row = 0;
  for (auto [number, name] : {std::pair(m_width, tr("Width")), std::pair(m_height, tr("Height"))}) {
    auto* const label = new QLabel(name, this);
    label->setBuddy(number);
    number->setAccessibleName(name);
    number->setToolTip(tr("In pixels; the image is stretched to a new size"));
    number->setRange(1, LARGEST_EXTENT);
    grid->addWidget(label, row, 0);
    grid->addWidget(number, row++, 1);
    connect(number, &VntNumberEdit::typingChanged, this,
            [this] { setTyping(m_width->isTyping() || m_height->isTyping()); });
    connect(number, &VntNumberEdit::rejected, this,
            [this](QString const& why) { this->edit()->report(why); });
    // Each step of a drag would stretch what the step before has made of the image.
    number->setHandleShown(false);
    connect(number, &VntNumberEdit::dragCancelled, this, &ImageEditor::showValue);
  }
  connect(m_width, &VntNumberEdit::valueEntered, this,
          [this](double value) { resize(static_cast<int>(value), image().getHeight()); });
  connect(m_height, &VntNumberEdit::valueEntered, this,
          [this](double value) { resize(image().getWidth(), static_cast<int>(value)); });
  connect(m_width, &VntNumberEdit::dragFinished, this,
          [this] { resize(static_cast<int>(m_width->getValue()), image().getHeight()); });
  connect(m_height, &VntNumberEdit::dragFinished, this,
          [this] { resize(image().getWidth(), static_cast<int>(m_height->getValue())); });

  m_components->setObjectName("imageComponents");
  m_components->setAccessibleName(tr("Components"));
  m_components->setToolTip(
      tr("Converts the pixels: colours become grey by their lightness, new alpha is opaque, alpha that is "
         "taken away is lost"));
  m_components->addItems({tr("1, grey"), tr("2, grey and alpha"), tr("3, RGB"), tr("4, RGBA")});
  m_components->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  m_components->setMinimumContentsLength(8);
  connect(m_components, &QComboBox::activated, this, [this](int index) { convert(index + 1); });
  auto* const label = new QLabel(tr("Components"), this);
  label->setBuddy(m_components);
  grid->addWidget(label, row, 0);
  grid->addWidget(m_components, row++, 1);

  m_slice->setObjectName("imageSlice");
  m_slice->setToolTip(tr("Which slice of an image with a depth is shown"));
  m_sliceLabel->setBuddy(m_slice);
  connect(m_slice, &QSpinBox::valueChanged, this, [this](int slice) { m_preview->setImage(image(), slice); });
  grid->addWidget(m_sliceLabel, row, 0);
  grid->addWidget(m_slice, row++, 1);
  m_bytes->setObjectName("imageBytes");
  grid->addWidget(m_bytes, row, 0, 1, 2);
}

void ImageEditor::buildButtons(QGridLayout* grid) {
  auto* const files = new QHBoxLayout;
  auto* const clipboard = new QHBoxLayout;
  files->addWidget(
      makeButton("imageLoad", tr("Load..."), tr("Takes the image from a file"), &ImageEditor::askLoad));
  m_save = makeButton("imageSave", tr("Save..."), tr("Writes the image to a file"), &ImageEditor::askSave);
  files->addWidget(m_save);
  m_clear = makeButton("imageClear", tr("Clear"), tr("Makes the field hold no image"), &ImageEditor::clear);
  files->addWidget(m_clear);
  m_copy = makeButton("imageCopy", tr("Copy"), tr("Puts the image on the clipboard"), &ImageEditor::copy);
  clipboard->addWidget(m_copy);
  clipboard->addWidget(
      makeButton("imagePaste", tr("Paste"), tr("Takes the image from the clipboard"), &ImageEditor::paste));
  for (QHBoxLayout* row : {files, clipboard}) {
    row->setSpacing(4);
    row->addStretch();
    grid->addLayout(row, grid->rowCount(), 0, 1, 2);
  }
}

QToolButton* ImageEditor::makeButton(char const* name, QString const& text, QString const& tip,
                                     void (ImageEditor::*action)()) {
  auto* const button = new QToolButton(this);
  button->setObjectName(QLatin1String(name));
  button->setText(text);
  button->setToolTip(tip);
  button->setFocusPolicy(Qt::StrongFocus);
  connect(button, &QToolButton::clicked, this, action);
  return button;
}

void ImageEditor::resizeEvent(QResizeEvent* event) {
  constexpr int WIDE = 320;
  m_halves->setDirection(event->size().width() >= WIDE ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
  VntEditorWidget::resizeEvent(event);
}

SbImage ImageEditor::image() const {
  auto const* const field = edit()->getFieldAs<SoSFImage>();
  return field ? field->getValue() : SbImage();
}

void ImageEditor::showValue() {
  SbImage const shown = image();
  bool const isThere = !shown.isEmpty();
  m_width->setValue(shown.getWidth());
  m_height->setValue(shown.getHeight());
  m_components->setCurrentIndex(shown.getNumComponents() - 1);
  for (QWidget* widget :
       {static_cast<QWidget*>(m_width), static_cast<QWidget*>(m_height), static_cast<QWidget*>(m_components),
        static_cast<QWidget*>(m_save), static_cast<QWidget*>(m_copy), static_cast<QWidget*>(m_clear)})
    widget->setEnabled(isThere);
  bool const isDeep = shown.getDepth() > 1;
  m_slice->blockSignals(true);
  m_slice->setMaximum(std::max(shown.getDepth(), 1) - 1);
  m_slice->blockSignals(false);
  m_slice->setVisible(isDeep);
  m_sliceLabel->setVisible(isDeep);
  QString const bytes = locale().formattedDataSize(static_cast<qint64>(shown.getNumBytes()));
  m_bytes->setText(isDeep ? tr("%1 slices, %2").arg(shown.getDepth()).arg(bytes) : bytes);
  m_bytes->setVisible(isThere);
  m_preview->setImage(shown, m_slice->value());
}

QString ImageEditor::valueText() const {
  SbImage const now = image();
  return now.isEmpty() ? tr("no image")
                       : tr("%1 x %2, %3")
                             .arg(now.getWidth())
                             .arg(now.getHeight())
                             .arg(m_components->itemText(now.getNumComponents() - 1));
}

void ImageEditor::escape() {
  m_width->revert();
  m_height->revert();
  VntEditorWidget::escape();
}

void ImageEditor::setImage(SbImage const& image, QString const& what) {
  if (!edit()->getField()) return;
  edit()->set<SoSFImage>(image, what);
}

void ImageEditor::resize(int width, int height) {
  SbImage const before = image();
  if (before.isEmpty() || (width == before.getWidth() && height == before.getHeight())) return;
  SbImage const scaled = scaleImage(before, width, height);
  if (scaled.isEmpty()) {
    edit()->report(tr("An image of %1 x %2 pixels would take too much memory.").arg(width).arg(height));
    return showValue();
  }
  setImage(scaled, tr("Stretch %1").arg(edit()->getDescription()));
}

void ImageEditor::convert(int components) {
  SbImage const before = image();
  if (before.isEmpty() || components == before.getNumComponents()) return;
  SbImage const converted = convertImage(before, components);
  if (converted.isEmpty()) {
    edit()->report(tr("With %n component(s) the image would take too much memory.", nullptr, components));
    return showValue();
  }
  setImage(converted, tr("Convert %1").arg(edit()->getDescription()));
}

void ImageEditor::load(QString const& path) {
  SbImage loaded;
  std::string const problem = SbImageReader::read(toSbString(path), loaded);
  if (!problem.empty()) return edit()->report(QString::fromStdString(problem));
  setImage(loaded, tr("Load %1 into %2").arg(QFileInfo(path).fileName(), edit()->getDescription()));
}

void ImageEditor::save(QString const& path) {
  std::string const problem = SbImageWriter::write(toSbString(path), image());
  edit()->report(QString::fromStdString(problem));
}

QFileDialog* ImageEditor::openDialog(char const* name, QString const& title) {
  delete m_dialog;
  m_dialog = new QFileDialog(this, title);
  m_dialog->setObjectName(QLatin1String(name));
  m_dialog->setAttribute(Qt::WA_DeleteOnClose);
  // The folder of the last one, while the program runs.
  static QString folder;
  if (!folder.isEmpty()) m_dialog->setDirectory(folder);
  connect(m_dialog, &QFileDialog::fileSelected, this,
          [](QString const& path) { folder = QFileInfo(path).absolutePath(); });
  return m_dialog;
}

void ImageEditor::askLoad() {
  QFileDialog* const dialog = openDialog("imageLoadDialog", tr("Load Image"));
  dialog->setFileMode(QFileDialog::ExistingFile);
  dialog->setNameFilters(
      {tr("Images") + " (*.png *.jpg *.jpeg *.rgb *.rgba *.bw *.sgi *.tif *.tiff *.bmp *.tga)",
       tr("All files") + " (*)"});
  connect(dialog, &QFileDialog::fileSelected, this, &ImageEditor::load);
  dialog->open();
}

void ImageEditor::askSave() {
  QFileDialog* const dialog = openDialog("imageSaveDialog", tr("Save Image"));
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setDefaultSuffix("png");
  dialog->setNameFilters({"PNG (*.png)", "JPEG (*.jpg *.jpeg)", "TIFF (*.tif *.tiff)",
                          "SGI RGB (*.rgb *.rgba *.bw *.sgi)", "PostScript (*.ps *.eps)"});
  // A name without an ending gets that of the chosen kind.
  connect(dialog, &QFileDialog::filterSelected, dialog, [dialog](QString const& filter) {
    dialog->setDefaultSuffix(filter.section("*.", 1, 1).section(' ', 0, 0).remove(')'));
  });
  connect(dialog, &QFileDialog::fileSelected, this, &ImageEditor::save);
  dialog->open();
}

void ImageEditor::copy() {
  SbImage const now = image();
  if (now.isEmpty()) return;
  QImage const picture = toQImage(now, m_slice->value());
  if (picture.isNull()) return edit()->report(tr("The image is too large for the clipboard."));
  QApplication::clipboard()->setImage(picture);
  edit()->report({});
}

void ImageEditor::paste() { takeMime(QApplication::clipboard()->mimeData()); }

void ImageEditor::takeMime(QMimeData const* data) {
  for (QUrl const& url : data ? data->urls() : QList<QUrl>()) {
    if (url.isLocalFile()) return load(url.toLocalFile());
  }
  auto const pasted = data && data->hasImage() ? qvariant_cast<QImage>(data->imageData()) : QImage();
  if (pasted.isNull()) return edit()->report(tr("There is no image on the clipboard."));
  SbImage const taken = toSbImage(pasted);
  if (taken.isEmpty()) return edit()->report(tr("The image takes too much memory."));
  setImage(taken, tr("Paste into %1").arg(edit()->getDescription()));
}

void ImageEditor::clear() { setImage(SbImage(), tr("Clear %1").arg(edit()->getDescription())); }

} // namespace

void addImageEditors(VntEditorTable& table) {
  table.push_back({"SFImage", "Image", makeEditor<ImageEditor>});
}
