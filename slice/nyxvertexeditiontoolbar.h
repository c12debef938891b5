#pragma once

#include <QToolBar>

class QActionGroup;
class QMenu;

/// What vertex edition can do.
enum class VertexEditionMode
{
  Move,
  Insert,
  Delete
};

/// Small tool window of the vertex edition: its modes, and its end.
class NYXVertexEditionToolBar : public QToolBar
{
  Q_OBJECT

public:
  explicit NYXVertexEditionToolBar(QWidget* parent);

  /// Regions can only be erased.
  void setModesEnabled(bool isEnabled);
  void setMode(VertexEditionMode mode);
  /// Adds the entries to a menu, the modes first.
  void fill(QMenu& menu) const;

signals:
  void modeChosen(VertexEditionMode mode);
  void endChosen();

protected:
  void hideEvent(QHideEvent* event) override;

private:
  QAction* addMode(const QString& text, const QString& toolTip, const QString& name, VertexEditionMode mode);

  QAction* _move;
  QAction* _insert;
  QAction* _delete;
  QAction* _end;
};
