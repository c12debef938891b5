#pragma once

#include "numeric/vector.h"

/// Edge of a curve: a pair of consecutive vertices, given by their indexes, and views of both.
///
/// Valid as long as the curve's vertices stay where they are.
template <class T> class Edge
{
public:
  Edge(int begin, int end, const Vector<T>& beginVertex, const Vector<T>& endVertex)
    : _begin(begin), _end(end), _beginVertex(&beginVertex), _endVertex(&endVertex)
  {
  }

  int getBegin() const { return _begin; }
  int getEnd() const { return _end; }
  const Vector<T>& getBeginVertex() const { return *_beginVertex; }
  const Vector<T>& getEndVertex() const { return *_endVertex; }

  /// True when this edge begins where the other one of the same curve ends.
  bool isNext(const Edge<T>& edge) const { return _begin == edge._end; }
  /// True when this edge ends where the other one of the same curve begins.
  bool isPrevious(const Edge<T>& edge) const { return _end == edge._begin; }
  bool isAdjacent(const Edge<T>& edge) const { return isNext(edge) || isPrevious(edge); }

private:
  int _begin;
  int _end;
  const Vector<T>* _beginVertex;
  const Vector<T>* _endVertex;
};
