#pragma once

#include <QSplitter>

/// A horizontal splitter without collapsible parts that keeps its sizes in the settings under its own name.
class NYXSplitter : public QSplitter
{
public:
  NYXSplitter(const QString& name, QWidget* parent);

  /// Takes the sizes of the last session, or the given ones when there are none.
  void restoreSizes(const QList<int>& defaultSizes);
};
