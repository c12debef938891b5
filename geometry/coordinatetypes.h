#pragma once

#include "numeric/elementtypes.h"

// Vertex containers exist for these coordinate types; their templates are defined in the .cpp files.
#define GEOMETRY_INSTANTIATE(Class)                                                                                    \
  template class Class<int>;                                                                                           \
  template class Class<float>;                                                                                         \
  template class Class<double>;                                                                                        \
  template class Class<long double>;

#define GEOMETRY_EXTERN_TEMPLATE(Class)                                                                                \
  extern template class Class<int>;                                                                                    \
  extern template class Class<float>;                                                                                  \
  extern template class Class<double>;                                                                                 \
  extern template class Class<long double>;

// Surface algorithms exist for the floating-point types only.
#define GEOMETRY_INSTANTIATE_REAL(Class)                                                                               \
  template class Class<float>;                                                                                         \
  template class Class<double>;                                                                                        \
  template class Class<long double>;

#define GEOMETRY_EXTERN_TEMPLATE_REAL(Class)                                                                           \
  extern template class Class<float>;                                                                                  \
  extern template class Class<double>;                                                                                 \
  extern template class Class<long double>;
