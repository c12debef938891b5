#pragma once

#include "slice/image/nyxslicewidget.h"

class NYXRegistrationCanvas;

/// The canvas of registration with what other windows with an image have around theirs.
class NYXRegistrationView : public NYXSliceWidget
{
  Q_OBJECT

public:
  explicit NYXRegistrationView(QWidget* parent = nullptr);

  NYXRegistrationCanvas& registrationCanvas() const;

  /// The current slice, its neighbours before and after it being those of its stack; nullptr for none.
  void showSlice(StackSlice* slice);
};
