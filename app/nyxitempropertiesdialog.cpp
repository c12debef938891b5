#include "app/nyxitempropertiesdialog.h"

#include "app/core/actions/nyxitemselectionattributesaction.h"
#include "app/core/actions/nyxsliceaction.h"
#include "app/core/nyxactionstep.h"
#include "app/core/nyxstack.h"
#include "app/nyxcolorbutton.h"
#include "app/nyxmodelcolor.h"
#include "app/nyxnumberbox.h"
#include "model/model.h"
#include "model/modelitem.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>

#include <functional>

namespace
{
constexpr int greatestSize = 1000; // of lines and points
} // namespace

NYXItemPropertiesDialog::Properties::Properties(const ModelItem& item) : own(item.getProperties())
{
  effective.setDefaults();
  if (item.getModel() != nullptr) effective.update(item.getModel()->getItemProperties());
  effective.update(own);
}

NYXItemPropertiesDialog::NYXItemPropertiesDialog(NYXStack& openStack, StackSlice& slice, QWidget* parent)
  : NYXStackDialog(openStack, "itemPropertiesDialog", tr("Item properties"), parent),
    _slice(slice),
    _form([this] { enableApplying(true, true); })
{
  layOut(*createForm(), QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel);
  finish(44, 14);
}

QWidget* NYXItemPropertiesDialog::createForm()
{
  using P = ModelItemProperties;
  auto* const content = new QWidget(this);
  auto* const form = new QFormLayout(content);
  form->addRow(new QLabel(tr("What is checked is the items' own; in all else they follow their model."), content));
  auto* const color = new NYXColorButton(content);
  color->setAutoDefault(false);
  color->setAlphaEnabled(false);
  addRow(*form, tr("Color"), "itemColor", tr("Color of the items"), *color, &P::definesColor, &colorOf,
         [](P& p, const QColor& c) { p.setColor(c.red(), c.green(), c.blue()); });
  const auto newNumberBox = [content]
  {
    auto* const box = new NYXNumberBox(content);
    box->setRange(0, greatestSize);
    box->setUnit(tr("px"));
    return box;
  };
  addRow(
      *form, tr("Line width"), "itemLineWidth", tr("Width of the lines of curves on the screen"), *newNumberBox(),
      &P::definesLineWidth, [](const P& p) { return static_cast<double>(p.getLineWidth()); },
      [](P& p, double width) { p.setLineWidth(static_cast<float>(width)); });
  addRow(
      *form, tr("Point size"), "itemPointSize", tr("Size of the points on the screen"), *newNumberBox(),
      &P::definesPointSize, [](const P& p) { return static_cast<double>(p.getPointSize()); },
      [](P& p, double size) { p.setPointSize(static_cast<float>(size)); });
  auto* const symbol = new QComboBox(content);
  symbol->addItems({tr("Cube"), tr("Dot"), tr("Diamond"), tr("Sphere"), tr("Tetrahedron")});
  addRow(
      *form, tr("Vertex symbol"), "itemVertexSymbol", tr("What stands for a point in 3D"), *symbol,
      &P::definesVertexSymbol, [](const P& p) { return static_cast<int>(p.getVertexSymbol()); },
      [](P& p, int i) { p.setVertexSymbol(static_cast<VertexSymbol>(i)); });
  addRow(*form, tr("Filling"), "itemFilled", tr("Vertex symbols are solid; otherwise they are outlines"),
         *new QCheckBox(tr("Filled symbols"), content), &P::definesVertexSymbolFilling, &P::getVertexSymbolFilling,
         &P::setVertexSymbolFilling);
  addRow(
      *form, tr("In 3D"), "itemHidden3D", tr("The items are not drawn in 3D"),
      *new QCheckBox(tr("Hidden in 3D"), content), &P::definesRenderingVisibility,
      [](const P& p) { return !p.getRenderingVisibility(); },
      [](P& p, bool isHidden) { p.setRenderingVisibility(!isHidden); });
  return content;
}

template <class Control, class Get, class Set>
void NYXItemPropertiesDialog::addRow(QFormLayout& form, const QString& label, const QString& name,
                                     const QString& toolTip, Control& control,
                                     bool (ModelItemProperties::*isDefined)() const, Get get, Set set)
{
  control.setObjectName(name);
  control.setToolTip(toolTip);
  auto* const own = new QCheckBox(label, this);
  own->setObjectName(name + "Own");
  own->setToolTip(tr("Checked, the items have a value of their own; else they follow their model"));
  form.addRow(own, &control);
  _form.bind(
      *own, [isDefined](const Properties& p) { return (p.own.*isDefined)(); },
      [get, set](Properties& p, bool isOwn)
      {
        ModelItemProperties value;
        std::invoke(set, value, std::invoke(get, p.effective));
        if (isOwn)
          p.own.update(value);
        else
          p.own = p.own - value;
      });
  _form.bind(
      control, [get](const Properties& p) { return std::invoke(get, p.effective); },
      [own, set](Properties& p, const auto& value)
      {
        if (own->checkState() != Qt::Unchecked) std::invoke(set, p.own, value);
      });
  whenEdited(control,
             [own]
             {
               own->setTristate(false);
               own->setChecked(true);
             });
}

void NYXItemPropertiesDialog::change()
{
  NYXActionStep step(stack().sliceHistory(_slice));
  for (ModelItem* item : _slice.getSelectedItems())
  {
    Properties properties(*item);
    _form.write(properties);
    auto action = std::make_unique<NYXItemSelectionAttributesAction>(*item, properties.own);
    if (!action->isNull()) step.push(std::move(action));
  }
  _form.forgetChanges();
}

void NYXItemPropertiesDialog::refresh()
{
  std::vector<Properties> properties;
  for (const ModelItem* item : _slice.getSelectedItems()) properties.emplace_back(*item);
  _form.show(properties);
  const bool isEditable = !properties.empty() && !stack().isLocked(_slice);
  if (properties.empty()) showMessage(tr("Nothing is selected on the slice any more."));
  enableApplying(isEditable, _form.isTouched());
}

void NYXItemPropertiesDialog::processSliceAction(NYXSliceAction& action)
{
  if (stack().findSlice(&_slice) < 0) return reject();
  NYXStackDialog::processSliceAction(action);
}
