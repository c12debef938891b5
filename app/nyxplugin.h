#pragma once

#include "app/core/nyxactionstep.h"
#include "app/core/nyxstack.h"
#include "numeric/progresssubject.h"

#include <QString>
#include <QtPlugin>

#include <functional>

/// A plug-in: a shared library whose object appears in the Plugins menu and is run on the current stack.
///
/// A run has two parts. run() does what takes long, in a thread of its own, and changes nothing. What it returns makes
/// the changes, in the thread of the windows and as one step that the user can undo. A run that throws, whatever it
/// throws, or is cancelled leaves the stack as it was. The library stays loaded until the program ends.
class NYXPlugin
{
public:
  /// Pushes the actions that change the stack into a step of the stack's history, one after the other; the stack is
  /// changed in no other way. An error takes the whole step back.
  using Change = std::function<void(NYXStack& stack, NYXActionStep& step)>;

  virtual ~NYXPlugin() = default;

  /// Text of the menu entry; asked for once, when the plug-in is loaded.
  virtual QString name() const = 0;

  /// Reads the stack and computes what is to be changed; an empty Change changes nothing.
  ///
  /// Called in a working thread: no windows, no events, no actions. Meanwhile the user sees the progress with a Cancel
  /// button and can do nothing else, so the stack stays as it is. Long work tells its steps to `progress`
  /// (ProgressStep) and calls progress.throwIfCancelled() often; the result of a cancelled run is thrown away.
  /// Errors are thrown as exceptions and shown to the user.
  virtual Change run(const NYXStack& stack, ProgressSubject& progress) = 0;
};

/// What a plug-in and the program must agree on: the headers of a plug-in are those of one version of the program.
#define MIRELO_PLUGIN_FAMILY "Mirelo.NYXPlugin/"
#define MIRELO_PLUGIN_IID MIRELO_PLUGIN_FAMILY MIRELO_VERSION

Q_DECLARE_INTERFACE(NYXPlugin, MIRELO_PLUGIN_IID)
