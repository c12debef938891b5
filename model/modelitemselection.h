#pragma once

#include <cstddef>
#include <vector>

/// One flag per vertex of an item: selected or not.
class ModelItemSelection
{
public:
  /// n unselected vertices.
  void reset(int n);
  /// Selects or unselects all vertices.
  void set(bool flag);
  /// Selects or unselects vertex i; when exclusive, all others are unselected first. Unchecked.
  void set(bool flag, int i, bool exclusive);
  void invert();

  bool isEmpty() const { return _numSelected == 0; }
  /// True when all vertices are selected and there is one.
  bool isComplete() const { return _numSelected > 0 && _numSelected == getNumVertices(); }
  bool isSelected(int i) const { return _flags[static_cast<std::size_t>(i)]; }
  /// Number of selected vertices.
  int getSize() const { return _numSelected; }
  int getNumVertices() const { return static_cast<int>(_flags.size()); }

  bool operator==(const ModelItemSelection& other) const = default;

  /// Makes room for unselected vertices before vertex i. Unchecked.
  void insert(int i, int count = 1);
  /// Drops the flags of the vertices first to last, both included. Unchecked.
  void remove(int first, int last);

private:
  void count();

  std::vector<bool> _flags;
  int _numSelected = 0;
};
