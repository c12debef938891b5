#include "app/nyxslicepropertiesdialog.h"

#include "app/core/nyxactionstep.h"
#include "app/core/nyxeventbatch.h"
#include "app/core/nyxstack.h"
#include "app/nyxslicepropertieseditor.h"

NYXSlicePropertiesDialog::NYXSlicePropertiesDialog(NYXStack& openStack, const std::vector<StackSlice*>& slices,
                                                   QWidget* parent)
  : NYXStackDialog(openStack, "slicePropertiesDialog", tr("Slice properties"), parent),
    _editor(new NYXSlicePropertiesEditor(openStack, slices, this))
{
  layOut(*_editor, QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel);
  connect(_editor, &NYXSlicePropertiesEditor::edited, this, &NYXSlicePropertiesDialog::updateButtons);
  connect(_editor, &NYXSlicePropertiesEditor::refused, this, &NYXSlicePropertiesDialog::showMessage);
  finish(90, 20);
}

void NYXSlicePropertiesDialog::change()
{
  if (!_editor->isChanged()) return;
  const NYXEventBatch batch;
  NYXActionStep step(stack().history());
  _editor->apply(step);
}

void NYXSlicePropertiesDialog::refresh()
{
  _editor->refresh();
  updateButtons();
}

void NYXSlicePropertiesDialog::updateButtons()
{
  enableApplying(_editor->refusal().isEmpty(), _editor->isChanged());
}

void NYXSlicePropertiesDialog::processSliceAction(NYXSliceAction& action)
{
  _editor->forgetMissing(); // before anything looks at a slice that is gone
  if (_editor->getSlices().empty()) return reject();
  NYXStackDialog::processSliceAction(action);
}
