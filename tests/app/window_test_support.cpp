#include "window_test_support.h"

#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxrootmediator.h"
#include "app/nyxrootwindow.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QPointer>
#include <QSettings>
#include <QTimer>

WindowTest::WindowTest()
{
  QSettings().clear();
  _window = new NYXRootWindow;
}

WindowTest::~WindowTest()
{
  NYXStackServer& server = NYXStackServer::server();
  while (server.getNumStacks() > 0) server.removeStack(server.getStack(0));
  delete _window;
}

QAction* WindowTest::action(const QString& text) const
{
  for (QAction* action : _window->findChildren<QAction*>())
  {
    if (action->text() == text) return action;
  }
  return nullptr;
}

NYXStack& addStack(const QString& name, const QString& filename, bool isModified)
{
  auto stack = std::make_unique<NYXStack>();
  stack->setName(name.toStdString());
  stack->setFilename(filename);
  stack->setModified(isModified);
  return NYXStackServer::server().addStack(std::move(stack));
}

void inDialogs(const std::function<void(QDialog&)>& act, const std::function<void()>& work)
{
  QTimer timer;
  QPointer<QDialog> last; // knows a new dialog at the place of an old one
  QObject::connect(&timer, &QTimer::timeout,
                   [&]
                   {
                     auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
                     if (dialog == last) return;
                     last = dialog;
                     if (dialog != nullptr) act(*dialog);
                   });
  timer.start(5);
  work();
}

void click(const QDialog& dialog, const QString& button)
{
  for (QAbstractButton* candidate : dialog.findChildren<QAbstractButton*>())
  {
    if (candidate->text().remove('&') == button) return candidate->click();
  }
}

QStringList answering(const QList<QMessageBox::StandardButton>& answers, const std::function<void()>& work)
{
  QStringList seen;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout,
                   [&]
                   {
                     auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                     if (box == nullptr) return;
                     const auto answer = answers.value(seen.size(), QMessageBox::Cancel);
                     seen.append(box->windowTitle() + "|" + box->text());
                     if (QAbstractButton* button = box->button(answer))
                       button->click();
                     else
                       box->reject();
                   });
  timer.start(5);
  work();
  return seen;
}
