#pragma once

#include "numeric/elementtypes.h"

#include <type_traits>

/// Calls MACRO(T) for each of the nine element types of pixel and voxel matrices.
#define IMAGE_FOR_EACH_TYPE(MACRO)                                                                                     \
  MACRO(char)                                                                                                          \
  MACRO(unsigned char)                                                                                                 \
  MACRO(short)                                                                                                         \
  MACRO(unsigned short)                                                                                                \
  MACRO(int)                                                                                                           \
  MACRO(unsigned int)                                                                                                  \
  MACRO(float)                                                                                                         \
  MACRO(double)                                                                                                        \
  MACRO(long double)

/// The element types of pixel and voxel matrices.
template <class T>
concept ImageElement =
    OneOf<T, char, unsigned char, short, unsigned short, int, unsigned int, float, double, long double>;

/// Declares, behind a class template, that its members are instantiated elsewhere for all element types.
#define IMAGE_EXTERN_TEMPLATE(Class)                                                                                   \
  extern template class Class<char>;                                                                                   \
  extern template class Class<unsigned char>;                                                                          \
  extern template class Class<short>;                                                                                  \
  extern template class Class<unsigned short>;                                                                         \
  extern template class Class<int>;                                                                                    \
  extern template class Class<unsigned int>;                                                                           \
  extern template class Class<float>;                                                                                  \
  extern template class Class<double>;                                                                                 \
  extern template class Class<long double>;

/// Instantiates, at the end of each source of a class template, the members which that source defines.
#define IMAGE_INSTANTIATE(Class)                                                                                       \
  template class Class<char>;                                                                                          \
  template class Class<unsigned char>;                                                                                 \
  template class Class<short>;                                                                                         \
  template class Class<unsigned short>;                                                                                \
  template class Class<int>;                                                                                           \
  template class Class<unsigned int>;                                                                                  \
  template class Class<float>;                                                                                         \
  template class Class<double>;                                                                                        \
  template class Class<long double>;
