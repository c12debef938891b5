#pragma once

#include "app/core/nyxeventclient.h"

#include <QListWidget>

class NYXStack;

/// The open stacks by name, with * behind those that have unsaved changes. Follows the event bus.
class NYXStackListWidget : public QListWidget, public NYXEventClient
{
  Q_OBJECT

public:
  explicit NYXStackListWidget(QWidget* parent = nullptr);

  /// The selected stack, nullptr when there is none.
  NYXStack* currentStack() const;
  void selectStack(const NYXStack& stack);

signals:
  void currentStackChanged(NYXStack* stack);

protected:
  void stackOpenEvent(const NYXStackOpenEvent& event) override;
  void stackCloseEvent(const NYXStackCloseEvent& event) override;
  void stackNameEvent(const NYXStackNameEvent& event) override;
  void stackFileNameEvent(const NYXStackFileNameEvent& event) override;
  void stackModifyEvent(const NYXStackModifyEvent& event) override;

private:
  QListWidgetItem* itemOf(const NYXStack& stack) const;
  void append(NYXStack& stack);
  void refresh(const NYXStack& stack);
};
