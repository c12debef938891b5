#include "slice/image/nyxcloseaction.h"

#include <QAction>
#include <QCoreApplication>
#include <QWidget>

void addCloseAction(QWidget& window)
{
  const auto text = [](const char* source) { return QCoreApplication::translate("addCloseAction", source); };
  auto* const close = new QAction(text("Close"), &window);
  close->setObjectName("close");
  close->setShortcut(QKeySequence("Ctrl+W"));
  close->setToolTip(text("Close this window (Ctrl+W)"));
  close->setStatusTip(text("Close this window"));
  QObject::connect(close, &QAction::triggered, &window, &QWidget::close);
  window.addAction(close);
}
