#include "app/nyxstacklistwidget.h"

#include "app/core/nyxeventserver.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "slice/image/nyxplaintext.h"

#include <QSignalBlocker>

namespace
{
constexpr int stackRole = Qt::UserRole;

NYXStack* stackOf(const QListWidgetItem* item)
{
  return item == nullptr ? nullptr : static_cast<NYXStack*>(item->data(stackRole).value<void*>());
}

void describe(QListWidgetItem& item, const NYXStack& stack)
{
  item.setText(stack.displayName() + (stack.isModified() ? "*" : ""));
  item.setToolTip(stack.getFilename().isEmpty() ? NYXStackListWidget::tr("Not saved yet")
                                                : plainText(stack.getFilename()));
}
} // namespace

NYXStackListWidget::NYXStackListWidget(QWidget* parent) : QListWidget(parent)
{
  setObjectName("stackList");
  connect(this, &QListWidget::currentItemChanged, this,
          [this](QListWidgetItem* item) { emit currentStackChanged(stackOf(item)); });
  NYXStackServer& server = NYXStackServer::server();
  for (int i = 0; i < server.getNumStacks(); ++i) append(server.getStack(i));
  if (count() > 0) setCurrentRow(count() - 1);
  NYXEventServer::attach(*this);
}

NYXStack* NYXStackListWidget::currentStack() const
{
  return stackOf(currentItem());
}

void NYXStackListWidget::selectStack(const NYXStack& stack)
{
  setCurrentItem(itemOf(stack));
}

QListWidgetItem* NYXStackListWidget::itemOf(const NYXStack& stack) const
{
  for (int i = 0; i < count(); ++i)
  {
    if (stackOf(item(i)) == &stack) return item(i);
  }
  return nullptr;
}

void NYXStackListWidget::append(NYXStack& stack)
{
  auto* added = new QListWidgetItem;
  added->setData(stackRole, QVariant::fromValue<void*>(&stack));
  describe(*added, stack);
  addItem(added);
}

void NYXStackListWidget::refresh(const NYXStack& stack)
{
  if (QListWidgetItem* item = itemOf(stack)) describe(*item, stack);
}

void NYXStackListWidget::stackOpenEvent(const NYXStackOpenEvent& event)
{
  append(event.getStack());
  setCurrentRow(count() - 1);
}

/// Tells of the change when the row is gone: what hides then may give the focus to this list, which would choose the
/// row again.
void NYXStackListWidget::stackCloseEvent(const NYXStackCloseEvent& event)
{
  const NYXStack* const before = currentStack();
  {
    const QSignalBlocker blocker(this);
    delete itemOf(event.getStack());
  }
  if (currentStack() != before) emit currentStackChanged(currentStack());
}

void NYXStackListWidget::stackNameEvent(const NYXStackNameEvent& event)
{
  refresh(event.getStack());
}

void NYXStackListWidget::stackFileNameEvent(const NYXStackFileNameEvent& event)
{
  refresh(event.getStack());
}

void NYXStackListWidget::stackModifyEvent(const NYXStackModifyEvent& event)
{
  refresh(event.getStack());
}
