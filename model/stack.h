#pragma once

#include "image/image.h"
#include "model/keptstatements.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/pose.h"
#include "model/poseowner.h"
#include "model/stacklist.h"
#include "model/stackslice.h"
#include "model/standardimage.h"

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

class ProgressSubject;
template <class T> class VoxelMatrix;

/// The user's project: ordered slices, the models drawn on them, and saved viewpoints.
///
/// The stack owns its slices (with their items), models and standard images and deletes the poses it lists. Lengths and
/// depths are in its length unit, micrometres at first.
class Stack : public PoseOwner, public KeptStatements
{
public:
  Stack();
  Stack(const Stack&) = delete;
  Stack& operator=(const Stack&) = delete;
  ~Stack() override;

  const std::string& getName() const { return _name; }
  /// \throw ValueError  the name cannot be stored
  void setName(const std::string& name);
  const std::string& getAnnotation() const { return _annotation; }
  void setAnnotation(const std::string& annotation) { _annotation = annotation; }
  /// The directory against which relative image file names of slices and standard images are made absolute: see Slice
  /// for when. It is not written to stack files itself.
  const std::string& getImagesPath() const { return _imagesPath; }
  /// \throw ValueError  a relative path that cannot be stored; of an absolute one the part that is written is checked
  /// when it is
  void setImagesPath(const std::string& path);
  /// Whether stack files name the images by absolute paths.
  bool getAbsoluteImagesPathPolicy() const { return _absoluteImagesPathPolicy; }
  void setAbsoluteImagesPathPolicy(bool isAbsolute) { _absoluteImagesPathPolicy = isAbsolute; }
  bool getInvertZAxis() const { return _invertZAxis; }
  void setInvertZAxis(bool isInverted) { _invertZAxis = isInverted; }
  float getDefaultSliceThickness() const { return _defaultSliceThickness; }
  void setDefaultSliceThickness(float thickness) { _defaultSliceThickness = thickness; }
  /// Distance between slices that have none of their own; the spacing is another name for it.
  float getDefaultRelativePosition() const { return _defaultRelativePosition; }
  void setDefaultRelativePosition(float distance) { _defaultRelativePosition = distance; }
  float getDefaultSliceSpacing() const { return _defaultRelativePosition; }
  void setDefaultSliceSpacing(float distance) { _defaultRelativePosition = distance; }
  const PixelCalibration& getDefaultPixelCalibration() const { return _defaultPixelCalibration; }
  void setDefaultPixelCalibration(const PixelCalibration& calibration) { _defaultPixelCalibration = calibration; }
  /// The unit of the default pixel calibration. Setting it changes no length.
  const LengthUnit& getLengthUnit() const { return _defaultPixelCalibration.getLengthUnit(); }
  void setLengthUnit(const LengthUnit& unit) { _defaultPixelCalibration.setLengthUnit(unit); }
  /// Where the user stopped.
  const std::string& getLastSegmentedSlice() const { return _lastSegmentedSlice; }
  const std::string& getLastRegisteredSlice() const { return _lastRegisteredSlice; }
  /// \throw ValueError  the name cannot be stored
  void setLastSegmentedSlice(const std::string& name);
  void setLastRegisteredSlice(const std::string& name);

  int getNumSlices() const { return _slices.getSize(); }
  /// Slice i. Unchecked.
  StackSlice* getSlice(int i) const { return _slices[i]; }
  /// The ends of the stack and the neighbours of one of its slices, or nullptr.
  StackSlice* getFirstSlice() const { return getNumSlices() > 0 ? getSlice(0) : nullptr; }
  StackSlice* getLastSlice() const { return getNumSlices() > 0 ? getSlice(getNumSlices() - 1) : nullptr; }
  StackSlice* getNextSlice(const StackSlice* slice) const;
  StackSlice* getPreviousSlice(const StackSlice* slice) const;
  /// Index of the first slice of this name or of this very slice, -1 when absent.
  int findSlice(const std::string& name) const { return _slices.find(name); }
  int findSlice(const StackSlice* slice) const { return _slices.find(slice); }
  /// Appends a slice or inserts it before slice i, and gives it back. Unchecked.
  StackSlice& addSlice(std::unique_ptr<StackSlice> slice) { return addSlice(std::move(slice), getNumSlices()); }
  StackSlice& addSlice(std::unique_ptr<StackSlice> slice, int i) { return _slices.insert(std::move(slice), i); }
  /// Detaches slice i with its items. Unchecked.
  std::unique_ptr<StackSlice> removeSlice(int i) { return _slices.take(i); }
  /// Moves slice i to place j; its items and its own depth go with it. Unchecked.
  void moveSlice(int i, int j) { _slices.move(i, j); }
  /// Detaches slice i and deletes it with its items. Unchecked.
  void deleteSlice(int i) { removeSlice(i); }
  /// The absolute positions of all slices, front to back.
  std::vector<float> absolutePositions() const;

