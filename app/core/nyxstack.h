#pragma once

#include "app/core/nyxeventclient.h"
#include "app/core/nyxstackhistories.h"
#include "app/core/nyxstackimages.h"
#include "geometry/reconstruction/stackreconstruction.h"
#include "model/stack.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

/// An open stack: the project with its file name, its modified flag, its histories, and what is kept to show it.
///
/// The stack counts as modified unless every history stands at the step at which it was saved, and nothing else changed
/// since: changes told by events that no action posted, and actions that were applied and belong to no step yet.
class NYXStack : public Stack, public NYXEventClient
{
public:
  NYXStack();
  ~NYXStack() override;

  /// The stack file; empty for a stack that was never saved.
  const QString& getFilename() const { return _filename; }
  void setFilename(const QString& filename);

  /// What is known of the stack file, to tell whether saving over it may lose something.
  struct FileState
  {
    bool wasReadWhole = true; ///< nothing of it was refused when it was read
    QDateTime lastModified;   ///< when it was read or written last; invalid for a stack that was neither
    qint64 size = 0;
  };
  const FileState& getFileState() const { return _fileState; }
  /// Notes that the file was read or written just now.
  void noteFile(bool wasReadWhole);
  /// Whether the file is another one than when it was read or written last.
  bool hasFileChanged() const;

  /// The losses of digits that the user was told of and accepts when the stack is saved.
  const QStringList& getAcceptedLosses() const { return _acceptedLosses; }
  void setAcceptedLosses(const QStringList& lines) { _acceptedLosses = lines; }
  /// What the last save told that the file does not say.
  const QStringList& getToldWarnings() const { return _toldWarnings; }
  void setToldWarnings(const QStringList& lines) { _toldWarnings = lines; }

  bool isModified() const;
  /// Posts NYXStackModifyEvent. Not modified: the stack is saved as it is now. Modified: it stays so until saved.
  void setModified(bool flag);
  /// Called by actions that are applied (1) or reverted (-1) without belonging to a step.
  void noteLooseChange(int count);

  /// What windows call this stack: its name, else its file's base name, else "Untitled".
  QString displayName() const;

  /// The steps that can be undone; see NYXStackHistories for what belongs where, and for undoing both together.
  NYXStackHistories& histories() { return _histories; }
  NYXActionHistory& history() { return _histories.history(); }
  NYXActionHistory& sliceHistory(const StackSlice& slice) { return _histories.sliceHistory(slice); }
  void destroyHistory() { _histories.destroyHistory(); }

  /// While the slices are being aligned.
  void beginRegistration() { _isInRegistration = true; }
  void endRegistration() { _isInRegistration = false; }
  bool inRegistration() const { return _isInRegistration; }

  /// The slices that computations have locked (NYXSliceLockEvent), in the order in which they were; nothing is edited
  /// on them, and histories refuse steps that change them.
  const std::vector<const StackSlice*>& getLockedSlices() const { return _lockedSlices; }
  bool isLocked(const StackSlice& slice) const;

  /// Computes the places of the slices in space. \throw FileError  the size of a slice's image is not known
  void updateReconstruction();
  /// Those places, computed anew when the stack has told of a change to its slices. \throw FileError  as above
  StackReconstruction<float>& getReconstruction();

  /// What the windows keep with the stack; nullptr until one of them hands it over.
  /// @{
  NYXStackImages* getPanoramaImageServer() const { return _panoramaImageServer.get(); }
  NYXStackImages* getRawImageCache() const { return _rawImageCache.get(); }
  NYXStackImages* getSlicePixmapCache() const { return _slicePixmapCache.get(); }
  void setPanoramaImageServer(std::unique_ptr<NYXStackImages> server) { _panoramaImageServer = std::move(server); }
  void setRawImageCache(std::unique_ptr<NYXStackImages> cache) { _rawImageCache = std::move(cache); }
  void setSlicePixmapCache(std::unique_ptr<NYXStackImages> cache) { _slicePixmapCache = std::move(cache); }
  /// @}

protected:
  void stackNameEvent(const NYXStackNameEvent& event) override;
  void stackRegistrationEvent(const NYXStackRegistrationEvent& event) override;
  void stackSliceSpacingEvent(const NYXStackSliceSpacingEvent& event) override;
  void stackImageCalibrationEvent(const NYXStackImageCalibrationEvent& event) override;
  void sliceAnnotationEvent(const NYXSliceAnnotationEvent& event) override;
  void sliceLockEvent(const NYXSliceLockEvent& event) override;
  void sliceNameEvent(const NYXSliceNameEvent& event) override;
  void sliceSpacingEvent(const NYXSliceSpacingEvent& event) override;
  void sliceImageCalibrationEvent(const NYXSliceImageCalibrationEvent& event) override;
  void modelCreateEvent(const NYXModelCreateEvent& event) override;
  void modelDeleteEvent(const NYXModelDeleteEvent& event) override;
  void modelPropertiesEvent(const NYXModelPropertiesEvent& event) override;
  void modelItemCreateEvent(const NYXModelItemCreateEvent& event) override;
  void modelItemDeleteEvent(const NYXModelItemDeleteEvent& event) override;
  void modelItemVertexEvent(const NYXModelItemVertexEvent& event) override;
  void modelItemAttributeEvent(const NYXModelItemAttributeEvent& event) override;
  void modelItemTriangulationTagEvent(const NYXModelItemTriangulationTagEvent& event) override;
  void modelItemConvertEvent(const NYXModelItemConvertEvent& event) override;
  void poseCreateEvent(const NYXPoseCreateEvent& event) override;
  void poseDeleteEvent(const NYXPoseDeleteEvent& event) override;
  void processSliceAction(NYXSliceAction& action) override;

private:
  /// Notes a change to the content of a stack, if it is this one.
  void noteChange(const NYXEvent& event, const Stack* stack);
  /// The same of a change that moves slices in space.
  void noteMovedSlices(const NYXEvent& event, const Stack* stack);
  void tellWhenModifiedFlips();

  QString _filename;
  FileState _fileState;
  QStringList _acceptedLosses;
  QStringList _toldWarnings;
  bool _isChangedByOthers = false; // since it was saved, by what no history knows
  int _numLooseChanges = 0;
  bool _wasModified = false; // as told last
  bool _isInRegistration = false;
  std::vector<const StackSlice*> _lockedSlices;
  NYXStackHistories _histories;
  std::optional<StackReconstruction<float>> _reconstruction; // none: to be computed
  std::unique_ptr<NYXStackImages> _panoramaImageServer;
  std::unique_ptr<NYXStackImages> _rawImageCache;
  std::unique_ptr<NYXStackImages> _slicePixmapCache;
};
