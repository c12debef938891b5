#include "model/io/stackio.h"

#include "model/storabletext.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <unordered_map>

namespace
{
using Spellings = std::vector<std::string_view>;

/// By the keywords' values; the first spelling is written.
const std::array<Spellings, StackIO::numKeywords> spellings = {{{"Annotation"},
                                                                {"BeginCap"},
                                                                {"BRILLIANCY"},
                                                                {"CALIBRATIONCURVE"},
                                                                {"COLOR", "M2DCOLOR"},
                                                                {"ECORENDERING"},
                                                                {"EndCap"},
                                                                {"FileFormatVersion"},
                                                                {"FILLEDIN", "M2DFILLEDIN"},
                                                                {"FIT"},
                                                                {"HIDDEN3D", "M2DHIDDEN3D"},
                                                                {"IMAGE"},
                                                                {"ImagesPath", "IMAGESPATH", "IMAGESDIR"},
                                                                {"InvertZAxis"},
                                                                {"AbsoluteImagesPathPolicy"},
                                                                {"LASTSEGMENTEDSLICE"},
                                                                {"LASTREGISTEREDSLICE"},
                                                                {"LengthUnitScale"},
                                                                {"MODEL", "M2DCLASS"},
                                                                {"MODELITEM", "M2DITEM"},
                                                                {"MODELITEMDATA", "M2DDATA"},
                                                                {"MeshNormalSmoothing"},
                                                                {"PIXASPECT", "ASPRATIO", "ASPECT"},
                                                                {"PIXHEIGHT"},
                                                                {"PIXWIDTH"},
                                                                {"POINTSIZE", "M2DRADIUS"},
                                                                {"POSE"},
                                                                {"POSEROTATION"},
                                                                {"POSESHIFT"},
                                                                {"POSEZOOM"},
                                                                {"AMBIENTLIGHT"},
                                                                {"DIFFUSELIGHT"},
                                                                {"SPECULARLIGHT"},
                                                                {"POSITION", "DEPTH"},
                                                                {"PRIMITIVE", "M2DPRIMITIVE"},
                                                                {"RELPOSITION", "RELDEPTH"},
                                                                {"RENDERINGMODE"},
                                                                {"RESAMPLING"},
                                                                {"ROTATE"},
                                                                {"SAMPLE"},
                                                                {"SAMPLECOORDS"},
                                                                {"SAMPLEVALUE"},
                                                                {"SHIFT"},
                                                                {"SLICE"},
                                                                {"SliceSize1"},
                                                                {"SliceSize2"},
                                                                {"STACK"},
                                                                {"StackSlice"},
                                                                {"STANDARDIMAGE"},
                                                                {"THICKNESS", "M2DTHICKNESS"},
                                                                {"TRANSPARENCY"},
                                                                {"TriangulationTag"},
                                                                {"MeshVertexSmoothing"},
                                                                {"VERTEXSYMBOL"}}};

using KeywordTable = std::unordered_map<std::string_view, StackKeyword>;

/// Built at the first use, shared by all.
const KeywordTable& keywordTable()
{
  static const KeywordTable table = []
  {
    KeywordTable keywords;
    for (std::size_t value = 0; value < spellings.size(); ++value)
      for (const std::string_view spelling : spellings[value])
        keywords.emplace(spelling, static_cast<StackKeyword>(value));
    return keywords;
  }();
  return table;
}

std::atomic<int> numInstances = 0;

/// What stands in a file may not steer the terminal that shows the log.
std::string printable(std::string text)
{
  const auto isControl = [](char c) { return (c >= '\0' && c < ' ') || c == '\x7F'; };
  std::replace_if(text.begin(), text.end(), isControl, '?');
  return text;
}
} // namespace

StackIO::StackIO()
{
  keywordTable();
  ++numInstances;
}

StackIO::~StackIO()
{
  --numInstances;
}

int StackIO::getNumInstances()
{
  return numInstances;
}

bool StackIO::ensureFileFormatVersion(float version) const
{
  constexpr float tolerance = 0.00001f;
  return _fileFormatVersion + tolerance >= version;
}

const std::vector<std::string_view>& StackIO::getSpellings(StackKeyword keyword)
{
  return spellings[static_cast<std::size_t>(keyword)];
}

std::string_view StackIO::getString(StackKeyword keyword)
{
  return getSpellings(keyword).front();
}

std::optional<StackKeyword> StackIO::getKeyword(std::string_view text)
{
  const auto found = keywordTable().find(text);
  if (found == keywordTable().end()) return std::nullopt;
  return found->second;
}

std::string StackIO::exportString(std::string_view text)
{
  return exportText(text);
}

std::string StackIO::importString(std::string_view text)
{
  return importText(text);
}

void StackIO::clearLog()
{
  _log.clear();
  _numLines = 0;
  _numFatalErrors = 0;
}

void StackIO::addToLog(const std::string& line)
{
  ++_numLines;
  if (_numLines <= maxLines)
    _log.push_back(printable(line));
  else if (_numLines == maxLines + 1)
    _log.emplace_back("More messages were left out.");
}

void StackIO::addFatalError(const std::string& line)
{
  addToLog(line);
  ++_numFatalErrors;
}
