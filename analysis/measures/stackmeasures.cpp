#include "analysis/measures/stackmeasures.h"

#include "geometry/reconstruction/modelitemgeometry.h"
#include "geometry/reconstruction/modelmorphometry.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stack.h"
#include "model/stackslice.h"

#include <unordered_map>

namespace
{
constexpr double unavailable = std::numeric_limits<double>::quiet_NaN();

MeasureColumn text(const std::string& name, const std::string& definition)
{
  return {name, MeasureColumn::Text, definition};
}

MeasureColumn count(const std::string& name, const std::string& definition)
{
  return {name, MeasureColumn::Count, definition};
}

MeasureColumn length(const std::string& name, const std::string& unit, const std::string& definition)
{
  return {name, MeasureColumn::Number, definition, unit};
}

bool isPoints(MPrimitive geometry)
{
  return geometry == MPrimitive::Polypoint;
}

/// The morphometry says by NaN or a negative value that there is no area or volume.
double measured(double value)
{
  return value >= 0 ? value : unavailable;
}

std::vector<MeasureColumn> modelColumns(MPrimitive geometry, const std::string& unit)
{
  std::vector<MeasureColumn> columns = {
      text("Model", "Name of the model"),
      count("Vertices", "Number of vertices of all its items; of regions, of their pixels"),
      length("AverageX", unit, "Mean x of all vertices in the reconstructed stack"),
      length("AverageY", unit, "Mean y of all vertices in the reconstructed stack, upwards"),
      length("AverageZ", unit, "Mean height of all vertices"),
  };
  if (isPoints(geometry)) return columns;
  columns.push_back(count("Contours", "Number of items"));
  columns.push_back({"Area", MeasureColumn::Number,
                     "Area of the surface through the contours, without caps; NA when a slice has several of them",
                     unit + "^2"});
  if (geometry == MPrimitive::Polyline) return columns;
  columns.push_back({"Volume", MeasureColumn::Number,
                     "Sum over the slices of the enclosed area times the distance to the next slice with contours, for "
                     "the last one to the slice before it",
                     unit + "^3"});
  return columns;
}

std::vector<double> modelValues(MeasureTable& table, const ModelMeasures& measures)
{
  std::vector<double> values = {table.addText(measures.model), measures.vertices, measures.averageX, measures.averageY,
                                measures.averageZ};
  if (isPoints(measures.geometry)) return values;
  values.insert(values.end(), {measures.contours, measures.area});
  if (measures.geometry != MPrimitive::Polyline) values.push_back(measures.volume);
  return values;
}

std::vector<MeasureColumn> itemColumns(MPrimitive geometry, const std::string& unit)
{
  const MeasureColumn slice = text("Slice", "Name of the slice");
  const MeasureColumn z = length("Z", unit, "Height of the slice");
  if (isPoints(geometry))
    return {slice, length("X", unit, "x of the point in the reconstructed stack"),
            length("Y", unit, "y of the point in the reconstructed stack, upwards"), z};
  const bool isOpen = geometry == MPrimitive::Polyline;
  std::vector<MeasureColumn> columns = {
      slice, count("Vertices", "Number of vertices; of a region, of its pixels"),
      length("Length", unit,
             isOpen ? "Length of the line" : "Length of the closed contour; NA for a region, which has none")};
  if (!isOpen)
    columns.push_back(
        {"Area", MeasureColumn::Number, "Area inside of the contour; of a region, of its pixels", unit + "^2"});
  columns.push_back(length("AverageX", unit, "Mean x of the vertices in the reconstructed stack"));
  columns.push_back(length("AverageY", unit, "Mean y of the vertices in the reconstructed stack, upwards"));
  columns.push_back(z);
  return columns;
}

/// Adds the rows of items one after the other.
class ItemRows
{
public:
  ItemRows(MeasureTable& table, const StackReconstruction<double>& reconstruction, MPrimitive geometry)
    : _table(table), _reconstruction(reconstruction), _measures(reconstruction), _geometry(geometry)
  {
  }

  void add(int source, const ModelItem& item)
  {
    if (item.getSlice() != _slice) _sliceText = _table.addText(item.getSlice()->getName());
    _slice = item.getSlice();
    _z = _reconstruction.getZMap()[_slice->getIndex()];
    _measures.setModelItem(item);
    _measures.run();
    isPoints(_geometry) ? addPoints(source) : addItem(source);
  }

private:
  void addPoints(int source)
  {
    const Vertices<double>& points = _measures.getVertices();
    const double* point = points.data();
    for (int i = 0; i < points.getSize(); ++i, point += 3) addRow(source, {_sliceText, point[0], point[1], _z});
  }

  void addItem(int source)
  {
    const auto vertices = static_cast<double>(_measures.getNumVertices());
    const Vector<double>& center = _measures.getIsobarycenter();
    if (_geometry == MPrimitive::Polyline)
      addRow(source, {_sliceText, vertices, _measures.getLength(), center[0], center[1], _z});
    else
      addRow(source, {_sliceText, vertices, _measures.getLength(), _measures.getArea(), center[0], center[1], _z});
  }

  void addRow(int source, std::initializer_list<double> values)
  {
    _values.assign(values);
    _table.addRow(source, _values);
  }

