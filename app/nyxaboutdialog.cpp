#include "app/nyxaboutdialog.h"

#include <QCoreApplication>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

NYXAboutDialog::NYXAboutDialog(QWidget* parent) : QDialog(parent)
{
  setObjectName("aboutDialog");
  setWindowTitle(QCoreApplication::translate("NYXAboutDialog", "About Mirelo"));

  auto* logo = new QLabel(this);
  logo->setObjectName("logo");
  logo->setPixmap(QIcon(":/icons/mirelo.svg").pixmap(125, 100));
  logo->setAlignment(Qt::AlignCenter);
  auto* text = new QLabel(
      QCoreApplication::translate("NYXAboutDialog", "<h2>Mirelo %1</h2>"
                                                    "<p>3D reconstruction and measurement of biological structures<br/>"
                                                    "from stacks of slice images.</p>"
                                                    "<p>Free software under the GNU General Public License,<br/>"
                                                    "version 3 or later.</p>"
                                                    "<p>Built with Qt, libtiff, FFTW, OpenGL and OpenMP.</p>")
          .arg(MIRELO_VERSION),
      this);
  text->setObjectName("text");
  text->setAlignment(Qt::AlignCenter);
  auto* okButton = new QPushButton(" OK ", this);
  okButton->setObjectName("okButton");
  okButton->setDefault(true);
  connect(okButton, &QPushButton::clicked, this, &QDialog::accept);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(logo);
  layout->addWidget(text);
  layout->addWidget(okButton, 0, Qt::AlignCenter);
  layout->setSizeConstraint(QLayout::SetFixedSize);
}
