#pragma once

#include <QDialog>

class QCheckBox;
class QFormLayout;

/// Small window of a contour tool beside the image: its numbers, and "OK" and "Cancel". The canvas shows the effect.
class NYXContourToolDialog : public QDialog
{
  Q_OBJECT

public:
  NYXContourToolDialog(const QString& title, QWidget* parent);

  /// Where the tool puts its controls.
  QFormLayout& form() const { return *_form; }
  /// Whether the tool is to change all selected contours, which is offered when there are several.
  void offerAll(int numContours);
  bool isForAll() const;

signals:
  /// The user wants another selection of contours.
  void scopeChanged();

private:
  QFormLayout* _form;
  QCheckBox* _all;
};
