#include "model/io/stackreader.h"

#include "model/io/stackarguments.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <limits>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace
{
constexpr const char* readSignature = "void StackReader::read(Stack&, const std::string&)";

[[noreturn]] void failOpening(const std::string& fileName, const std::string& reason)
{
  throw FileReadError(readSignature, "Cannot open file for reading (" + reason + ")", fileName);
}

[[noreturn]] void failOpening(const std::string& fileName, int error)
{
  failOpening(fileName, std::generic_category().message(error));
}

/// A keyword as it is shown in the log; garbage is cut short.
std::string shown(std::string_view keyword)
{
  constexpr std::size_t maxLength = 64;
  return keyword.size() <= maxLength ? std::string(keyword) : std::string(keyword.substr(0, maxLength)) + "...";
}

std::optional<StackIOContext::Kind> openedKind(StackKeyword keyword)
{
  switch (keyword)
  {
  case StackKeyword::Slice:
  case StackKeyword::StackSlice:
    return StackIOContext::Kind::Slice;
  case StackKeyword::StandardImage:
    return StackIOContext::Kind::StandardImage;
  case StackKeyword::Sample:
    return StackIOContext::Kind::Sample;
  case StackKeyword::CalibrationCurve:
    return StackIOContext::Kind::Curve;
  case StackKeyword::Model:
    return StackIOContext::Kind::Model;
  case StackKeyword::ModelItem:
    return StackIOContext::Kind::Item;
  case StackKeyword::Pose:
    return StackIOContext::Kind::Pose;
  default:
    return std::nullopt;
  }
}

bool isCalibration(StackKeyword keyword)
{
  using K = StackKeyword;
  constexpr K keywords[] = {K::CalibrationCurve, K::Fit, K::Sample, K::SampleCoords, K::SampleValue, K::StandardImage};
  return std::find(std::begin(keywords), std::end(keywords), keyword) != std::end(keywords);
}
} // namespace

