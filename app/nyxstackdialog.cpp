#include "app/nyxstackdialog.h"

#include "app/core/actions/nyxsliceaction.h"
#include "app/core/nyxeventserver.h"
#include "app/core/nyxstack.h"
#include "app/nyxdialogs.h"
#include "app/nyxnames.h"
#include "numeric/exception.h"
#include "slice/image/nyxdialogsize.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

NYXStackDialog::NYXStackDialog(NYXStack& stack, const QString& name, const QString& title, QWidget* parent)
  : QDialog(parent), _stack(&stack)
{
  setObjectName(name);
  setWindowTitle(title);
  _refresh.setSingleShot(true);
  _refresh.setInterval(0);
  connect(&_refresh, &QTimer::timeout, this,
          [this]
          {
            if (_isStackOpen) refresh();
          });
}

NYXStackDialog::~NYXStackDialog() = default;

void NYXStackDialog::layOut(QWidget& content, QDialogButtonBox::StandardButtons buttons)
{
  _message = new QLabel(this);
  _message->setObjectName("message");
  _message->setTextFormat(Qt::PlainText);
  _message->setWordWrap(true);
  _buttons = createButtonBox(buttons, *this);
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(&content, 1);
  layout->addWidget(_message);
  layout->addWidget(_buttons);
  connect(_buttons, &QDialogButtonBox::accepted, this,
          [this]
          {
            if (apply()) accept();
          });
  if (QPushButton* const applyButton = _buttons->button(QDialogButtonBox::Apply))
    connect(applyButton, &QPushButton::clicked, this, &NYXStackDialog::apply);
  for (const auto which : {QDialogButtonBox::Ok, QDialogButtonBox::Close, QDialogButtonBox::Cancel})
    if (QPushButton* const safe = _buttons->button(which)) return safe->setDefault(true);
}

void NYXStackDialog::finish(int numCharacters, int numLines)
{
  refresh();
  nameParts(*this);
  rememberSize(*this, numCharacters, numLines);
  NYXEventServer::attach(*this);
}

QPushButton& NYXStackDialog::button(QDialogButtonBox::StandardButton button) const
{
  return *_buttons->button(button);
}

void NYXStackDialog::enableApplying(bool canApply, bool isChanged)
{
  if (QPushButton* const ok = _buttons->button(QDialogButtonBox::Ok)) ok->setEnabled(canApply);
  if (QPushButton* const apply = _buttons->button(QDialogButtonBox::Apply)) apply->setEnabled(canApply && isChanged);
}

void NYXStackDialog::showMessage(const QString& message)
{
  _message->setText(message);
  if (!message.isEmpty()) emit messageShown(message);
}

bool NYXStackDialog::attempt(const std::function<void()>& work)
{
  try
  {
    work();
    return true;
  }
  catch (const Exception& error)
  {
    showMessage(QString::fromStdString(error.getWhat()));
  }
  catch (const std::exception& error)
  {
    showMessage(error.what());
  }
  return false;
}

bool NYXStackDialog::apply()
{
  if (!_isStackOpen) return false;
  showMessage({});
  const bool isDone = attempt([this] { change(); });
  refresh();
  return isDone;
}

bool NYXStackDialog::concerns(const Stack* stack) const
{
  return stack == _stack;
}

void NYXStackDialog::stackOpenEvent(const NYXStackOpenEvent& event)
{
  note(event);
}

void NYXStackDialog::stackCloseEvent(const NYXStackCloseEvent& event)
{
  if (&event.getStack() != _stack) return note(event);
  _isStackOpen = false;
  NYXEventServer::detach(*this);
  reject();
}

void NYXStackDialog::processSliceAction(NYXSliceAction& action)
{
  if (concerns(&action.getStack())) refreshSoon();
}

void NYXStackDialog::note(const NYXStackEvent& event)
{
  if (concerns(&event.getStack())) refreshSoon();
}

void NYXStackDialog::note(const NYXSliceEvent& event)
{
  if (concerns(event.getSlice().getStack())) refreshSoon();
}

void NYXStackDialog::note(const NYXModelEvent& event)
{
  if (concerns(event.getStack())) refreshSoon();
}

void NYXStackDialog::note(const NYXModelItemEvent& event)
{
  const StackSlice* const slice = event.getItem().getSlice();
  if (slice && concerns(slice->getStack())) refreshSoon();
}
