#pragma once

#include "model/io/stackio.h"
#include "model/stack.h"

#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

class StatementBuffer;

/// Writes stack files: beside the target, flushed to disk and renamed over it.
///
/// The same stack gives the same bytes, and a file that was written, read and written again is the same.
class StackWriter : public StackIO
{
public:
  /// \throw FileWriteError  the file cannot be written, or a path in the stack cannot be stored; the file is as it was
  /// \throw Cancelled       the user stopped it; the file is as it was
  void write(const Stack& stack, const std::string& fileName);

  /// Sets what runs once the new file is complete on the disk beside the target and before it takes its place, as to
  /// put the old file aside. It does not run when writing fails; when it throws, the file is as it was.
  void setBeforeReplace(std::function<void()> hook) { _beforeReplace = std::move(hook); }

  /// What the file says otherwise than the stack: lengths that lose more than half a percent with two decimals,
  /// names that occur twice, notes that hold an escape, items without a slice.
  const std::vector<std::string>& getWarnings() const { return _warnings; }

private:
  void writeHeader(const Stack& stack);
  void writeStandardImages(const Stack& stack);
  void writeStandardImage(const Stack& stack, const StandardImage& image);
  void writeCalibrationCurve(const Calibrated& calibrated);
  void writeSlices(const Stack& stack);
  void writeSlice(const Stack& stack, const StackSlice& slice);
  void writeImage(const Stack& stack, const StackSlice& slice);
  void writeMosaic(const Stack& stack, const StackSlice& slice);
  void writeImageSize(const ImageSource& source);
  void writePosition(const Stack& stack, const StackSlice& slice);
  void writeCalibration(const Stack& stack, const StackSlice& slice);
  void writeRegistration(const Registration& registration);
  void writeModels(const Stack& stack);
  void writeModel(const Model& model);
  void writeItem(const ModelItem& item);
  void writeItemProperties(const ModelItemProperties& properties);
  void writeItemData(const ModelItem& item);
  void writeRuns(const RLEItemSet& set);
  void writeVertices(const Vertices<int>& vertices);
  void writePoses(const Stack& stack);
  void writeKeptStatements(const KeptStatements& statements);

  /// Writes the images path when the file lies in another directory than the last one.
  /// \return the file's name without its directory
  std::string enterDirectory(const Stack& stack, const std::string& imageFileName);
  /// Path from the stack file's folder. When that is reached through links, the shorter of the paths as it is named and
  /// as it is without links, so that folders that are moved together keep it.
  std::filesystem::path relativeDirectory(const std::filesystem::path& directory) const;
  /// Counts an object that was written and reports it now and then.
  void step();

  std::function<void()> _beforeReplace;  // may be empty
  StatementBuffer* _out = nullptr;       // while write() runs
  std::filesystem::path _namedDirectory; // of the stack file as it was named
  std::filesystem::path _stackDirectory; // without links
  std::string _imagesPath;               // as written last
  long _numWritten = 0;
  std::vector<std::string> _warnings;
};