/// The descriptor of a regular file that is closed on every path.
class StackReader::OpenFile
{
public:
  explicit OpenFile(const std::string& fileName) : _fileName(fileName)
  {
    struct stat status = {};
    if (stat(fileName.c_str(), &status) != 0) failOpening(fileName, errno);
    if (S_ISDIR(status.st_mode)) failOpening(fileName, EISDIR);
    if (!S_ISREG(status.st_mode)) failOpening(fileName, "Not a regular file");
    _length = static_cast<std::size_t>(status.st_size);
    _descriptor = open(fileName.c_str(), O_RDONLY | O_CLOEXEC);
    if (_descriptor < 0) failOpening(fileName, errno);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() { close(_descriptor); }

  const std::string& getName() const { return _fileName; }
  std::size_t getLength() const { return _length; }

  /// Fills a buffer with what comes next, up to the length that the file had when it was opened. \return how much it is
  std::size_t read(char* buffer, std::size_t size)
  {
    const std::size_t wanted = std::min(size, _length - _position);
    std::size_t count = 0;
    while (count < wanted)
    {
      const ssize_t result = ::read(_descriptor, buffer + count, wanted - count);
      if (result < 0 && errno == EINTR) continue;
      if (result < 0)
        throw FileReadError(readSignature, "Cannot read file (" + std::generic_category().message(errno) + ")",
                            _fileName);
      if (result == 0) break; // shorter than it was a moment ago
      count += static_cast<std::size_t>(result);
    }
    _position += count;
    return count;
  }

private:
  std::string _fileName;
  std::size_t _length = 0;
  std::size_t _position = 0;
  int _descriptor = -1;
};

/// What a keyword takes, where it is valid, and who executes it.
struct StackReader::Rule
{
  StackKeyword keyword;
  int minArguments;
  int maxArguments;
  StackIOContext::Need need;
  void (StackReader::*input)(const StackArguments&);
};

const StackReader::Rule& StackReader::ruleOf(StackKeyword keyword)
{
  using Need = StackIOContext::Need;
  using K = StackKeyword;
  using R = StackReader;
  constexpr int any = std::numeric_limits<int>::max();
  static const Rule rules[] = {
      {K::Annotation, 1, 1, Need::StackOrSlice, &R::inputAnnotation},
      {K::BeginCap, 1, 1, Need::Model, &R::inputBeginCapFlag},
      {K::Brilliancy, 1, 1, Need::Model, &R::inputBrilliancy},
      {K::CalibrationCurve, 0, any, Need::Calibrated, &R::inputCalibrationCurve},
      {K::Color, 3, 3, Need::ItemProperties, &R::inputColor},
      {K::EcoRendering, 1, 1, Need::Model, &R::inputEcoRendering},
      {K::EndCap, 1, 1, Need::Model, &R::inputEndCapFlag},
      {K::FileFormatVersion, 1, 1, Need::Nothing, &R::inputFileFormatVersion},
      {K::FilledIn, 1, 1, Need::ItemProperties, &R::inputFilledIn},
      {K::Fit, 1, 1, Need::Curve, &R::inputFit},
      {K::Hidden3D, 1, 1, Need::ItemProperties, &R::inputHidden3D},
      {K::Image, 3, 3, Need::Mosaic, &R::inputImage},
      {K::ImagesPath, 1, 1, Need::Stack, &R::inputImagesPath},
      {K::InvertZAxis, 1, 1, Need::Stack, &R::inputInvertZAxis},
      {K::AbsoluteImagesPathPolicy, 1, 1, Need::Stack, &R::inputAbsoluteImagesPathPolicy},
      {K::LastSegmentedSlice, 1, 1, Need::Stack, &R::inputLastSegmentedSlice},
      {K::LastRegisteredSlice, 1, 1, Need::Stack, &R::inputLastRegisteredSlice},
      {K::LengthUnitScale, 1, 1, Need::Stack, &R::inputLengthUnitScale},
      {K::Model, 1, 1, Need::Stack, &R::inputModel},
      {K::ModelItem, 2, 2, Need::Stack, &R::inputModelItem},
      {K::ModelItemData, 0, any, Need::Item, &R::inputModelItemData},
      {K::MeshNormalSmoothing, 1, 1, Need::Model, &R::parseNormalSmoothing},
      {K::PixelAspect, 1, 1, Need::StackOrSlice, &R::inputPixelAspect},
      {K::PixelHeight, 1, 1, Need::StackOrSlice, &R::inputPixelHeight},
      {K::PixelWidth, 1, 1, Need::StackOrSlice, &R::inputPixelWidth},
      {K::PointSize, 1, 1, Need::ItemProperties, &R::inputPointsize},
      {K::Pose, 1, 1, Need::Stack, &R::inputPose},
      {K::PoseRotation, 3, 3, Need::Pose, &R::inputPoseRotation},
      {K::PoseShift, 2, 2, Need::Pose, &R::inputPoseShift},
      {K::PoseZoom, 1, 1, Need::Pose, &R::inputPoseZoom},
      {K::AmbientLight, 1, 1, Need::Pose, &R::inputAmbientLight},
      {K::DiffuseLight, 1, 1, Need::Pose, &R::inputDiffuseLight},
      {K::SpecularLight, 1, 1, Need::Pose, &R::inputSpecularLight},
      {K::Position, 1, 1, Need::Slice, &R::inputPosition},
      {K::Primitive, 1, 1, Need::Model, &R::inputPrimitive},
      {K::RelPosition, 1, 1, Need::StackOrSlice, &R::inputRelPosition},
      {K::RenderingMode, 1, 1, Need::Model, &R::inputRenderingMode},
      {K::Resampling, 2, 2, Need::Model, &R::inputResampling},
      {K::Rotate, 1, 1, Need::Slice, &R::inputRotate},
      {K::Sample, 1, 1, Need::StandardImage, &R::inputSample},
      {K::SampleCoords, 4, 4, Need::Sample, &R::inputSampleCoords},
      {K::SampleValue, 1, 1, Need::Sample, &R::inputSampleValue},
      {K::Shift, 2, 2, Need::Slice, &R::inputShift},
      {K::Slice, 2, 3, Need::Stack, &R::inputSlice},
      {K::SliceSize1, 1, 1, Need::Slice, &R::inputSliceHeight},
      {K::SliceSize2, 1, 1, Need::Slice, &R::inputSliceWidth},
      {K::Stack, 1, 1, Need::Nothing, &R::inputStack},
      {K::StackSlice, 3, 3, Need::Stack, &R::inputStackSlice},
      {K::StandardImage, 2, 2, Need::Stack, &R::inputStandardImage},
      {K::Thickness, 1, 1, Need::ItemProperties, &R::inputThickness},
      {K::Transparency, 1, 1, Need::Model, &R::inputTransparency},
      {K::TriangulationTag, 1, 1, Need::Item, &R::parseTriangulationTag},
      {K::MeshVertexSmoothing, 1, 1, Need::Model, &R::parseVertexSmoothing},
      {K::VertexSymbol, 1, 1, Need::ItemProperties, &R::inputVertexSymbol},
  };
  return rules[static_cast<std::size_t>(keyword)];
}

std::string StackReader::withSuffix(const std::string& fileName)
{
  return std::filesystem::path(fileName).extension() == ".sdf" ? fileName : fileName + ".sdf";
}

void StackReader::read(Stack& stack, const std::string& fileName)
{
  const std::string path = withSuffix(fileName);
  clearLog();
  setFileFormatVersion(currentFileFormatVersion);
  _context = StackIOContext();
  try
  {
    OpenFile file(path);
    readFile(stack, file);
  }
  catch (const FileError& error)
  {
    addFatalError("Error: " + error.getFilename() + ": " + error.getWhat());
  }
}

void StackReader::readFile(Stack& stack, OpenFile& file)
{
  _context = StackIOContext(file.getName());
  _pixelSize = {};
  stack.clear();
  StackLexer lexer(
      [this, &file](char* buffer, std::size_t size)
      {
        throwIfCancelled(readSignature);
        return file.read(buffer, size);
      });
  _lexer = &lexer;
  try
  {
    const ProgressStep step(*this, "Reading " + file.getName(), static_cast<long>(file.getLength()));
    readStatements(stack);
  }
  catch (...)
  {
    _context = StackIOContext();
    stack.clear();
    throw;
  }
}

void StackReader::readStatements(Stack& stack)
{
  constexpr std::size_t reportInterval = 1 << 16;
  _target = &stack;
  std::size_t nextReport = 0;
  while (const auto statement = _lexer->readItemString())
  {
    if (!statement->text.empty()) readStatement(*statement);
    if (_lexer->getPosition() < nextReport) continue;
    throwIfCancelled(readSignature);
    progress(static_cast<long>(_lexer->getPosition()));
    nextReport = _lexer->getPosition() + reportInterval;
  }
  closePixelSize();
  shareLengthUnit();
}

void StackReader::readStatement(const StackLexer::Statement& statement)
{
  try
  {
    parseTokens(statement);
  }
  catch (const Exception& error)
  {
    fail(statement, error);
  }
}

void StackReader::parseTokens(const StackLexer::Statement& statement)
{
  // Nothing is thrown here: in a file of garbage every statement fails.
  if (!statement.isTerminated) return fail(statement, ArgValueError());
  const auto keyword = getKeyword(statement.keyword);
  if (!keyword) return fail(statement, KeywordError());
  const Rule& rule = ruleOf(*keyword);
  const bool readsTokens = rule.maxArguments <= static_cast<int>(StackLexer::maxTokens);
  const auto tokens =
      readsTokens ? _lexer->splitItemString(statement.arguments) : std::make_optional<std::vector<std::string_view>>();
  if (!tokens) return fail(statement, ArgValueError());
  const int numArguments = static_cast<int>(tokens->size());
  if (readsTokens && (numArguments < rule.minArguments || numArguments > rule.maxArguments))
    return fail(statement, NumArgsError());
  if (!_context.fulfils(rule.need)) return fail(statement, ContextError());
  (this->*rule.input)(StackArguments(statement.arguments, *tokens));
}

void StackReader::fail(const StackLexer::Statement& statement, const Exception& error)
{
  if (const auto keyword = getKeyword(statement.keyword))
  {
    const auto kind = openedKind(*keyword);
    if (kind == StackIOContext::Kind::Slice) closePixelSize();
    if (kind) _context.failToOpen(*kind);
    if (isCalibration(*keyword)) keepStatement(statement, error);
  }
  if (const auto* fileError = dynamic_cast<const FileError*>(&error))
    return addFatalError("Error: " + fileError->getFilename() + ": " + fileError->getWhat());
  addToLog(isLogFull() ? "" : failureLine(shown(statement.keyword), error));
}

void StackReader::keepStatement(const StackLexer::Statement& statement, const Exception& error)
{
  if (!_context.getStack() || !statement.isTerminated) return;
  std::string text(statement.text);
  std::replace_if(text.begin(), text.end(), StackLexer::isBlank, ' ');
  // A sound curve without its object must not be taken for the next one's.
  const bool isHomeless = getKeyword(statement.keyword) == StackKeyword::CalibrationCurve &&
                          dynamic_cast<const ContextError*>(&error) != nullptr;
  KeptStatements& keeper = isHomeless ? *_context.getStack() : *_context.getKeeper();
  keeper.keepStatement(std::move(text));
}

std::string StackReader::failureLine(const std::string& keyword, const Exception& error)
{
  if (dynamic_cast<const ContextError*>(&error)) return "Error: " + keyword + " is invalid in this context.";
  const std::string start = "Error on " + keyword + ": ";
  if (dynamic_cast<const NumArgsError*>(&error)) return start + "invalid number of arguments.";
  if (dynamic_cast<const ArgValueError*>(&error)) return start + "invalid argument.";
  if (dynamic_cast<const KeywordError*>(&error)) return start + "unknown keyword (ignored).";
  return start + error.getWhat();
}

/// Slices opened before the length unit was stated have the same unit as the others.
void StackReader::shareLengthUnit() const
{
  const Stack* const stack = _context.getStack();
  for (int i = 0; stack && i < stack->getNumSlices(); ++i)
  {
    PixelCalibration calibration = stack->getSlice(i)->getPixelCalibration();
    calibration.setLengthUnit(stack->getLengthUnit());
    stack->getSlice(i)->setPixelCalibration(calibration);
  }
}
