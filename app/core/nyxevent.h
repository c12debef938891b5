#pragma once

#include "model/modelitemproperties.h"
#include "model/modelproperties.h"

class Model;
class ModelItem;
class NYXAction;
class NYXEventClient;
class NYXStack;
class Pose;
class Stack;
class StackSlice;

/// News of a change, posted on the event bus. Short-lived; payloads are borrowed.
class NYXEvent
{
public:
  enum Type
  {
    StackOpen = 0,
    StackClose = 1,
    StackName = 2,
    StackFileName = 3,
    StackModify = 4,
    StackRegistration = 5,
    StackSliceSpacing = 6,
    StackImageCalibration = 7,
    SliceAnnotation = 8,
    SliceLock = 9,
    SliceName = 10,
    SliceSpacing = 11,
    SliceImageCalibration = 12,
    SliceItemSelection = 13,
    ModelCreate = 14,
    ModelDelete = 15,
    ModelProperties = 16,
    ModelItemCreate = 17,
    ModelItemDelete = 18,
    ModelItemVertex = 19,
    ModelItemAttribute = 20,
    ModelItemTriangulationTag = 21,
    ModelItemSelect = 22,
    ModelItemConvert = 23,
    PoseCreate = 24,
    PoseDelete = 25,
    Preferences = 26
  };

  virtual ~NYXEvent() = default;
  int type() const { return _type; }

  NYXEventClient* getSender() const { return _sender; }
  void setSender(NYXEventClient* sender) { _sender = sender; }

  /// The action that was applied or reverted, or nullptr when something else made the change.
  const NYXAction* getAction() const { return _action; }
  void setAction(const NYXAction* action) { _action = action; }

protected:
  explicit NYXEvent(Type type) : _type(type) {}
  NYXEvent(const NYXEvent&) = default;
  NYXEvent& operator=(const NYXEvent&) = default;

private:
  Type _type;
  NYXEventClient* _sender = nullptr;
  const NYXAction* _action = nullptr;
};

/// News of a whole stack.
class NYXStackEvent : public NYXEvent
{
public:
  NYXStack& getStack() const { return *_stack; }

protected:
  NYXStackEvent(Type type, NYXStack& stack) : NYXEvent(type), _stack(&stack) {}

private:
  NYXStack* _stack;
};

/// News of a slice.
class NYXSliceEvent : public NYXEvent
{
public:
  StackSlice& getSlice() const { return *_slice; }

protected:
  NYXSliceEvent(Type type, StackSlice& slice) : NYXEvent(type), _slice(&slice) {}

private:
  StackSlice* _slice;
};

/// News of a model.
class NYXModelEvent : public NYXEvent
{
public:
  Model& getModel() const { return *_model; }
  /// The stack that holds the model, or held it until now; nullptr when there is none.
  const Stack* getStack() const { return _stack; }

protected:
  NYXModelEvent(Type type, Model& model);
  NYXModelEvent(Type type, Model& model, const Stack& stack) : NYXEvent(type), _model(&model), _stack(&stack) {}

private:
  Model* _model;
  const Stack* _stack;
};

/// News of an item. Its model and slice are known also when it has left them.
class NYXModelItemEvent : public NYXEvent
{
public:
  ModelItem& getItem() const { return *_item; }

protected:
  NYXModelItemEvent(Type type, ModelItem& item) : NYXEvent(type), _item(&item) {}

private:
  ModelItem* _item;
};

/// News of a pose. Its stack is known also when it has left it.
class NYXPoseEvent : public NYXEvent
{
public:
  Pose& getPose() const { return *_pose; }

protected:
  NYXPoseEvent(Type type, Pose& pose) : NYXEvent(type), _pose(&pose) {}

private:
  Pose* _pose;
};

struct NYXStackOpenEvent : NYXStackEvent
{
  explicit NYXStackOpenEvent(NYXStack& stack) : NYXStackEvent(StackOpen, stack) {}
};

/// Posted while the stack is still in the server's list.
struct NYXStackCloseEvent : NYXStackEvent
{
  explicit NYXStackCloseEvent(NYXStack& stack) : NYXStackEvent(StackClose, stack) {}
};

/// The name of a stack changed, or another of its texts: annotation, images path and how images are named in files.
struct NYXStackNameEvent : NYXStackEvent
{
  explicit NYXStackNameEvent(NYXStack& stack) : NYXStackEvent(StackName, stack) {}
};

struct NYXStackFileNameEvent : NYXStackEvent
{
  explicit NYXStackFileNameEvent(NYXStack& stack) : NYXStackEvent(StackFileName, stack) {}
};

/// The modified flag of a stack was set or cleared.
struct NYXStackModifyEvent : NYXStackEvent
{
  explicit NYXStackModifyEvent(NYXStack& stack) : NYXStackEvent(StackModify, stack) {}
};

/// Slices were aligned.
struct NYXStackRegistrationEvent : NYXStackEvent
{
  explicit NYXStackRegistrationEvent(NYXStack& stack) : NYXStackEvent(StackRegistration, stack) {}
};

/// The default spacing or thickness, or the direction of the stacking axis, changed; or the order of the slices.
struct NYXStackSliceSpacingEvent : NYXStackEvent
{
  explicit NYXStackSliceSpacingEvent(NYXStack& stack) : NYXStackEvent(StackSliceSpacing, stack) {}
};

