#pragma once

#include <QString>
#include <QtPlugin>

class NYXStack;

/// A plug-in: a shared library whose object appears in the Plugins menu and is run on the current stack.
class NYXPlugin
{
public:
  virtual ~NYXPlugin() = default;

  /// Text of the menu entry.
  virtual QString name() const = 0;

  /// Does the work. Errors are thrown as exceptions and shown to the user.
  virtual void run(NYXStack& stack) = 0;
};

Q_DECLARE_INTERFACE(NYXPlugin, "Mirelo.NYXPlugin/1.0")
