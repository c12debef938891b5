#include "viewer/nyxcreatevideodialog.h"

#include "slice/image/nyxfiledialog.h"
#include "slice/image/nyxintegerbox.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

namespace
{
const char* const suffixes[] = {"avi", "flv", "mov", "mpg"};

/// With the suffix of a kind that the encoder knows.
QString withSuffix(const QString& name)
{
  for (const char* suffix : suffixes)
    if (name.endsWith(QString(".") + suffix, Qt::CaseInsensitive)) return name;
  return name + ".avi";
}
} // namespace

NYXCreateVideoDialog::NYXCreateVideoDialog(QWidget* parent)
  : QDialog(parent),
    _output(new QLineEdit(this)),
    _frameRate(createNumber("frameRate", 1, 100, 25, tr(" frames/s"))),
    _isCircular(new QCheckBox(tr("Circular animation"), this)),
    _isRepeated(new QCheckBox(tr("Automatically repeat"), this)),
    _stepSize(createNumber("stepSize", 1, 90, 2, tr(" °"))),
    _timeout(createNumber("timeout", 1, 10000, 40, {}))
{
  setObjectName("createVideoDialog");
  setWindowTitle(tr("Create video"));
  _output->setObjectName("output");
  _output->setMinimumWidth(fontMetrics().averageCharWidth() * 45);
  _isCircular->setObjectName("circular");
  _isCircular->setToolTip(tr("The scene turns once about its Y axis while it is recorded"));
  _isRepeated->setObjectName("repeat");
  _isRepeated->setToolTip(tr("It goes on turning until the recording is stopped"));
  auto* const browse = new QPushButton(tr("Browse..."), this);
  auto* const file = new QHBoxLayout;
  file->addWidget(_output, 1);
  file->addWidget(browse);
  auto* const form = new QFormLayout(this);
  form->addRow(tr("Output file"), file);
  form->addRow(tr("Frame rate"), _frameRate);
  form->addRow(QString(), _isCircular);
  form->addRow(QString(), _isRepeated);
  form->addRow(tr("Step size"), _stepSize);
  form->addRow(tr("Timeout (ms)"), _timeout);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  _ok = buttons->button(QDialogButtonBox::Ok);
  _ok->setText(tr("Record"));
  buttons->button(QDialogButtonBox::Cancel)->setText(tr("Cancel"));
  form->addRow(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(browse, &QPushButton::clicked, this, &NYXCreateVideoDialog::chooseFile);
  connect(_output, &QLineEdit::textChanged, this, &NYXCreateVideoDialog::update);
  connect(_isCircular, &QCheckBox::toggled, this, &NYXCreateVideoDialog::update);
  update();
}

QSpinBox* NYXCreateVideoDialog::createNumber(const char* name, int least, int most, int value, const QString& suffix)
{
  auto* const box = new NYXIntegerBox(this);
  box->setObjectName(name);
  box->setRange(least, most);
  box->setValue(value);
  box->setSuffix(suffix);
  return box;
}

void NYXCreateVideoDialog::chooseFile()
{
  NYXFileDialog dialog(this, "videoFileDialog", tr("Video file"), NYXFileDialog::Writing);
  dialog.setNameFilters({"*.avi", "*.flv", "*.mov", "*.mpg"});
  dialog.rememberSize();
  const QStringList chosen = dialog.ask();
  if (!chosen.isEmpty()) _output->setText(chosen.first());
}

void NYXCreateVideoDialog::update()
{
  for (QWidget* widget :
       {static_cast<QWidget*>(_isRepeated), static_cast<QWidget*>(_stepSize), static_cast<QWidget*>(_timeout)})
    widget->setEnabled(_isCircular->isChecked());
  _ok->setEnabled(!_output->text().trimmed().isEmpty());
}

NYXVideoSettings NYXCreateVideoDialog::settings() const
{
  return {withSuffix(_output->text()), _frameRate->value(), _isCircular->isChecked(),
          _isRepeated->isChecked(),    _stepSize->value(),  _timeout->value()};
}
