#pragma once

#include "app/core/nyxeventclient.h"
#include "app/core/nyxstack.h"
#include "model/stackslice.h"

#include <QObject>

#include <memory>
#include <vector>

/// The items of the slice before another one, where they lie on that other slice: mapped through the places that the
/// stack's reconstruction gives both slices. Follows the event bus.
class NYXPreviousSlice : public QObject, public NYXEventClient
{
  Q_OBJECT

public:
  explicit NYXPreviousSlice(QObject* parent = nullptr);

  /// nullptr for none.
  void setSlice(StackSlice* slice);
  bool hasPrevious() const { return _slice != nullptr && _slice->prevSlice() != nullptr; }

  /// A slice of no stack with the items, none of them selected; also outside of the image. It is there until changed()
  /// is sent or another slice is set. \throw FileError  the size of a slice's image is not known
  const StackSlice& items();

  /// New items on the slice, as far as they lie on its image; `numLeftOut` is the number of those that do not. The
  /// slice does not list them yet. \throw FileError  as above
  std::vector<std::unique_ptr<ModelItem>> copies(int& numLeftOut);

signals:
  /// The items are not up to date any more; sent before a model or slice that they refer to ceases to exist.
  void changed();

protected:
  void stackCloseEvent(const NYXStackCloseEvent& event) override { forget(&event.getStack()); }
  void stackRegistrationEvent(const NYXStackRegistrationEvent& event) override { forget(&event.getStack()); }
  void stackImageCalibrationEvent(const NYXStackImageCalibrationEvent& event) override { forget(&event.getStack()); }
  void sliceImageCalibrationEvent(const NYXSliceImageCalibrationEvent& event) override;
  void modelDeleteEvent(const NYXModelDeleteEvent& event) override { forget(event.getStack()); }
  void modelPropertiesEvent(const NYXModelPropertiesEvent& event) override { forget(event.getStack()); }
  void modelItemCreateEvent(const NYXModelItemCreateEvent& event) override { follow(event); }
  void modelItemDeleteEvent(const NYXModelItemDeleteEvent& event) override { follow(event); }
  void modelItemVertexEvent(const NYXModelItemVertexEvent& event) override { follow(event); }
  void modelItemAttributeEvent(const NYXModelItemAttributeEvent& event) override { follow(event); }
  void modelItemConvertEvent(const NYXModelItemConvertEvent& event) override { follow(event); }
  void processSliceAction(NYXSliceAction&) override { forget(nullptr); }

private:
  void follow(const NYXModelItemEvent& event);
  /// Of one stack, or of any for nullptr.
  void forget(const Stack* stack);
  NYXStack& stack() const;

  StackSlice* _slice = nullptr;
  std::unique_ptr<StackSlice> _items;
};

/// A map of positions in the plane: x to m0 x + m1 y + m2, y to m3 x + m4 y + m5.
struct PlaneMap
{
  double m[6] = {1, 0, 0, 0, 1, 0};

  void apply(double x, double y, double& u, double& v) const;
  /// \throw ValueError  the map cannot be inverted
  PlaneMap inverse() const;
  /// This map after another one.
  PlaneMap after(const PlaneMap& first) const;
};

/// A copy of an item with its vertices at the nearest pixels to their mapped places, or with the pixels of its region
/// whose centres come from pixels of the region, those within the limits. It belongs to no slice and nothing of it is
/// selected.
std::unique_ptr<ModelItem> mappedCopy(const ModelItem& item, const PlaneMap& map, const BoundingBox<int>& limits);
