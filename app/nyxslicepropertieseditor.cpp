#include "app/nyxslicepropertieseditor.h"

#include "app/core/actions/nyxsliceimageaction.h"
#include "app/core/nyxactionstep.h"
#include "app/core/nyxstack.h"
#include "app/nyxcalibrationeditor.h"
#include "app/nyxnameedit.h"
#include "app/nyxnumberbox.h"
#include "image/imagesourcefilemosaic.h"
#include "image/imagesourcelsmstackplane.h"
#include "image/imagesourcetiffstackplane.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "model/storabletext.h"
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

#include <algorithm>

namespace
{
using Properties = NYXSliceProperties;

constexpr double greatestLength = 1e15;

/// What several slices have in common, or none.
template <class Get> auto commonValue(const std::vector<StackSlice*>& slices, Get get)
{
  std::optional<decltype(get(*slices.front()))> value;
  for (const StackSlice* slice : slices)
  {
    if (value && *value != get(*slice)) return decltype(value)();
    value = get(*slice);
  }
  return value;
}

QString refusalOfSliceName(const StackSlice& slice, const QString& name)
{
  if (name.toStdString() == slice.getName()) return {}; // also one that was read from a file
  if (name.isEmpty()) return NYXSlicePropertiesEditor::tr("A slice needs a name");
  if (slice.getStack()->findSlice(name.toStdString()) >= 0)
    return NYXSlicePropertiesEditor::tr("There is a slice \"%1\" already").arg(name);
  return refusalOfName(name);
}

QString planeText(const std::string& filename, int plane)
{
  return NYXSlicePropertiesEditor::tr("%1, plane %2").arg(QString::fromStdString(filename)).arg(plane);
}

/// The file of an image, and where it is there.
QString sourceText(const ImageSource* source)
{
  if (!source || !source->isDefined()) return {};
  switch (source->getType())
  {
  case ImageSourceType::File:
    return QString::fromStdString(static_cast<const ImageSourceFile*>(source)->getFilename());
  case ImageSourceType::FileMosaic:
    return NYXSlicePropertiesEditor::tr("mosaic of files");
  case ImageSourceType::TiffStackPlane:
  {
    const auto& plane = static_cast<const ImageSourceTiffStackPlane&>(*source);
    return planeText(plane.getTiffStackFilename(), plane.getPlane());
  }
  case ImageSourceType::LSMStackPlane:
  {
    const auto& plane = static_cast<const ImageSourceLSMStackPlane&>(*source);
    return planeText(plane.getLSMStackFilename(), plane.getPlane());
  }
  case ImageSourceType::VoxelMatrixFilePlane:
  {
    const auto& plane = static_cast<const ImageSourceVoxelMatrixFilePlane&>(*source);
    return planeText(plane.getVoxelMatrixFilename(), plane.getPlane());
  }
  case ImageSourceType::VoxelMatrixPlane:
    return NYXSlicePropertiesEditor::tr("plane in memory");
  }
  return {};
}

QString sizeText(const ImageSource& source)
{
  return QString::fromUtf8("%1 × %2 px").arg(source.getSize2()).arg(source.getSize1());
}

QString sizeTextOrNone(const ImageSource& source)
{
  try
  {
    return sizeText(source);
  }
  catch (const FileError&)
  {
    return {};
  }
}
} // namespace

NYXSlicePropertiesEditor::NYXSlicePropertiesEditor(NYXStack& stack, std::vector<StackSlice*> slices, QWidget* parent)
  : QWidget(parent), _stack(stack), _slices(std::move(slices)), _form([this] { emit edited(); })
{
  setObjectName("slicePropertiesEditor");
  auto* const layout = new QGridLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(createSliceGroup(), 0, 0, 1, 2);
  layout->addWidget(createCalibrationGroup(), 1, 0);
  layout->addWidget(createDepthGroup(), 1, 1);
  layout->setRowStretch(2, 1);
}

QWidget* NYXSlicePropertiesEditor::createSliceGroup()
{
  auto* const group = new QGroupBox(_slices.size() == 1 ? tr("Slice") : tr("%1 slices").arg(_slices.size()), this);
  auto* const form = new QFormLayout(group);
  _name = new NYXNameEdit(group);
  _name->setObjectName("sliceName");
  _name->setToolTip(tr("No two slices of a stack have the same name"));
  _name->setCheck([this](const QString& name)
                  { return _slices.size() == 1 ? refusalOfSliceName(*_slices.front(), name) : QString(); });
  form->addRow(tr("Name"), _name);
  _form.bind(
      *_name, [](const Properties& p) { return QString::fromStdString(p.name); },
      [](Properties& p, const QString& name) { p.name = name.toStdString(); });
  _image = new QLineEdit(group);
  _image->setObjectName("sliceImage");
  _image->setReadOnly(true);
  _chooseImage = new QPushButton(tr("Other file..."), group);
  _chooseImage->setObjectName("chooseImageButton");
  _chooseImage->setAutoDefault(false);
  auto* const row = new QHBoxLayout;
  row->addWidget(_image, 1);
  row->addWidget(_chooseImage);
  form->addRow(tr("Image"), row);
  connect(_chooseImage, &QPushButton::clicked, this, &NYXSlicePropertiesEditor::chooseImage);
  return group;
}

