#pragma once

class ModelItem;

/// Measurement of one item at a time.
class ModelItemAnalysis
{
public:
  virtual ~ModelItemAnalysis() = default;

  /// Sets the item and forgets the measures of the one before. The item must outlive this object.
  void setModelItem(const ModelItem& item)
  {
    clear();
    _item = &item;
  }
  const ModelItem* getModelItem() const { return _item; }
  /// Measures the item. \throw UsageError  there is no item, or it cannot be measured
  virtual void run() = 0;
  /// Forgets the measures.
  virtual void clear() = 0;

protected:
  ModelItemAnalysis() = default;

private:
  const ModelItem* _item = nullptr;
};
