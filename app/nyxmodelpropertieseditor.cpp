#include "app/nyxmodelpropertieseditor.h"

#include "app/core/nyxactionstep.h"
#include "app/nyxcolorbutton.h"
#include "app/nyxmodelcolor.h"
#include "app/nyxnameedit.h"
#include "app/nyxnumberbox.h"
#include "model/model.h"
#include "model/stack.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace
{
using Properties = NYXModelProperties;

constexpr float opaque = 255;
constexpr int greatestShininess = 128; // of OpenGL
constexpr int greatestSize = 1000;     // of lines and points
constexpr int greatestQuadMesh = 10000;
constexpr int greatestSmoothing = 1000;

/// Getter and setter of a property of the model, or of its items' defaults, for a form.
template <class Value> auto getModel(Value (ModelProperties::*get)() const)
{
  return [get](const Properties& p) { return (p.properties.*get)(); };
}
template <class Value> auto setModel(void (ModelProperties::*set)(Value))
{
  return [set](Properties& p, auto value) { (p.properties.*set)(static_cast<Value>(value)); };
}
template <class Value> auto getItem(Value (ModelItemProperties::*get)() const)
{
  return [get](const Properties& p) { return (p.itemProperties.*get)(); };
}
template <class Value> auto setItem(void (ModelItemProperties::*set)(Value))
{
  return [set](Properties& p, auto value) { (p.itemProperties.*set)(static_cast<Value>(value)); };
}

/// A getter whose value the control takes as another type.
template <class Value, class Get> auto as(Get get)
{
  return [get](const Properties& p) { return static_cast<Value>(get(p)); };
}
} // namespace

NYXModelPropertiesEditor::NYXModelPropertiesEditor(QWidget* parent) : QWidget(parent), _form([this] { emit edited(); })
{
  setObjectName("modelPropertiesEditor");
  auto* const left = new QVBoxLayout;
  left->addWidget(createModelGroup());
  left->addWidget(createItemsGroup());
  left->addStretch(1);
  std::vector<QFormLayout*> forms;
  for (QGroupBox* const group : findChildren<QGroupBox*>()) forms.push_back(static_cast<QFormLayout*>(group->layout()));
  lineUpFields(forms);
  auto* const right = new QVBoxLayout;
  right->addWidget(createSurfaceGroup());
  right->addStretch(1);
  auto* const layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addLayout(left, 1);
  layout->addLayout(right, 1);
  refresh();
}

QWidget* NYXModelPropertiesEditor::createModelGroup()
{
  auto* const group = new QGroupBox(tr("Model"), this);
  auto* const form = new QFormLayout(group);
  _name = new NYXNameEdit(group);
  _name->setObjectName("modelName");
  _name->setToolTip(tr("No two models of a stack have the same name"));
  _name->setCheck([this](const QString& name) { return refusalOf(name); });
  form->addRow(tr("Name"), _name);
  _form.bind(
      *_name, [](const Properties& p) { return QString::fromStdString(p.name); },
      [](Properties& p, const QString& name) { p.name = name.toStdString(); });
  auto* const color = new NYXColorButton(group);
  color->setObjectName("modelColor");
  color->setToolTip(tr("Color of the model's items that have none of their own"));
  color->setAutoDefault(false);
  color->setAlphaEnabled(false);
  form->addRow(tr("Color"), color);
  _form.bind(
      *color, [](const Properties& p) { return colorOf(p.itemProperties); },
      [](Properties& p, const QColor& c) { p.itemProperties.setColor(c.red(), c.green(), c.blue()); });
  _geometry = createChoice(
      *form, "modelGeometry", tr("Geometry"), {},
      {tr("Polygon (closed curves)"), tr("Polyline (open curves)"), tr("Polypoint (points)"), tr("Region (areas)")});
  _form.bind(*_geometry, as<int>(getModel(&ModelProperties::getGeometry)), setModel(&ModelProperties::setGeometry));
  return group;
}

