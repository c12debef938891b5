#include "slice/nyxsliceeditwidgetstatusbar.h"

#include <QLabel>

NYXSliceEditWidgetStatusBar::NYXSliceEditWidgetStatusBar(QWidget* parent)
  : NYXSliceWidgetStatusBar(parent), _editMode(addField("editModeField", tr("The tool at work"), "THRESHOLD"))
{
  setObjectName("sliceEditStatusBar");
  setEditModeInfo("READY");
}

void NYXSliceEditWidgetStatusBar::setEditModeInfo(const QString& text)
{
  _editMode->setText(text);
}
