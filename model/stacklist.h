#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

class Stack;

/// The slices or the models of a stack: owned, in order, and found by name or identity without a search.
///
/// The elements know their place: setStack(stack, index) is called whenever it changes.
template <class T> class StackList
{
public:
  explicit StackList(Stack& stack) : _stack(stack) {}

  int getSize() const { return static_cast<int>(_elements.size()); }
  /// Element i. Unchecked.
  T* operator[](int i) const { return _elements[static_cast<std::size_t>(i)].get(); }
  auto begin() const { return _elements.begin(); }
  auto end() const { return _elements.end(); }

  /// Index of the first element of this name or of this very element, -1 when absent.
  int find(const std::string& name) const;
  int find(const T* element) const { return element && element->getStack() == &_stack ? element->getIndex() : -1; }

  /// Inserts an element before element i. Unchecked.
  T& insert(std::unique_ptr<T> element, int i);
  /// Takes element i out. Unchecked.
  std::unique_ptr<T> take(int i);
  /// Moves element i so that it becomes element j; those between shift by one. Unchecked.
  void move(int i, int j);
  void clear();
  /// To be told when an element got another name.
  void noteRenamed(T& element, const std::string& oldName);

private:
  void number(std::size_t first);
  void forgetName(const std::string& name, const T& element);

  Stack& _stack;
  std::vector<std::unique_ptr<T>> _elements;
  std::unordered_multimap<std::string, T*> _elementsByName;
};

template <class T> int StackList<T>::find(const std::string& name) const
{
  int first = -1;
  const auto [begin, end] = _elementsByName.equal_range(name);
  for (auto entry = begin; entry != end; ++entry)
    if (first < 0 || entry->second->getIndex() < first) first = entry->second->getIndex();
  return first;
}

template <class T> T& StackList<T>::insert(std::unique_ptr<T> element, int i)
{
  T& inserted = **_elements.insert(_elements.begin() + i, std::move(element));
  _elementsByName.emplace(inserted.getName(), &inserted);
  number(static_cast<std::size_t>(i));
  return inserted;
}

template <class T> std::unique_ptr<T> StackList<T>::take(int i)
{
  std::unique_ptr<T> element = std::move(_elements[static_cast<std::size_t>(i)]);
  _elements.erase(_elements.begin() + i);
  number(static_cast<std::size_t>(i));
  forgetName(element->getName(), *element);
  element->setStack(nullptr, -1);
  return element;
}

template <class T> void StackList<T>::move(int i, int j)
{
  const auto first = _elements.begin() + std::min(i, j), last = _elements.begin() + std::max(i, j) + 1;
  std::rotate(first, i < j ? first + 1 : last - 1, last);
  number(static_cast<std::size_t>(std::min(i, j)));
}

template <class T> void StackList<T>::clear()
{
  _elementsByName.clear();
  for (const auto& element : _elements) element->setStack(nullptr, -1);
  _elements.clear();
}

template <class T> void StackList<T>::noteRenamed(T& element, const std::string& oldName)
{
  forgetName(oldName, element);
  _elementsByName.emplace(element.getName(), &element);
}

template <class T> void StackList<T>::number(std::size_t first)
{
  for (std::size_t i = first; i < _elements.size(); ++i) _elements[i]->setStack(&_stack, static_cast<int>(i));
}

template <class T> void StackList<T>::forgetName(const std::string& name, const T& element)
{
  const auto [begin, end] = _elementsByName.equal_range(name);
  for (auto entry = begin; entry != end; ++entry)
    if (entry->second == &element) return static_cast<void>(_elementsByName.erase(entry));
}
