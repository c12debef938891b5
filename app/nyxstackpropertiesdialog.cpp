#include "app/nyxstackpropertiesdialog.h"

#include "app/core/nyxactionstep.h"
#include "app/core/nyxeventbatch.h"
#include "app/core/nyxstack.h"
#include "app/nyxstackpropertieseditor.h"

NYXStackPropertiesDialog::NYXStackPropertiesDialog(NYXStack& openStack, QWidget* parent)
  : NYXStackDialog(openStack, "stackPropertiesDialog", tr("Stack properties"), parent),
    _editor(new NYXStackPropertiesEditor(openStack, this))
{
  layOut(*_editor, QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel);
  connect(_editor, &NYXStackPropertiesEditor::edited, this, &NYXStackPropertiesDialog::updateButtons);
  finish(90, 26);
}

void NYXStackPropertiesDialog::change()
{
  if (!_editor->isChanged()) return;
  const NYXEventBatch batch;
  NYXActionStep step(stack().history());
  _editor->apply(step);
}

void NYXStackPropertiesDialog::refresh()
{
  _editor->refresh();
  updateButtons();
}

void NYXStackPropertiesDialog::updateButtons()
{
  enableApplying(_editor->refusal().isEmpty(), _editor->isChanged());
}
