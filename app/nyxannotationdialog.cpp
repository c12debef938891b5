#include "app/nyxannotationdialog.h"

#include "app/core/actions/nyxslicepropertiesaction.h"
#include "app/core/actions/nyxstackpropertiesaction.h"
#include "app/core/nyxstack.h"
#include "model/storabletext.h"

#include <QPlainTextEdit>

namespace
{
bool comesBackUnchanged(const QString& text)
{
  const std::string note = text.toStdString();
  return importText(exportText(note)) == note && note.find_first_of("\t\r\v\f") == std::string::npos;
}
} // namespace

NYXAnnotationDialog::NYXAnnotationDialog(NYXStack& openStack, QWidget* parent)
  : NYXAnnotationDialog(openStack, nullptr, "stackAnnotationDialog",
                        tr("Annotate stack \"%1\"").arg(openStack.displayName()), parent)
{
}

NYXAnnotationDialog::NYXAnnotationDialog(NYXStack& openStack, StackSlice& slice, QWidget* parent)
  : NYXAnnotationDialog(openStack, &slice, "sliceAnnotationDialog",
                        tr("Annotate slice \"%1\"").arg(QString::fromStdString(slice.getName())), parent)
{
}

NYXAnnotationDialog::NYXAnnotationDialog(NYXStack& openStack, StackSlice* slice, const QString& name,
                                         const QString& title, QWidget* parent)
  : NYXStackDialog(openStack, name, title, parent), _slice(slice), _text(new QPlainTextEdit(this))
{
  _text->setObjectName("annotation");
  _text->setToolTip(tr("Notes that are saved with the stack"));
  _text->setTabChangesFocus(true); // a stack file cannot hold tabs
  layOut(*_text, QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel);
  connect(_text, &QPlainTextEdit::textChanged, this, &NYXAnnotationDialog::noteEdit);
  finish(70, 18);
}

QString NYXAnnotationDialog::annotation() const
{
  return QString::fromStdString(_slice ? _slice->getAnnotation() : stack().getAnnotation());
}

void NYXAnnotationDialog::noteEdit()
{
  _isChanged = true;
  const bool isStorable = comesBackUnchanged(_text->toPlainText());
  showMessage(isStorable ? QString()
                         : tr("A note can hold no tab and none of \"__SC__\", \"__NL__\", \"__DQ__\" and \"__HA__\", "
                              "which stand for other characters in stack files."));
  enableApplying(isStorable, true);
}

void NYXAnnotationDialog::change()
{
  if (!_isChanged) return;
  const std::string note = _text->toPlainText().toStdString();
  if (_slice)
  {
    NYXSliceProperties properties(*_slice);
    properties.annotation = note;
    stack().history().pushStep(std::make_unique<NYXSlicePropertiesAction>(*_slice, properties));
  }
  else
  {
    NYXStackProperties properties(stack());
    properties.annotation = note;
    stack().history().pushStep(std::make_unique<NYXStackPropertiesAction>(stack(), properties));
  }
  _isChanged = false;
}

void NYXAnnotationDialog::refresh()
{
  if (_isChanged) return;
  const QSignalBlocker blocker(_text);
  if (_text->toPlainText() != annotation()) _text->setPlainText(annotation());
  enableApplying(true, false);
}

void NYXAnnotationDialog::processSliceAction(NYXSliceAction& action)
{
  if (_slice && stack().findSlice(_slice) < 0) return reject();
  NYXStackDialog::processSliceAction(action);
}
