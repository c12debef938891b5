#include "app/nyxpreferenceseditor.h"

#include "app/core/nyxpreferences.h"
#include "app/nyxcolorbutton.h"
#include "slice/image/nyxintegerbox.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QSpinBox>

NYXPreferencesEditor::NYXPreferencesEditor(QWidget* parent) : QWidget(parent)
{
  setObjectName("preferencesEditor");
  setLayout(new QFormLayout);
  layout()->setContentsMargins(0, 0, 0, 0);
  _maxNumBackups = addSpinBox("maxNumBackups", tr("Maximum number of backup files"),
                              tr("Copies of older versions kept beside a saved stack; 0 keeps none"), 0,
                              NYXPreferences::largestNumBackups, NYXPreferences::getMaxNumBackups());
  _autoDecimation = addCheckBox("autoDecimation", tr("Automatic contour decimation"),
                                tr("Vertices that hardly change a contour are removed when it is finished"),
                                NYXPreferences::autoDecimationEnabled());
  _highlightSelectedItems =
      addCheckBox("highlightSelectedItems", tr("Highlight selected items"),
                  tr("Selected items (contours or points) are drawn using thicker lines when this option is checked."),
                  NYXPreferences::getHighlightSelectedItems());
  _panoramaLabels = addCheckBox("enablePanoramaLabels", tr("Display image labels in panoramas"),
                                tr("Each image of a panorama carries the name of its slice"),
                                NYXPreferences::isPanoramaLabelEnabled());
  _clickTolerance =
      addSpinBox("clickTolerance", tr("Mouse click tolerance"), tr("How far from an item a click still selects it"), 0,
                 NYXPreferences::largestClickTolerance, NYXPreferences::getClickTolerance());
  _clickTolerance->setSuffix(tr(" px"));
  _regionBrushSize = addSpinBox("regionBrushSize", tr("Region brush size"),
                                tr("Radius of the brush that paints regions, in pixels of the image"), 0,
                                NYXPreferences::largestRegionBrushSize, NYXPreferences::getRegionBrushSize());
  _regionBrushSize->setSuffix(tr(" px"));
  _backgroundColor =
      addColorButton("imageCanvasBackgroundColor", tr("Background color"),
                     tr("Sets the color around the image of a slice"), NYXPreferences::getImageCanvasBackgroundColor());
  _selectionColor = addColorButton("selectionColor", tr("Selection color"),
                                   tr("Sets the color used when drawing selection rectangles and lines"),
                                   NYXPreferences::getSelectionColor());
}

QCheckBox* NYXPreferencesEditor::addCheckBox(const char* name, const QString& label, const QString& toolTip, bool value)
{
  auto* box = new QCheckBox(label, this);
  box->setObjectName(name);
  box->setToolTip(toolTip);
  box->setChecked(value);
  connect(box, &QCheckBox::toggled, this, &NYXPreferencesEditor::preferencesChanged);
  static_cast<QFormLayout*>(layout())->addRow(box);
  return box;
}

QSpinBox* NYXPreferencesEditor::addSpinBox(const char* name, const QString& label, const QString& toolTip, int minimum,
                                           int maximum, int value)
{
  auto* box = new NYXIntegerBox(this);
  box->setObjectName(name);
  box->setToolTip(toolTip);
  box->setAlignment(Qt::AlignRight);
  box->setRange(minimum, maximum);
  box->setValue(value);
  connect(box, qOverload<int>(&QSpinBox::valueChanged), this, &NYXPreferencesEditor::preferencesChanged);
  static_cast<QFormLayout*>(layout())->addRow(label, box);
  return box;
}

NYXColorButton* NYXPreferencesEditor::addColorButton(const char* name, const QString& label, const QString& toolTip,
                                                     const QColor& color)
{
  auto* button = new NYXColorButton(this);
  button->setObjectName(name);
  button->setToolTip(toolTip);
  button->setColor(color);
  connect(button, &NYXColorButton::colorChanged, this, &NYXPreferencesEditor::preferencesChanged);
  static_cast<QFormLayout*>(layout())->addRow(label, button);
  return button;
}

void NYXPreferencesEditor::apply() const
{
  NYXPreferences::setMaxNumBackups(_maxNumBackups->value());
  NYXPreferences::enableAutoDecimation(_autoDecimation->isChecked());
  NYXPreferences::setHighlightSelectedItems(_highlightSelectedItems->isChecked());
  NYXPreferences::setPanoramaLabelEnabled(_panoramaLabels->isChecked());
  NYXPreferences::setClickTolerance(_clickTolerance->value());
  NYXPreferences::setRegionBrushSize(_regionBrushSize->value());
  NYXPreferences::setImageCanvasBackgroundColor(_backgroundColor->color());
  NYXPreferences::setSelectionColor(_selectionColor->color());
}