QWidget* NYXSlicePropertiesEditor::createCalibrationGroup()
{
  auto* const group = new QGroupBox(tr("Calibration"), this);
  auto* const form = new QFormLayout(group);
  _asStack = new QCheckBox(tr("As the stack"), group);
  _asStack->setObjectName("calibrationAsStack");
  _asStack->setToolTip(tr("The calibration that the stack has now"));
  form->addRow(_asStack);
  _calibration = new NYXCalibrationEditor(group);
  _calibration->setObjectName("sliceCalibration");
  form->addRow(_calibration);
  whenEdited(*_calibration, [this] { _isCalibrationTouched = true; });
  _form.bind(
      *_calibration, [](const Properties& p) { return p.pixelCalibration; },
      [](Properties& p, const PixelCalibration& calibration) { p.pixelCalibration = calibration; });
  connect(_asStack, &QCheckBox::clicked, this, &NYXSlicePropertiesEditor::useCalibrationOfStack);
  return group;
}

QWidget* NYXSlicePropertiesEditor::createDepthGroup()
{
  auto* const group = new QGroupBox(tr("Depth"), this);
  auto* const form = new QFormLayout(group);
  _position = new QComboBox(group);
  _position->setObjectName("slicePosition");
  _position->setToolTip(tr("How the depth of the slice is told"));
  _position->addItems({tr("Default spacing"), tr("Relative"), tr("Absolute")});
  form->addRow(tr("Position"), _position);
  _depth = NYXNumberBox::addTo(*form, "sliceDepth", tr("Value"),
                               tr("Distance to the slice before or, for an absolute position, the depth"));
  _depth->setRange(-greatestLength, greatestLength);
  _resultingDepth = new QLabel(group);
  _resultingDepth->setObjectName("resultingDepth");
  form->addRow(tr("Depth in the stack"), _resultingDepth);
  _thickness =
      NYXNumberBox::addTo(*form, "thickness", tr("Thickness"),
                          tr("Thickness of the slice. It lasts while the program runs: stack files do not hold it"));
  _thickness->setRange(0, greatestLength);
  _form.bind(
      *_thickness, [](const Properties& p) { return double{p.thickness}; },
      [](Properties& p, double length) { p.thickness = static_cast<float>(length); });
  whenEdited(*_position, [this] { choosePosition(); });
  whenEdited(*_depth,
             [this]
             {
               _isDepthTouched = true;
               showResultingDepth();
               emit edited();
             });
  return group;
}

void NYXSlicePropertiesEditor::forgetMissing()
{
  std::erase_if(_slices, [this](const StackSlice* slice) { return _stack.findSlice(slice) < 0; });
}

std::vector<NYXSliceProperties> NYXSlicePropertiesEditor::propertiesOfSlices() const
{
  std::vector<NYXSliceProperties> properties;
  for (const StackSlice* slice : _slices) properties.emplace_back(*slice);
  return properties;
}

void NYXSlicePropertiesEditor::refresh()
{
  const PixelCalibration& ofStack = _stack.getDefaultPixelCalibration();
  const QString unit = QString::fromStdString(_stack.getLengthUnit().symbol());
  _form.show(propertiesOfSlices());
  _name->setEnabled(_slices.size() == 1);
  _calibration->setFallback(_slices.empty() ? ofStack : _slices.front()->getPixelCalibration());
  _calibration->setUnit(_stack.getLengthUnit());
  if (!_isCalibrationTouched)
  {
    const auto isAsStack = [&](const StackSlice* slice) { return slice->getPixelCalibration() == ofStack; };
    _asStack->setChecked(std::ranges::all_of(_slices, isAsStack));
    _calibration->setEnabled(!_asStack->isChecked());
  }
  for (NYXNumberBox* const box : {_depth, _thickness}) box->setUnit(unit);
  showPosition();
  showImage();
}

void NYXSlicePropertiesEditor::useCalibrationOfStack(bool isWanted)
{
  _calibration->setEnabled(!isWanted);
  if (!isWanted) return;
  _calibration->setCalibration(_stack.getDefaultPixelCalibration());
  emit _calibration->edited();
}

void NYXSlicePropertiesEditor::choosePosition()
{
  _isPositionTouched = true;
  _isDepthTouched = false; // what was typed had another meaning
  showPosition();
  emit edited();
}

/// The numbers that the slices have in the way chosen.
void NYXSlicePropertiesEditor::showPosition()
{
  const auto positionOf = [](const StackSlice& slice) { return static_cast<int>(Properties(slice).position); };
  if (!_isPositionTouched) showValue(*_position, commonValue(_slices, positionOf));
  const int position = _position->currentIndex();
  _depth->setEnabled(position == Properties::Relative || position == Properties::Absolute);
  if (!_isDepthTouched)
  {
    if (position == Properties::Default)
      _depth->setNumber(_stack.getDefaultRelativePosition());
    else if (position == Properties::Relative)
      _depth->setNumber(commonValue(_slices, [](const StackSlice& slice) { return slice.getRelativePosition(); }));
    else if (position == Properties::Absolute)
      _depth->setNumber(commonValue(_slices, [](const StackSlice& slice) { return slice.getAbsolutePosition(); }));
    else
      _depth->setNumber({});
  }
  showResultingDepth();
}

