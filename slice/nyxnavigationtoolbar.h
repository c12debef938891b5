#pragma once

#include <QToolBar>

/// The tool bar for going through the slices and for their zoom.
class NYXNavigationToolBar : public QToolBar
{
  Q_OBJECT

public:
  explicit NYXNavigationToolBar(QWidget* parent = nullptr);

  /// Adds actions behind those that are there, set apart from them.
  void addGroup(const QList<QAction*>& actions);
};
