#pragma once

#include "numeric/vector.h"

/// Edge of a curve: a pair of consecutive vertices, given by their indexes, and views of both, which are constant
/// unless Vertex is Vector<T>.
///
/// Valid as long as the curve's vertices stay where they are.
template <class T, class Vertex = const Vector<T>> class Edge
{
public:
  Edge(int begin, int end, Vertex& beginVertex, Vertex& endVertex)
    : _begin(begin), _end(end), _beginVertex(&beginVertex), _endVertex(&endVertex)
  {
  }

  int getBegin() const { return _begin; }
  int getEnd() const { return _end; }
  Vertex& getBeginVertex() const { return *_beginVertex; }
  Vertex& getEndVertex() const { return *_endVertex; }

  /// True when this edge begins where the other one of the same curve ends.
  template <class OtherVertex> bool isNext(const Edge<T, OtherVertex>& edge) const { return _begin == edge.getEnd(); }
  /// True when this edge ends where the other one of the same curve begins.
  template <class OtherVertex> bool isPrevious(const Edge<T, OtherVertex>& edge) const
  {
    return _end == edge.getBegin();
  }
  template <class OtherVertex> bool isAdjacent(const Edge<T, OtherVertex>& edge) const
  {
    return isNext(edge) || isPrevious(edge);
  }

private:
  int _begin;
  int _end;
  Vertex* _beginVertex;
  Vertex* _endVertex;
};
