#include "app/nyxstackpropertieseditor.h"

#include "app/core/actions/nyxlengthunitaction.h"
#include "app/core/nyxactionstep.h"
#include "app/core/nyxstack.h"
#include "app/nyxcalibrationeditor.h"
#include "app/nyxnameedit.h"
#include "app/nyxnumberbox.h"
#include "numeric/exception.h"
#include "slice/image/nyxfiledialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include <cmath>

namespace
{
using Properties = NYXStackProperties;

constexpr double greatestLength = 1e15;

double factorBetween(int fromScale, int toScale)
{
  return std::pow(10.0, fromScale - toScale);
}

Properties scaled(Properties properties, double factor)
{
  const auto scale = static_cast<float>(factor);
  PixelCalibration& calibration = properties.defaultPixelCalibration;
  calibration.setPixelWidth(calibration.getPixelWidth() * scale);
  calibration.setPixelHeight(calibration.getPixelHeight() * scale);
  properties.defaultRelativePosition *= scale;
  properties.defaultSliceThickness *= scale;
  return properties;
}

bool haveAllSlicesTheDefault(const NYXStack& stack)
{
  for (int i = 0; i < stack.getNumSlices(); ++i)
    if (stack.getSlice(i)->getPixelCalibration() != stack.getDefaultPixelCalibration()) return false;
  return true;
}

/// Of the first image only: those of a large stack take a while to read.
QString imageSizeText(const NYXStack& stack)
{
  const ImageSource* const source = stack.getSlice(0)->getImageSource();
  try
  {
    if (source) return QString::fromUtf8("%1 × %2 px").arg(source->getSize2()).arg(source->getSize1());
  }
  catch (const FileError&)
  {
  }
  return NYXStackPropertiesEditor::tr("unknown");
}
} // namespace

NYXStackPropertiesEditor::NYXStackPropertiesEditor(NYXStack& stack, QWidget* parent)
  : QWidget(parent), _stack(stack), _form([this] { emit edited(); })
{
  setObjectName("stackPropertiesEditor");
  auto* const layout = new QGridLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(createStackGroup(), 0, 0, 1, 2);
  layout->addWidget(createCalibrationGroup(), 1, 0);
  layout->addWidget(createDepthGroup(), 1, 1);
  layout->addWidget(createImagesGroup(), 2, 0, 1, 2);
  layout->setRowStretch(3, 1);
}

QWidget* NYXStackPropertiesEditor::createStackGroup()
{
  auto* const group = new QGroupBox(tr("Stack"), this);
  auto* const form = new QFormLayout(group);
  _name = new NYXNameEdit(group);
  _name->setObjectName("stackName");
  _name->setToolTip(tr("What windows call the stack"));
  _name->setCheck(refusalOfName);
  form->addRow(tr("Name"), _name);
  _form.bind(
      *_name, [](const Properties& p) { return QString::fromStdString(p.name); },
      [](Properties& p, const QString& name) { p.name = name.toStdString(); });
  _information = new QLabel(group);
  _information->setObjectName("stackInformation");
  form->addRow(tr("Slices"), _information);
  return group;
}

QWidget* NYXStackPropertiesEditor::createCalibrationGroup()
{
  auto* const group = new QGroupBox(tr("Calibration"), this);
  auto* const layout = new QFormLayout(group);
  _calibration = new NYXCalibrationEditor(group);
  _calibration->setObjectName("stackCalibration");
  layout->addRow(_calibration);
  _form.bind(
      *_calibration, [](const Properties& p) { return p.defaultPixelCalibration; },
      [](Properties& p, const PixelCalibration& calibration) { p.defaultPixelCalibration = calibration; });
  _unit = new QComboBox(group);
  _unit->setObjectName("lengthUnit");
  _unit->setToolTip(tr("Unit of all lengths of the stack"));
  for (const int scale : LengthUnit::availableScales())
  {
    const LengthUnit unit(scale);
    _unit->addItem(QString::fromStdString(unit.symbol() + " (" + unit.name() + ")"), scale);
  }
  layout->addRow(tr("Length unit"), _unit);
  _convertLengths = createChoice("convertLengths", tr("Convert all lengths"),
                                 tr("The numbers change with the unit, so that nothing changes in space"));
  _changeUnitOnly = createChoice("changeUnitOnly", tr("Change unit only"),
                                 tr("The numbers stay, so that everything becomes larger or smaller in space"));
  _convertLengths->setChecked(true);
  layout->addRow(_convertLengths);
  layout->addRow(_changeUnitOnly);
  _appliesToAll = new QCheckBox(tr("Apply calibration to all slices"), group);
  _appliesToAll->setObjectName("applyToAllSlices");
  _appliesToAll->setToolTip(tr("Each slice gets this calibration; otherwise slices keep theirs, and new ones get it"));
  layout->addRow(_appliesToAll);
  lineUpFields({layout, static_cast<QFormLayout*>(_calibration->layout())});
  connect(_unit, qOverload<int>(&QComboBox::activated), this, &NYXStackPropertiesEditor::chooseUnit);
  connect(_convertLengths, &QRadioButton::clicked, this, &NYXStackPropertiesEditor::chooseUnit);
  connect(_changeUnitOnly, &QRadioButton::clicked, this, &NYXStackPropertiesEditor::chooseUnit);
  connect(_appliesToAll, &QCheckBox::clicked, this,
          [this]
          {
            _isAppliesToAllTouched = true;
            emit edited();
          });
  return group;
}

