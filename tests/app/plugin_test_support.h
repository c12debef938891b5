#pragma once

#include "app/core/nyxstackserver.h"

#include <QAction>
#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <iostream>

/// Chooses an action of the first window that has one of this name.
inline void trigger(const QString& name)
{
  for (const QWidget* window : QApplication::topLevelWidgets())
  {
    if (auto* action = window->findChild<QAction*>(name)) return action->trigger();
  }
  std::cout << "no action " << name.toStdString() << std::endl;
}

/// Calls a function once the program has opened a stack.
inline void onceOpened(QTimer& timer, const std::function<void()>& act)
{
  QObject::connect(&timer, &QTimer::timeout, &timer,
                   [&timer, act]
                   {
                     if (NYXStackServer::server().getNumStacks() == 0) return;
                     timer.stop();
                     act();
                   });
  timer.start(50);
}