  int getNumModels() const { return _models.getSize(); }
  /// Model i. Unchecked.
  Model* getModel(int i) const { return _models[i]; }
  /// Index of the first model of this name or of this very model, -1 when absent.
  int findModel(const std::string& name) const { return _models.find(name); }
  int findModel(const Model* model) const { return _models.find(model); }
  /// Appends a model or inserts it before model i, and gives it back. Unchecked.
  Model& addModel(std::unique_ptr<Model> model) { return addModel(std::move(model), getNumModels()); }
  Model& addModel(std::unique_ptr<Model> model, int i) { return _models.insert(std::move(model), i); }
  /// Moves model i to place j. Unchecked.
  void moveModel(int i, int j) { _models.move(i, j); }
  /// Detaches the model; its items stay on their slices. nullptr when it is not in this stack.
  std::unique_ptr<Model> removeModel(const Model* model);
  /// Deletes model i and its items. Unchecked.
  void deleteModel(int i);
  void deleteAllModels();
  /// The models of a geometry.
  std::vector<Model*> listGeometryModels(MPrimitive primitive) const;
  bool hasGeometryModels(MPrimitive primitive) const { return !listGeometryModels(primitive).empty(); }
  bool hasGeometryModelItems(MPrimitive primitive) const;

  int getNumStandardImages() const { return static_cast<int>(_standardImages.size()); }
  /// Standard image i. Unchecked.
  StandardImage* getStandardImage(int i) const { return _standardImages[static_cast<std::size_t>(i)].get(); }
  StandardImage& addStandardImage(std::unique_ptr<StandardImage> image);
  /// The calibration curves of those standard images that have one, in their order.
  int getNumCalibration() const;
  /// Curve i of them, or that of the first such image of this name; nullptr when there is none.
  const CalibrationCurve* getCalibration(int i) const;
  const CalibrationCurve* getCalibration(const std::string& name) const;

  /// Whether all slices have one corrected size, follow each other at one distance (to 1e-5 of it) and, but for the
  /// first, have a null registration; false without slices. \throw FileError  the size of an image is not known
  bool isRegular() const;
  /// What all images have in common; Mixed when they differ, Undefined without slices. \throw FileError
  ImageColorContent colorContent() const;
  /// The images as one volume, see stackToVolume(); a subject is told how far it is and may cancel it.
  template <class T> VoxelMatrix<T> toVoxelMatrix(ImageColorContent content, ProgressSubject* subject = nullptr) const;

  /// Paint the pixels inside closed contours (by the even-odd rule for pixel centres, those on the contour included)
  /// and those of regions into a label volume with a plane per slice; other items leave it as it is, and what lies
  /// outside the planes is left out. writeModelMasks() gives model i the label i + 1.
  /// \throw SizeError  other than one plane per slice   \throw RangeError  a label that T cannot hold
  /// \throw UsageError  the item lies on no slice of the stack
  /// @{
  template <class T> void writeModelItemMask(VoxelMatrix<T>& volume, const ModelItem& item, int label) const;
  template <class T> void writeModelMask(VoxelMatrix<T>& volume, const Model& model, int label) const;
  template <class T> void writeModelMasks(VoxelMatrix<T>& volume) const;
  /// @}

  /// Changes the unit and all lengths of the stack with it, so that nothing changes in space.
  void convertLengthUnit(int scale);

  /// Deletes slices, models, items, standard images and poses; all fields get their defaults.
  void clear();
  /// Readable text, for debugging; every line begins with the prefix.
  void print(const std::string& prefix) const;
  void print(const std::string& prefix, std::ostream& stream) const;

  /// Called by a slice or model that got another name.
  void noteRenamed(StackSlice& slice, const std::string& oldName) { _slices.noteRenamed(slice, oldName); }
  void noteRenamed(Model& model, const std::string& oldName) { _models.noteRenamed(model, oldName); }

private:
  void deletePoses();
  std::vector<const StandardImage*> calibratedImages() const;

  std::string _name;
  std::string _annotation;
  std::string _imagesPath;
  bool _absoluteImagesPathPolicy = false;
  bool _invertZAxis = false;
  float _defaultSliceThickness = 0;
  float _defaultRelativePosition = 0;
  PixelCalibration _defaultPixelCalibration;
  std::string _lastSegmentedSlice;
  std::string _lastRegisteredSlice;
  StackList<StackSlice> _slices{*this};
  StackList<Model> _models{*this};
  std::vector<std::unique_ptr<StandardImage>> _standardImages;
};
