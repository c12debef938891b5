#pragma once

#include <QString>

class NYXPlugin;
class NYXStack;
class ProgressObserver;
class QWidget;

/// How the run of a plug-in ended.
struct NYXPluginOutcome
{
  enum Kind
  {
    Done,
    Canceled, ///< the stack is as it was
    Failed    ///< the stack is as it was
  };

  Kind kind = Done;
  QString reason; ///< of a failure, in one line
};

/// Runs a plug-in of this name on a stack while a dialog over the parent, and the observer, show its progress.
/// Nothing that the plug-in throws gets through.
NYXPluginOutcome runPlugin(NYXPlugin& plugin, const QString& name, NYXStack& stack, QWidget* parent,
                           ProgressObserver& observer);

/// What the error that is being handled says of itself, in one line. To be called in a catch block, of any error.
QString textOfCurrentError();
