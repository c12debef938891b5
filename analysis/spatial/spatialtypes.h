#pragma once

#include "image/elementtypes.h"

// Spatial models exist for the floating-point coordinate types and every pixel type of a mask.
#define SPATIAL_FOR_EACH_PAIR(MACRO, Class)                                                                            \
  SPATIAL_FOR_EACH_PIXEL(MACRO, Class, float)                                                                          \
  SPATIAL_FOR_EACH_PIXEL(MACRO, Class, double)                                                                         \
  SPATIAL_FOR_EACH_PIXEL(MACRO, Class, long double)

#define SPATIAL_FOR_EACH_PIXEL(MACRO, Class, C)                                                                        \
  MACRO(Class, C, char)                                                                                                \
  MACRO(Class, C, unsigned char)                                                                                       \
  MACRO(Class, C, short)                                                                                               \
  MACRO(Class, C, unsigned short)                                                                                      \
  MACRO(Class, C, int)                                                                                                 \
  MACRO(Class, C, unsigned int)                                                                                        \
  MACRO(Class, C, float)                                                                                               \
  MACRO(Class, C, double)                                                                                              \
  MACRO(Class, C, long double)

#define SPATIAL_EXTERN_PAIR(Class, C, P) extern template class Class<C, P>;
#define SPATIAL_INSTANTIATE_PAIR(Class, C, P) template class Class<C, P>;

#define SPATIAL_EXTERN_TEMPLATE(Class) SPATIAL_FOR_EACH_PAIR(SPATIAL_EXTERN_PAIR, Class)
#define SPATIAL_INSTANTIATE(Class) SPATIAL_FOR_EACH_PAIR(SPATIAL_INSTANTIATE_PAIR, Class)
