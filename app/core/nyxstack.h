#pragma once

#include "app/core/nyxeventclient.h"
#include "model/stack.h"

#include <QString>

/// An open stack: the project with its file name and its modified flag, which follows the events that concern it.
class NYXStack : public Stack, public NYXEventClient
{
public:
  NYXStack();

  /// The stack file; empty for a stack that was never saved.
  const QString& getFilename() const { return _filename; }
  void setFilename(const QString& filename);

  bool isModified() const { return _isModified; }
  void setModified(bool flag);

  /// What windows call this stack: its name, else its file's base name, else "Untitled".
  QString displayName() const;

protected:
  void stackNameEvent(const NYXStackNameEvent& event) override;

private:
  QString _filename;
  bool _isModified = false;
};
