#include "analysis/measures/measuretable.h"
#include "analysis/spatial/stackspatialanalysis.h"
#include "batch/commands.h"
#include "batch/json.h"
#include "batch/outputfolder.h"
#include "batch/stackfile.h"
#include "batch/terminalprogress.h"
#include "model/stack.h"
#include "numeric/atomicfile.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <filesystem>
#include <iostream>
#include <optional>

namespace
{
struct Arguments
{
  std::string stack;
  std::string boundary;
  std::string objects;
  std::string functions;
  StackSpatialAnalysisConfig config;
  bool json = false;
  std::string out;
  std::string curves;
  bool overwrite = false;
};

std::string checkFunctions(const std::string& functions)
{
  const bool isKnown = !functions.empty() && functions.find_first_not_of("BFGH") == std::string::npos;
  return isKnown ? "" : "not a choice of the letters B, F, G and H: " + functions;
}

StackSpatialAnalysisConfig configure(const Arguments& arguments, const StackFile& file)
{
  const auto has = [&](char function) { return arguments.functions.find(function) != std::string::npos; };
  StackSpatialAnalysisConfig config = arguments.config;
  config.boundary = selectModels(file, {arguments.boundary}).front();
  config.objects = selectModels(file, {arguments.objects}).front();
  config.hasFunctionB = has('B');
  config.hasFunctionF = has('F');
  config.hasFunctionG = has('G');
  config.hasFunctionH = has('H');
  return config;
}

Json toJson(const Vector<double>& values)
{
  return std::vector<double>(values.begin(), values.end());
}

Json resultsJson(const StackSpatialAnalysis& analysis)
{
  Json rows = Json::array();
  for (const auto& slice : analysis.getResults())
    for (const auto& [function, evaluation] : slice.functions)
    {
      const SpatialEvaluation<double> curves = evaluation.value_or(SpatialEvaluation<double>());
      rows.push_back({{"slice", slice.slice->getName()},
                      {"function", std::string(1, function)},
                      {"pValue", evaluation ? Json(curves.pValue) : Json(nullptr)},
                      {"grid", toJson(curves.grid)},
                      {"observed", toJson(curves.observed)},
                      {"average", toJson(curves.average)},
                      {"lower", toJson(curves.lower)},
                      {"upper", toJson(curves.upper)}});
    }
  return rows;
}

std::string resultsTable(const StackSpatialAnalysis& analysis)
{
  const DataSet results = analysis.resultTable();
  const std::vector<std::string> names = results.getNames();
  std::vector<MeasureColumn> columns = {{names[0], MeasureColumn::Text}};
  for (std::size_t k = 1; k < names.size(); ++k) columns.push_back({names[k]});
  MeasureTable table(std::move(columns));
  for (int i = 0; i < results.getNumRows(); ++i)
  {
    std::vector<double> row = {table.addText(results.getValue<std::string>(names[0], i))};
    for (std::size_t k = 1; k < names.size(); ++k) row.push_back(results.getValue<double>(names[k], i));
    table.addRow(i, row);
  }
  return table.toCsv();
}

/// The curves of one function on all slices, one below the other.
std::string curvesTable(const StackSpatialAnalysis& analysis, std::size_t function)
{
  MeasureTable table({{"slice", MeasureColumn::Text}, {"grid"}, {"observed"}, {"average"}, {"lower"}, {"upper"}});
  for (const auto& slice : analysis.getResults())
    if (const auto& curves = slice.functions[function].evaluation)
    {
      const double name = table.addText(slice.slice->getName());
      for (int j = 0; j < curves->grid.getSize(); ++j)
        table.addRow(
            j, {name, curves->grid[j], curves->observed[j], curves->average[j], curves->lower[j], curves->upper[j]});
    }
  return table.toCsv();
}

void writeFile(const std::string& name, const std::string& text)
{
  AtomicFile file(name);
  file.write(text);
  file.commit();
}

std::string curvesFile(const Arguments& arguments, char function)
{
  return (std::filesystem::path(arguments.curves) / (std::string(1, function) + ".csv")).string();
}

/// Where the results go; opened before any work, which may take hours.
struct Outputs
{
  explicit Outputs(const Arguments& arguments)
  {
    if (!arguments.out.empty())
    {
      requireWritable(arguments.out, arguments.overwrite);
      table.emplace(arguments.out);
    }
    if (arguments.curves.empty()) return;
    for (const char function : arguments.functions) requireNew(curvesFile(arguments, function), arguments.overwrite);
    curves.emplace(arguments.curves);
  }

