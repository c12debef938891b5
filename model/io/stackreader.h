#pragma once

#include "model/io/stackio.h"
#include "model/io/stackiocontext.h"
#include "model/io/stacklexer.h"
#include "numeric/exception.h"

#include <optional>
#include <string>

class StackArguments;

/// Reads stack files.
///
/// A statement that fails changes nothing and leaves a line in the log; only a file that cannot be read is fatal. Of
/// calibration curves and standard images, those that fail are kept with the object they stand behind. Whether a pixel
/// height goes with the other numbers is known, and logged, when the next slice is opened or the file ends.
/// Images are not opened, so that missing ones do not matter here.
class StackReader : public StackIO
{
public:
  /// Why a statement failed.
  class NumArgsError : public Exception
  {
  };
  class ContextError : public Exception
  {
  };
  class ArgValueError : public Exception
  {
  };
  class KeywordError : public Exception
  {
  };

  /// Replaces the stack by the one in the file, ".sdf" being appended to a name that does not end so. A file that
  /// cannot be opened leaves the stack as it was, one line in the log and a fatal error. One whose reading fails on
  /// the way adds a line and a fatal error; the stack is empty then.
  /// \throw Cancelled  the user stopped it; the stack is empty then
  void read(Stack& stack, const std::string& fileName);
  /// The name of a stack file: ".sdf" is appended to one without this suffix.
  static std::string withSuffix(const std::string& fileName);

  /// Whether the file held a "STACK" statement; without one it is no stack file.
  bool hasReadStack() const { return _context.getStack() != nullptr; }

private:
  struct Rule;
  static const Rule& ruleOf(StackKeyword keyword);
  class OpenFile;

  void readFile(Stack& stack, OpenFile& file);
  void readStatements(Stack& stack);
  void readStatement(const StackLexer::Statement& statement);
  void parseTokens(const StackLexer::Statement& statement);
  /// Closes what the statement should have replaced and adds a line to the log.
  void fail(const StackLexer::Statement& statement, const Exception& error);
  static std::string failureLine(const std::string& keyword, const Exception& error);
  /// Keeps a statement of calibration that failed where it will fail again when it was written and is read.
  void keepStatement(const StackLexer::Statement& statement, const Exception& error);
  void shareLengthUnit() const;

  // One input routine per keyword, called with the right number of arguments in the right context.
  void inputAnnotation(const StackArguments& arguments);
  void inputBeginCapFlag(const StackArguments& arguments);
  void inputBrilliancy(const StackArguments& arguments);
  void inputColor(const StackArguments& arguments);
  void inputEcoRendering(const StackArguments& arguments);
  void inputEndCapFlag(const StackArguments& arguments);
  void inputFileFormatVersion(const StackArguments& arguments);
  void inputFilledIn(const StackArguments& arguments);
  void inputHidden3D(const StackArguments& arguments);
  void inputImage(const StackArguments& arguments);
  void inputImagesPath(const StackArguments& arguments);
  void inputInvertZAxis(const StackArguments& arguments);
  void inputAbsoluteImagesPathPolicy(const StackArguments& arguments);
  void inputLastSegmentedSlice(const StackArguments& arguments);
  void inputLastRegisteredSlice(const StackArguments& arguments);
  void inputLengthUnitScale(const StackArguments& arguments);
  void inputModel(const StackArguments& arguments);
  void inputModelItem(const StackArguments& arguments);
  void inputModelItemData(const StackArguments& arguments);
  void parseNormalSmoothing(const StackArguments& arguments);
  void inputPixelAspect(const StackArguments& arguments);
  void inputPixelHeight(const StackArguments& arguments);
  void inputPixelWidth(const StackArguments& arguments);
  void inputPointsize(const StackArguments& arguments);
  void inputPose(const StackArguments& arguments);
  void inputPoseRotation(const StackArguments& arguments);
  void inputPoseShift(const StackArguments& arguments);
  void inputPoseZoom(const StackArguments& arguments);
  void inputAmbientLight(const StackArguments& arguments);
  void inputDiffuseLight(const StackArguments& arguments);
  void inputSpecularLight(const StackArguments& arguments);
  void inputPosition(const StackArguments& arguments);
  void inputPrimitive(const StackArguments& arguments);
  void inputRelPosition(const StackArguments& arguments);
  void inputRenderingMode(const StackArguments& arguments);
  void inputResampling(const StackArguments& arguments);
  void inputRotate(const StackArguments& arguments);
  void inputShift(const StackArguments& arguments);
  void inputSlice(const StackArguments& arguments);
  void inputSliceHeight(const StackArguments& arguments);
  void inputSliceWidth(const StackArguments& arguments);
  void inputStack(const StackArguments& arguments);
  void inputStackSlice(const StackArguments& arguments);
  void inputThickness(const StackArguments& arguments);
  void inputTransparency(const StackArguments& arguments);
  void parseTriangulationTag(const StackArguments& arguments);
  void parseVertexSmoothing(const StackArguments& arguments);
  void inputVertexSymbol(const StackArguments& arguments);
  void inputStandardImage(const StackArguments& arguments);
  void inputSample(const StackArguments& arguments);
  void inputSampleCoords(const StackArguments& arguments);
  void inputSampleValue(const StackArguments& arguments);
  void inputCalibrationCurve(const StackArguments& arguments);
  void inputFit(const StackArguments& arguments);

  void logDuplicate(const char* kind, const std::string& name);
  void addSlice(const std::string& name, const ImageSource& source);
  ModelProperties& modelProperties() { return _context.getModel()->getProperties(); }
  ModelItemProperties& itemProperties() { return *_context.getItemProperties(); }
  /// Gives what was stated of the pixel size to the slice or, before slices, to the stack's default. A height that does
  /// not go with the other numbers is dropped and leaves a line in the log.
  void closePixelSize();

  /// What the statements since the slice or, before slices, the stack was opened say: each number on its own, so that
  /// their order does not matter.
  struct StatedPixelSize
  {
    std::optional<float> width;
    std::vector<float> heights; // the last one counts that goes with the other numbers
    std::optional<float> aspectRatio;

    /// The calibration with these numbers, as PixelCalibration::compute() derives the others.
    PixelCalibration applied(PixelCalibration calibration) const;
  };

  Stack* _target = nullptr; // becomes the current stack with the "STACK" statement
  StackIOContext _context;
  StatedPixelSize _pixelSize;
  StackLexer* _lexer = nullptr; // while read() runs
};
