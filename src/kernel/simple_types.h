#pragma once

#include <cstdint>

/// Expands F(T) once for each of the ten simple element types: the list that every per-type
/// instantiation and table of the kernels is made from.
#define VELA_KERNEL_FOR_SIMPLE_TYPES(F) \
  F(char)                               \
  F(unsigned char)                      \
  F(short)                              \
  F(unsigned short)                     \
  F(int)                                \
  F(unsigned int)                       \
  F(float)                              \
  F(double)                             \
  F(std::int64_t)                       \
  F(std::uint64_t)