/// The default pixel calibration or the length unit changed.
struct NYXStackImageCalibrationEvent : NYXStackEvent
{
  explicit NYXStackImageCalibrationEvent(NYXStack& stack) : NYXStackEvent(StackImageCalibration, stack) {}
};

struct NYXSliceAnnotationEvent : NYXSliceEvent
{
  explicit NYXSliceAnnotationEvent(StackSlice& slice) : NYXSliceEvent(SliceAnnotation, slice) {}
};

/// A long computation on a slice begins (on) or ends; the slice is not edited in between.
struct NYXSliceLockEvent : NYXSliceEvent
{
  NYXSliceLockEvent(StackSlice& slice, bool isOn) : NYXSliceEvent(SliceLock, slice), isLocked(isOn) {}

  bool isLocked;
};

struct NYXSliceNameEvent : NYXSliceEvent
{
  explicit NYXSliceNameEvent(StackSlice& slice) : NYXSliceEvent(SliceName, slice) {}
};

/// The depth or the thickness of a slice changed.
struct NYXSliceSpacingEvent : NYXSliceEvent
{
  explicit NYXSliceSpacingEvent(StackSlice& slice) : NYXSliceEvent(SliceSpacing, slice) {}
};

struct NYXSliceImageCalibrationEvent : NYXSliceEvent
{
  explicit NYXSliceImageCalibrationEvent(StackSlice& slice) : NYXSliceEvent(SliceImageCalibration, slice) {}
};

/// What is selected on a slice changed; posted once per gesture.
struct NYXSliceItemSelectionEvent : NYXSliceEvent
{
  explicit NYXSliceItemSelectionEvent(StackSlice& slice) : NYXSliceEvent(SliceItemSelection, slice) {}
};

struct NYXModelCreateEvent : NYXModelEvent
{
  explicit NYXModelCreateEvent(Model& model) : NYXModelEvent(ModelCreate, model) {}
};

/// A model leaves its stack, and its items their slices with it, without news of their own.
struct NYXModelDeleteEvent : NYXModelEvent
{
  explicit NYXModelDeleteEvent(Model& model) : NYXModelEvent(ModelDelete, model) {}
  /// When the model has left the stack already.
  NYXModelDeleteEvent(Model& model, const Stack& stack) : NYXModelEvent(ModelDelete, model, stack) {}
};

/// The properties of a model changed, or its name or its place in the stack, with the former properties.
class NYXModelPropertiesEvent : public NYXModelEvent
{
public:
  NYXModelPropertiesEvent(Model& model, const ::ModelProperties& oldProperties,
                          const ModelItemProperties& oldItemProperties)
    : NYXModelEvent(ModelProperties, model), _oldProperties(oldProperties), _oldItemProperties(oldItemProperties)
  {
  }

  const ::ModelProperties& getOldProperties() const { return _oldProperties; }
  const ModelItemProperties& getOldItemProperties() const { return _oldItemProperties; }

private:
  ::ModelProperties _oldProperties;
  ModelItemProperties _oldItemProperties;
};

struct NYXModelItemCreateEvent : NYXModelItemEvent
{
  explicit NYXModelItemCreateEvent(ModelItem& item) : NYXModelItemEvent(ModelItemCreate, item) {}
};

struct NYXModelItemDeleteEvent : NYXModelItemEvent
{
  explicit NYXModelItemDeleteEvent(ModelItem& item) : NYXModelItemEvent(ModelItemDelete, item) {}
};

/// The vertices or the region of an item changed.
struct NYXModelItemVertexEvent : NYXModelItemEvent
{
  explicit NYXModelItemVertexEvent(ModelItem& item) : NYXModelItemEvent(ModelItemVertex, item) {}
};

struct NYXModelItemAttributeEvent : NYXModelItemEvent
{
  explicit NYXModelItemAttributeEvent(ModelItem& item) : NYXModelItemEvent(ModelItemAttribute, item) {}
};

struct NYXModelItemTriangulationTagEvent : NYXModelItemEvent
{
  explicit NYXModelItemTriangulationTagEvent(ModelItem& item) : NYXModelItemEvent(ModelItemTriangulationTag, item) {}
};

struct NYXModelItemSelectEvent : NYXModelItemEvent
{
  explicit NYXModelItemSelectEvent(ModelItem& item) : NYXModelItemEvent(ModelItemSelect, item) {}
};

/// An item went from one model to another.
class NYXModelItemConvertEvent : public NYXModelItemEvent
{
public:
  NYXModelItemConvertEvent(ModelItem& item, Model& source, Model& destination)
    : NYXModelItemEvent(ModelItemConvert, item), _source(&source), _destination(&destination)
  {
  }

  Model& getSourceModel() const { return *_source; }
  Model& getDestinationModel() const { return *_destination; }

private:
  Model* _source;
  Model* _destination;
};

struct NYXPoseCreateEvent : NYXPoseEvent
{
  explicit NYXPoseCreateEvent(Pose& pose) : NYXPoseEvent(PoseCreate, pose) {}
};

struct NYXPoseDeleteEvent : NYXPoseEvent
{
  explicit NYXPoseDeleteEvent(Pose& pose) : NYXPoseEvent(PoseDelete, pose) {}
};

struct NYXPreferencesEvent : NYXEvent
{
  NYXPreferencesEvent() : NYXEvent(Preferences) {}
};
