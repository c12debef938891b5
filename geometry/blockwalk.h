#pragma once

template <class T> class Shape;
template <class T> class VertexServer;

/// A walk over items of a shape, block after block; `count(shape, block)` tells how many of them a block has.
template <class T, auto count> class BlockWalk
{
public:
  explicit BlockWalk(const Shape<T>& shape) : _shape(&shape) { skipFinishedBlocks(); }

  bool isAtEnd() const { return _block == _shape->getNumBlocks(); }
  void next()
  {
    ++_index;
    skipFinishedBlocks();
  }

  const VertexServer<T>& getBlock() const { return _shape->getBlock(_block); }
  /// Number of the item in its block.
  int getIndex() const { return _index; }

private:
  void skipFinishedBlocks()
  {
    while (!isAtEnd() && _index == count(*_shape, _block))
    {
      ++_block;
      _index = 0;
    }
  }

  const Shape<T>* _shape;
  int _block = 0;
  int _index = 0;
};