QRadioButton* NYXStackPropertiesEditor::createChoice(const char* name, const QString& text, const QString& toolTip)
{
  auto* const choice = new QRadioButton(text, this);
  choice->setObjectName(name);
  choice->setToolTip(toolTip);
  return choice;
}

QWidget* NYXStackPropertiesEditor::createDepthGroup()
{
  auto* const group = new QGroupBox(tr("Depth"), this);
  auto* const form = new QFormLayout(group);
  _spacing = NYXNumberBox::addTo(*form, "sliceSpacing", tr("Slice spacing"),
                                 tr("Distance of slices that have none of their own from the slice before"));
  _spacing->setRange(-greatestLength, greatestLength);
  _form.bind(
      *_spacing, [](const Properties& p) { return double{p.defaultRelativePosition}; },
      [](Properties& p, double length) { p.defaultRelativePosition = static_cast<float>(length); });
  _thickness =
      NYXNumberBox::addTo(*form, "sliceThickness", tr("Slice thickness"),
                          tr("Thickness of new slices. It lasts while the program runs: stack files do not hold it"));
  _thickness->setRange(0, greatestLength);
  _form.bind(
      *_thickness, [](const Properties& p) { return double{p.defaultSliceThickness}; },
      [](Properties& p, double length) { p.defaultSliceThickness = static_cast<float>(length); });
  auto* const invertZ = new QCheckBox(tr("Inverted Z axis"), group);
  invertZ->setObjectName("invertZAxis");
  invertZ->setToolTip(tr("The depth grows from the last slice to the first one in 3D"));
  form->addRow(invertZ);
  _form.bind(
      *invertZ, [](const Properties& p) { return p.invertZAxis; },
      [](Properties& p, bool isInverted) { p.invertZAxis = isInverted; });
  return group;
}

QWidget* NYXStackPropertiesEditor::createImagesGroup()
{
  auto* const group = new QGroupBox(tr("Images"), this);
  auto* const form = new QFormLayout(group);
  _imagesPath = new QLineEdit(group);
  _imagesPath->setObjectName("imagesPath");
  _imagesPath->setToolTip(tr("Images that are named without a folder are looked for here when they are added"));
  auto* const choose = new QPushButton(tr("Folder..."), group);
  choose->setObjectName("imagesFolderButton");
  choose->setToolTip(tr("Choose the folder of the images"));
  choose->setAutoDefault(false);
  auto* const row = new QHBoxLayout;
  row->addWidget(_imagesPath, 1);
  row->addWidget(choose);
  form->addRow(tr("Images path"), row);
  _form.bind(
      *_imagesPath, [](const Properties& p) { return QString::fromStdString(p.imagesPath); },
      [](Properties& p, const QString& path) { p.imagesPath = path.toStdString(); });
  auto* const absolute = new QCheckBox(tr("Save absolute image paths"), group);
  absolute->setObjectName("absoluteImagesPath");
  absolute->setToolTip(tr("The stack file finds its images when it is moved alone; otherwise they move with it"));
  form->addRow(absolute);
  _form.bind(
      *absolute, [](const Properties& p) { return p.absoluteImagesPathPolicy; },
      [](Properties& p, bool isAbsolute) { p.absoluteImagesPathPolicy = isAbsolute; });
  connect(choose, &QPushButton::clicked, this, &NYXStackPropertiesEditor::chooseFolder);
  return group;
}

