#include "app/nyxrootbrowser.h"

#include "app/nyxslicelistwidget.h"
#include "app/nyxstacklistwidget.h"

#include <QCoreApplication>
#include <QLabel>
#include <QVBoxLayout>

NYXRootBrowser::NYXRootBrowser(QWidget* parent)
  : QWidget(parent), _stackList(new NYXStackListWidget(this)), _sliceList(new NYXSliceListWidget(this))
{
  setObjectName("rootBrowser");
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new QLabel(QCoreApplication::translate("NYXRootBrowser", "Stacks"), this));
  layout->addWidget(_stackList, 1);
  layout->addWidget(new QLabel(QCoreApplication::translate("NYXRootBrowser", "Slices"), this));
  layout->addWidget(_sliceList, 3);
}
