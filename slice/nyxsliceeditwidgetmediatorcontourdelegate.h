#pragma once

#include "geometry/curve.h"
#include "slice/nyxsliceeditwidgetmediatordelegate.h"

#include <QPointer>

#include <optional>
#include <vector>

class NYXContourToolDialog;
class QFormLayout;

/// Base of the tools that change the selected contours by a few numbers: a small dialog, the effect shown on the canvas
/// as long as it is open, and one step of the history when it is accepted.
class NYXSliceEditWidgetMediatorContourDelegate : public NYXSliceEditWidgetMediatorDelegate
{
  Q_OBJECT

public:
  explicit NYXSliceEditWidgetMediatorContourDelegate(NYXSliceEditWidgetMediator& mediator);
  ~NYXSliceEditWidgetMediatorContourDelegate() override;

  /// Works on the selected contours that the tool can change; nothing happens when there is none.
  void activate() override;
  void deactivate() override;
  using NYXSliceEditWidgetMediatorDelegate::worksOn;
  bool worksOn(const ModelItem& item) const override;
  void followItem() override { updatePreview(); }

public slots:
  /// Changes the first selected contour, or all of them, leaves the tool, and says why when it could not.
  void apply();
  void applyToAll();

protected:
  void paintFeedback(QPainter& painter) override;
  /// Title of the dialog.
  virtual QString title() const = 0;
  /// Whether the tool can change the item; curves by default.
  virtual bool isApplicable(const ModelItem& item) const;
  /// Puts the controls for the first contour into the form; they call updatePreview() when they change.
  virtual void addControls(QFormLayout& form, const ModelItem& item) = 0;
  /// The vertices that the contour gets; none when there is nothing to change it to.
  virtual std::optional<Vertices<int>> changed(const ModelItem& item) const = 0;
  /// Why changed() gives none.
  virtual QString refusal() const { return {}; }

  /// Only while active.
  const ModelItem& firstItem() const { return *_items.front(); }
  void updatePreview();
  void keyPressEvent(QKeyEvent& event) override;

private:
  std::optional<Vertices<int>> changedOnImage(const ModelItem& item) const;
  void applyTo(const std::vector<ModelItem*>& items);

  std::vector<ModelItem*> _items; // that can be changed
  std::vector<Curve<int>> _previews;
  QPointer<NYXContourToolDialog> _dialog;
};