  MeasureTable& _table;
  const StackReconstruction<double>& _reconstruction;
  ModelItemGeometry _measures;
  MPrimitive _geometry;
  const StackSlice* _slice = nullptr;
  double _sliceText = 0;
  double _z = 0;
  std::vector<double> _values; // of one row, kept for the next one
};
std::size_t numRows(const std::vector<const ModelItem*>& items, MPrimitive geometry)
{
  if (!isPoints(geometry)) return items.size();
  std::size_t numPoints = 0;
  for (const ModelItem* item : items) numPoints += static_cast<std::size_t>(item->getSize());
  return numPoints;
}
} // namespace

ModelMeasures measureModel(const Model& model)
{
  ModelMorphometry morphometry;
  morphometry.setModel(model);
  morphometry.run();
  const Vector<double>& center = morphometry.getIsobarycenter();
  return {.model = model.getName(),
          .geometry = model.getGeometry(),
          .vertices = static_cast<double>(morphometry.getNumVertices()),
          .contours = isPoints(model.getGeometry()) ? unavailable : morphometry.getNumContours(),
          .averageX = center[0],
          .averageY = center[1],
          .averageZ = center[2],
          .area = measured(morphometry.getArea()),
          .volume = measured(morphometry.getVolume()),
          .remark = morphometry.getWarning()};
}

ModelMeasures noMeasures(const Model& model, const std::string& remark)
{
  ModelMeasures measures;
  measures.model = model.getName();
  measures.geometry = model.getGeometry();
  measures.vertices = 0;
  for (const ModelItem* item : model.getItems()) measures.vertices += item->getSize();
  if (!isPoints(measures.geometry)) measures.contours = static_cast<double>(model.getItems().size());
  measures.remark = remark;
  return measures;
}

ModelMeasures measureOrTell(const Model& model)
{
  try
  {
    return measureModel(model);
  }
  catch (const FileError& error)
  {
    const bool isNamed = error.getWhat().find(error.getFilename()) != std::string::npos;
    return noMeasures(model, isNamed ? error.getWhat() : error.getFilename() + ": " + error.getWhat());
  }
  catch (const Exception& error)
  {
    return noMeasures(model, error.getWhat());
  }
  catch (const std::bad_alloc&)
  {
    return noMeasures(model, "There is not enough memory to measure this model");
  }
  catch (const std::exception& error)
  {
    return noMeasures(model, error.what());
  }
}

MeasureTable modelTable(const std::vector<ModelMeasures>& models, MPrimitive geometry, const std::string& unit)
{
  MeasureTable table(modelColumns(geometry, unit));
  for (std::size_t i = 0; i < models.size(); ++i)
    if (models[i].geometry == geometry) table.addRow(static_cast<int>(i), modelValues(table, models[i]));
  return table;
}

MeasureTable modelTable(const std::vector<ModelMeasures>& models, const std::string& unit)
{
  std::vector<MeasureColumn> columns = modelColumns(MPrimitive::Polygon, unit);
  columns.insert(columns.begin() + 1, text("Primitive", "What its items are"));
  MeasureTable table(std::move(columns));
  for (std::size_t i = 0; i < models.size(); ++i)
  {
    std::vector<double> values = modelValues(table, models[i]);
    values.insert(values.begin() + 1, table.addText(ModelProperties::toString(models[i].geometry)));
    values.resize(static_cast<std::size_t>(table.getNumColumns()), unavailable);
    table.addRow(static_cast<int>(i), values);
  }
  return table;
}

MeasureTable sliceTable(const Stack& stack, const std::vector<const Model*>& models)
{
  std::vector<MeasureColumn> columns = {text("Slice", "Name of the slice")};
  std::unordered_map<const Model*, std::size_t> columnOf;
  for (const Model* model : models)
  {
    columnOf[model] = columns.size();
    const std::string counted = isPoints(model->getGeometry()) ? "points" : "items";
    columns.push_back(count(model->getName(), model->getName() + ": number of " + counted + " on the slice"));
  }
  MeasureTable table(std::move(columns));
  std::vector<double> values;
  for (int k = 0; k < stack.getNumSlices(); ++k)
  {
    values.assign(static_cast<std::size_t>(table.getNumColumns()), 0);
    values[0] = table.addText(stack.getSlice(k)->getName());
    for (const ModelItem* item : stack.getSlice(k)->getItems())
      if (const auto column = columnOf.find(item->getModel()); column != columnOf.end())
        values[column->second] += isPoints(column->first->getGeometry()) ? item->getSize() : 1;
    table.addRow(k, values);
  }
  return table;
}

MeasureTable emptyItemTable(MPrimitive geometry, const std::string& unit)
{
  return MeasureTable(itemColumns(geometry, unit));
}

MeasureTable itemTable(const Stack& stack, const Model& model, ProgressSubject& progress)
{
  const StackReconstruction<double> reconstruction(stack);
  const std::vector<const ModelItem*> items = reconstruction.itemsInStackOrder(model);
  MeasureTable table = emptyItemTable(model.getGeometry(), stack.getLengthUnit().symbol());
  table.reserve(numRows(items, model.getGeometry()));
  ItemRows rows(table, reconstruction, model.getGeometry());
  const ProgressStep step(progress, "Measuring items", static_cast<long>(items.size()));
  for (std::size_t i = 0; i < items.size(); ++i)
  {
    progress.throwIfCancelled("MeasureTable itemTable(const Stack&,const Model&,ProgressSubject&)");
    rows.add(static_cast<int>(i), *items[i]);
    progress.progress(static_cast<long>(i + 1));
  }
  return table;
}