QWidget* NYXModelPropertiesEditor::createItemsGroup()
{
  auto* const group = new QGroupBox(tr("Items"), this);
  auto* const form = new QFormLayout(group);
  addNumber(*form, "lineWidth", tr("Line width"), tr("Width of the lines of curves on the screen"),
            getItem(&ModelItemProperties::getLineWidth), setItem(&ModelItemProperties::setLineWidth));
  addNumber(*form, "pointSize", tr("Point size"), tr("Size of the points on the screen"),
            getItem(&ModelItemProperties::getPointSize), setItem(&ModelItemProperties::setPointSize));
  QComboBox* const symbol =
      createChoice(*form, "vertexSymbol", tr("Vertex symbol"), tr("What stands for a point in 3D"),
                   {tr("Cube"), tr("Dot"), tr("Diamond"), tr("Sphere"), tr("Tetrahedron")});
  _form.bind(*symbol, as<int>(getItem(&ModelItemProperties::getVertexSymbol)),
             setItem(&ModelItemProperties::setVertexSymbol));
  addFlag(*form, "filled", tr("Filled symbols"), tr("Vertex symbols are solid; otherwise they are outlines"),
          getItem(&ModelItemProperties::getVertexSymbolFilling), setItem(&ModelItemProperties::setVertexSymbolFilling));
  addFlag(
      *form, "hidden3D", tr("Hidden in 3D"), tr("The items are not drawn in 3D"),
      [](const Properties& p) { return !p.itemProperties.getRenderingVisibility(); },
      [](Properties& p, bool isHidden) { p.itemProperties.setRenderingVisibility(!isHidden); });
  return group;
}

QWidget* NYXModelPropertiesEditor::createSurfaceGroup()
{
  auto* const group = new QGroupBox(tr("In 3D"), this);
  auto* const form = new QFormLayout(group);
  QComboBox* const mode = createChoice(
      *form, "renderingMode", tr("Rendering mode"), tr("How the model is drawn in 3D"),
      {tr("Dots"), tr("Curves"), tr("Wireframe"), tr("Surface"), tr("Triangular mesh"), tr("Triangular surface")});
  _form.bind(*mode, as<int>(getModel(&ModelProperties::getRenderingMode)),
             setModel(&ModelProperties::setRenderingMode));
  NYXNumberBox* const opacity =
      NYXNumberBox::addTo(*form, "surfaceOpacity", tr("Opacity"), tr("100 % hides what is behind the surface"));
  opacity->setDecimals(0);
  opacity->setSingleStep(5);
  opacity->setRange(0, 100);
  opacity->setUnit("%");
  _form.bind(
      *opacity, [](const Properties& p) { return double{std::round(p.properties.getSurfaceOpacity() * 100 / opaque)}; },
      [](Properties& p, double percent)
      { p.properties.setSurfaceOpacity(static_cast<float>(std::round(percent * opaque / 100))); });
  addWholeNumber(*form, "surfaceShininess", tr("Shininess"), tr("The higher, the smaller are the highlights"),
                 getModel(&ModelProperties::getSurfaceShininess), setModel(&ModelProperties::setSurfaceShininess), 0,
                 greatestShininess);
  addWholeNumber(*form, "quadMeshWidth", tr("Quad mesh width"), tr("Vertices around the surface"),
                 getModel(&ModelProperties::getQuadMeshWidth), setModel(&ModelProperties::setQuadMeshWidth), 1,
                 greatestQuadMesh);
  addWholeNumber(*form, "quadMeshHeight", tr("Quad mesh height"), tr("Vertices along the surface"),
                 getModel(&ModelProperties::getQuadMeshHeight), setModel(&ModelProperties::setQuadMeshHeight), 1,
                 greatestQuadMesh);
  addWholeNumber(*form, "vertexSmoothing", tr("Vertex smoothing"), tr("Times that the surface is smoothed"),
                 getModel(&ModelProperties::getVertexSmoothing), setModel(&ModelProperties::setVertexSmoothing), 0,
                 greatestSmoothing);
  addWholeNumber(*form, "normalSmoothing", tr("Normal smoothing"), tr("Times that the shading is smoothed"),
                 getModel(&ModelProperties::getNormalSmoothing), setModel(&ModelProperties::setNormalSmoothing), 0,
                 greatestSmoothing);
  addFlag(*form, "economicRendering", tr("Economic rendering"), tr("Draws less for a faster display"),
          getModel(&ModelProperties::getEconomicRendering), setModel(&ModelProperties::setEconomicRendering));
  addFlag(*form, "beginCap", tr("Cap at the first contour"), tr("Closes the surface at its first contour"),
          getModel(&ModelProperties::getBeginCapFlag), setModel(&ModelProperties::setBeginCapFlag));
  addFlag(*form, "endCap", tr("Cap at the last contour"), tr("Closes the surface at its last contour"),
          getModel(&ModelProperties::getEndCapFlag), setModel(&ModelProperties::setEndCapFlag));
  return group;
}

