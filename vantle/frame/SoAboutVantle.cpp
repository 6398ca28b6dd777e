#include "vantle/frame/SoAboutVantle.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>

SoAboutVantle::SoAboutVantle(QWidget* parent) : QDialog(parent) {
  setWindowTitle(tr("About Vantle"));
  auto* icon = new QLabel(this);
  icon->setPixmap(QIcon(":/Vantle_icons/Icons/VantleIcon.png").pixmap(QSize(48, 48), devicePixelRatio()));
  auto* text =
      new QLabel(tr("<h3>Vantle %1</h3>"
                    "<p>Shows a scene graph while it lives: its tree, the fields of its nodes, its files.</p>"
                    "<p>Built with Qt %2. Distributed under the MIT licence.</p>")
                     .arg(QStringLiteral(VANTLE_VERSION), QString::fromLatin1(qVersion())),
                 this);
  text->setWordWrap(true);
  text->setTextInteractionFlags(Qt::TextSelectableByMouse);
  text->setMinimumWidth(320);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

  auto* layout = new QGridLayout(this);
  layout->addWidget(icon, 0, 0, Qt::AlignTop);
  layout->addWidget(text, 0, 1);
  layout->addWidget(buttons, 1, 0, 1, 2);
  layout->setSizeConstraint(QLayout::SetFixedSize);
}