  std::optional<AtomicFile> table; // none: standard output
  std::optional<OutputFolder> curves;
};

void writeTable(Outputs& outputs, const std::string& text)
{
  if (!outputs.table) return void(std::cout << text);
  outputs.table->write(text);
  outputs.table->commit();
}

void writeCurves(const Arguments& arguments, Outputs& outputs, const StackSpatialAnalysis& analysis)
{
  if (!outputs.curves) return;
  const auto& functions = analysis.getResults().front().functions;
  for (std::size_t k = 0; k < functions.size(); ++k)
    writeFile(curvesFile(arguments, functions[k].function), curvesTable(analysis, k));
  outputs.curves->keep();
}

/// What was left out and, of several slices, how their p-values combine.
void tellNotes(const StackSpatialAnalysis& analysis)
{
  for (const std::string& message : analysis.getMessages()) warn(message);
  if (analysis.getResults().size() < 2) return;
  for (const auto& [function, pValue, complementaryValue] : analysis.combinations())
    if (!std::isnan(pValue))
      warn(std::string(1, function) + "-SDI over the slices by Fisher's combination, assumes independent slices: " +
           Json(pValue).dump() + "; of 1 + 1/(N + 1) - p: " + Json(complementaryValue).dump());
}

ExitStatus analyse(const Arguments& arguments)
{
  const StackFile file = requireStackFile(arguments.stack);
  const StackSpatialAnalysisConfig config = configure(arguments, file);
  Outputs outputs(arguments);
  StackSpatialAnalysis analysis;
  TerminalProgress progress;
  analysis.addObserver(progress);
  try
  {
    analysis.run(*file.stack, config);
  }
  catch (const FileError&)
  {
    throw;
  }
  catch (const Exception& error)
  {
    throw BatchError(file.filename + ": " + describe(error));
  }
  tellNotes(analysis);
  writeTable(outputs, arguments.json ? toText(resultsJson(analysis)) : resultsTable(analysis));
  writeCurves(arguments, outputs, analysis);
  return Done;
}

/// The options that say what is compared with what.
void addAnalysisOptions(CLI::App& command, Arguments& arguments)
{
  StackSpatialAnalysisConfig& config = arguments.config;
  command.add_option("--boundary", arguments.boundary, "model whose first item on a slice bounds the domain")
      ->required();
  command.add_option("--objects", arguments.objects, "model of the objects: points, or items with their centres")
      ->required();
  command
      .add_option("--functions", arguments.functions,
                  "distances from the boundary (B), from evaluation positions to objects (F), between nearest "
                  "objects (G), between all objects (H); any of BFGH")
      ->required()
      ->check(CLI::Validator([](std::string& text) { return checkFunctions(text); }, "LETTERS"));
  command.add_option("--samples", config.numMonteCarloSamples, "number of random patterns to compare with")
      ->check(CLI::Range(9, 9999))
      ->capture_default_str();
  command
      .add_option("--hardcore", config.hardcoreDistance,
                  "least distance of random objects from the boundary; two of them keep twice that distance")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
  command.add_option("--density", config.evaluationDensity, "evaluation positions of F per unit of area")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
  command.add_option("--precision", config.precision,
                     "step of the distances; by default a thousandth of the diagonal of the boundary's box");
  command.add_option("--seed", config.seed, "number that the random patterns depend on")->capture_default_str();
}
} // namespace

void addSpatialCommand(CLI::App& app, Run& run)
{
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand(
      "spatial", "Compare where objects lie with random patterns; prints a p-value per slice and function, which is "
                 "small when short distances are more frequent than at random, as comma-separated text");
  command->add_option("stack", arguments->stack, "stack file")->required();
  addAnalysisOptions(*command, *arguments);
  command->add_flag("--json", arguments->json, "print p-values and curves as JSON, null where there is no value");
  command->add_option("--out", arguments->out, "file to write instead of standard output");
  command->add_option("--curves", arguments->curves,
                      "folder for the curves, a table for each function; made when it is missing");
  command->add_flag("--overwrite", arguments->overwrite, "replace existing files");
  command->callback([=, &run] { run = [=] { return analyse(*arguments); }; });
}