QComboBox* NYXModelPropertiesEditor::createChoice(QFormLayout& form, const char* name, const QString& label,
                                                  const QString& toolTip, const QStringList& entries)
{
  auto* const choice = new QComboBox(this);
  choice->setObjectName(name);
  choice->setToolTip(toolTip);
  choice->addItems(entries);
  form.addRow(label, choice);
  return choice;
}

template <class Get, class Set> void NYXModelPropertiesEditor::addNumber(QFormLayout& form, const char* name,
                                                                         const QString& label, const QString& toolTip,
                                                                         Get get, Set set)
{
  NYXNumberBox* const box = NYXNumberBox::addTo(form, name, label, toolTip);
  box->setRange(0, greatestSize);
  box->setUnit(tr("px"));
  _form.bind(*box, as<double>(get), set);
}

template <class Get, class Set>
void NYXModelPropertiesEditor::addWholeNumber(QFormLayout& form, const char* name, const QString& label,
                                              const QString& toolTip, Get get, Set set, int least, int greatest)
{
  NYXNumberBox* const box = NYXNumberBox::addTo(form, name, label, toolTip);
  box->setDecimals(0);
  box->setRange(least, greatest);
  _form.bind(*box, as<double>(get), set);
}

template <class Get, class Set> void NYXModelPropertiesEditor::addFlag(QFormLayout& form, const char* name,
                                                                       const QString& label, const QString& toolTip,
                                                                       Get get, Set set)
{
  auto* const box = new QCheckBox(label, this);
  box->setObjectName(name);
  box->setToolTip(toolTip);
  form.addRow(box);
  _form.bind(*box, get, set);
}

void NYXModelPropertiesEditor::setModels(std::vector<Model*> models)
{
  _models = std::move(models);
  _form.forgetChanges();
  refresh();
}

void NYXModelPropertiesEditor::forget(const Model& model)
{
  if (std::erase(_models, &model) > 0 && _models.empty()) forgetChanges();
}

std::vector<NYXModelProperties> NYXModelPropertiesEditor::propertiesOfModels() const
{
  std::vector<NYXModelProperties> properties;
  for (const Model* model : _models) properties.emplace_back(*model);
  return properties;
}

void NYXModelPropertiesEditor::refresh()
{
  setEnabled(!_models.empty());
  _form.show(propertiesOfModels());
  _name->setEnabled(_models.size() == 1);
  const bool hasItems = std::ranges::any_of(_models, [](const Model* model) { return !model->getItems().empty(); });
  _geometry->setEnabled(!hasItems);
  _geometry->setToolTip(hasItems ? tr("What is drawn already keeps its geometry: delete the items first, or make "
                                      "another model")
                                 : tr("What the items of the model are"));
}

QString NYXModelPropertiesEditor::refusalOf(const QString& name) const
{
  return _models.size() == 1 ? refusalOfModelName(*_models.front(), name) : QString();
}

QString NYXModelPropertiesEditor::refusal() const
{
  return _name->refusal();
}

void NYXModelPropertiesEditor::apply(NYXActionStep& step)
{
  for (Model* model : _models)
  {
    NYXModelProperties properties(*model);
    _form.write(properties);
    if (!model->getItems().empty()) properties.properties.setGeometry(model->getGeometry());
    auto action = std::make_unique<NYXModelPropertiesAction>(*model, properties);
    if (!action->isNull()) step.push(std::move(action));
  }
  _form.forgetChanges();
}

QString refusalOfModelName(const Model& model, const QString& name)
{
  if (name.toStdString() == model.getName()) return {}; // also one that was read from a file
  if (name.isEmpty()) return NYXModelPropertiesEditor::tr("A model needs a name");
  const int place = model.getStack() ? model.getStack()->findModel(name.toStdString()) : -1;
  if (place >= 0 && model.getStack()->getModel(place) != &model)
    return NYXModelPropertiesEditor::tr("There is a model \"%1\" already").arg(name);
  return refusalOfName(name);
}