void NYXStackPropertiesEditor::chooseFolder()
{
  NYXFileDialog dialog(this, "imagesFolderDialog", tr("Select the folder of the images"));
  if (!_imagesPath->text().isEmpty()) dialog.setDirectory(_imagesPath->text());
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  dialog.rememberSize();
  const QStringList chosen = dialog.ask();
  if (chosen.isEmpty()) return;
  _imagesPath->setText(chosen.first());
  emit _imagesPath->textEdited(_imagesPath->text());
}

int NYXStackPropertiesEditor::chosenScale() const
{
  return isUnitChanged() ? _unit->currentData().toInt() : _stack.getLengthUnit().getScale();
}

bool NYXStackPropertiesEditor::isUnitChanged() const
{
  return _isUnitTouched && _unit->currentData().toInt() != _stack.getLengthUnit().getScale();
}

double NYXStackPropertiesEditor::conversionFactor() const
{
  if (!isUnitChanged() || !_convertLengths->isChecked()) return 1;
  return factorBetween(_stack.getLengthUnit().getScale(), chosenScale());
}

/// All lengths shown are converted, also those that were typed.
void NYXStackPropertiesEditor::chooseUnit()
{
  _isUnitTouched = true;
  const double factor = conversionFactor() / _shownFactor;
  _shownFactor = conversionFactor();
  _calibration->scale(factor);
  for (NYXNumberBox* const box : {_spacing, _thickness}) box->setNumber(static_cast<float>(box->getNumber() * factor));
  showUnit();
  emit edited();
}

void NYXStackPropertiesEditor::showUnit()
{
  const LengthUnit unit(chosenScale());
  _calibration->setUnit(unit);
  for (NYXNumberBox* const box : {_spacing, _thickness}) box->setUnit(QString::fromStdString(unit.symbol()));
  _convertLengths->setEnabled(isUnitChanged());
  _changeUnitOnly->setEnabled(isUnitChanged());
}

void NYXStackPropertiesEditor::refresh()
{
  _form.show({scaled(NYXStackProperties(_stack), _shownFactor)});
  if (!isUnitChanged()) _unit->setCurrentIndex(_unit->findData(_stack.getLengthUnit().getScale()));
  if (!_isAppliesToAllTouched) _appliesToAll->setChecked(haveAllSlicesTheDefault(_stack));
  _appliesToAll->setEnabled(_stack.getNumSlices() > 0);
  showUnit();
  showInformation();
}

void NYXStackPropertiesEditor::showInformation()
{
  const int numSlices = _stack.getNumSlices();
  _information->setText(
      numSlices == 0 ? tr("none") : tr("%1; size of the first image: %2").arg(numSlices).arg(imageSizeText(_stack)));
}

bool NYXStackPropertiesEditor::isChanged() const
{
  return _form.isTouched() || isUnitChanged() || (_isAppliesToAllTouched && _appliesToAll->isChecked());
}

QString NYXStackPropertiesEditor::refusal() const
{
  if (!_name->refusal().isEmpty()) return _name->refusal();
  return QDir::isRelativePath(_imagesPath->text()) ? refusalOfName(_imagesPath->text()) : QString();
}

void NYXStackPropertiesEditor::apply(NYXActionStep& step)
{
  const LengthUnit unit(chosenScale());
  const bool isUnitNew = isUnitChanged();
  if (isUnitNew && _convertLengths->isChecked())
    step.push(std::make_unique<NYXLengthUnitAction>(_stack, unit.getScale()));
  NYXStackProperties properties(_stack);
  _form.write(properties);
  properties.defaultPixelCalibration.setLengthUnit(unit);
  auto action = std::make_unique<NYXStackPropertiesAction>(_stack, properties);
  if (!action->isNull()) step.push(std::move(action));
  requireStorable(properties.defaultPixelCalibration);
  applyToSlices(step, properties.defaultPixelCalibration);
  _form.forgetChanges();
  _isAppliesToAllTouched = _isUnitTouched = false;
  _shownFactor = 1;
}

/// The slices are always in the unit of the stack.
void NYXStackPropertiesEditor::applyToSlices(NYXActionStep& step, const PixelCalibration& calibration) const
{
  for (int i = 0; i < _stack.getNumSlices(); ++i)
  {
    NYXSliceProperties properties(*_stack.getSlice(i));
    if (_appliesToAll->isChecked()) properties.pixelCalibration = calibration;
    properties.pixelCalibration.setLengthUnit(calibration.getLengthUnit());
    requireStorable(properties.pixelCalibration);
    auto action = std::make_unique<NYXSlicePropertiesAction>(*_stack.getSlice(i), properties);
    if (!action->isNull()) step.push(std::move(action));
  }
}