void NYXSlicePropertiesEditor::showResultingDepth()
{
  const QString unit = " " + _depth->getUnit();
  if (_slices.size() != 1 || !_depth->hasNumber()) return _resultingDepth->setText(tr("(several)"));
  const StackSlice* const before = _slices.front()->prevSlice();
  double depth = _depth->getNumber();
  if (_position->currentIndex() != Properties::Absolute)
    depth = before ? before->getAbsolutePosition() + depth : 0; // the first slice lies at 0
  _resultingDepth->setText(_depth->textFromValue(depth) + unit);
}

void NYXSlicePropertiesEditor::showImage()
{
  const bool isOne = _slices.size() == 1;
  const ImageSource* const source = _newImage ? &*_newImage : isOne ? _slices.front()->getImageSource() : nullptr;
  const QString text = isOne ? QDir::toNativeSeparators(sourceText(source)) : tr("(several)");
  const QString size = source ? sizeTextOrNone(*source) : QString();
  if (_image->text() != text) _image->setText(text);
  _image->setToolTip(size.isEmpty() ? tr("The image cannot be read") : size);
  const bool isFile = isOne && (!source || source->getType() == ImageSourceType::File);
  _chooseImage->setEnabled(isFile);
  _chooseImage->setToolTip(isFile
                               ? tr("Choose another image of the same size (%1)").arg(size.isEmpty() ? tr("any") : size)
                               : tr("Only the image of a single slice that has a file of its own can be replaced"));
}

void NYXSlicePropertiesEditor::chooseImage()
{
  const QFileInfo file(sourceText(_slices.front()->getImageSource()));
  NYXFileDialog dialog(this, "selectImageFilesDialog", tr("Select image files"));
  if (file.dir().exists() && file.isAbsolute()) dialog.setDirectory(file.absolutePath());
  dialog.setNameFilter("*.tif *.TIF *.tiff *.TIFF *.img");
  dialog.setFileMode(QFileDialog::ExistingFile);
  dialog.rememberSize();
  const QStringList chosen = dialog.ask();
  if (chosen.isEmpty()) return;
  try
  {
    setImageFile(chosen.first());
  }
  catch (const Exception& error)
  {
    emit refused(QString::fromStdString(error.getWhat()));
  }
}

void NYXSlicePropertiesEditor::setImageFile(const QString& filename)
{
  const ImageSourceFile source(filename.toStdString());
  const QString size = sizeText(source);
  const StackSlice& slice = *_slices.front();
  const QString needed = slice.isEmpty() ? QString() : sizeTextOrNone(*slice.getImageSource());
  if (!needed.isEmpty() && size != needed)
    throw ValueError("void NYXSlicePropertiesEditor::setImageFile(const QString&)",
                     tr("%1 has %2, the slice needs an image of %3").arg(filename, size, needed).toStdString());
  requireStorableName(QFileInfo(filename).fileName().toStdString(),
                      "void NYXSlicePropertiesEditor::setImageFile(const QString&)");
  _newImage = source;
  showImage();
  emit edited();
}

QString NYXSlicePropertiesEditor::refusal() const
{
  return _name->refusal();
}

NYXSliceProperties NYXSlicePropertiesEditor::changedProperties(const StackSlice& slice) const
{
  NYXSliceProperties properties(slice);
  _form.write(properties);
  if (_isPositionTouched)
  {
    properties.position = static_cast<Properties::Position>(_position->currentIndex());
    properties.depth = properties.position == Properties::Default    ? 0
                       : properties.position == Properties::Relative ? slice.getRelativePosition()
                                                                     : slice.getAbsolutePosition();
  }
  if (_isDepthTouched && properties.position != Properties::Default)
    properties.depth = static_cast<float>(_depth->getNumber());
  return properties;
}

void NYXSlicePropertiesEditor::apply(NYXActionStep& step)
{
  std::vector<std::unique_ptr<NYXAction>> actions; // of the slices as they are before any of them changes
  for (StackSlice* slice : _slices)
  {
    const Properties properties = changedProperties(*slice);
    requireStorable(properties.pixelCalibration);
    actions.push_back(std::make_unique<NYXSlicePropertiesAction>(*slice, properties));
  }
  for (std::unique_ptr<NYXAction>& action : actions)
    if (!action->isNull()) step.push(std::move(action));
  if (_newImage) step.push(std::make_unique<NYXSliceImageAction>(*_slices.front(), *_newImage));
  _form.forgetChanges();
  _newImage.reset();
  _isCalibrationTouched = _isPositionTouched = _isDepthTouched = false;
}
