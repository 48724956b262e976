// An object argument as a call frame hands it to a member, or as an operand of Operate2.
#pragma once

#include <cstdint>

#include "frame/interface/complex.h"
#include "frame/interface/export.h"
#include "frame/interface/indices.h"

class CScriptVelaObject;

struct VELAHOST_API tagMSOOBJVECT {
  static constexpr std::int32_t kNoIndex = -1;
  static constexpr std::uint32_t kByReference = 1;

  CScriptVelaObject* object = nullptr;  // borrowed: the frame's owner keeps it alive
  std::uint32_t type_word = 0;
  MSOINDICES indices;  // what of the object is meant
  std::uint32_t flags = 0;
  OneTCcomplex plain;            // the value of a plain operand, when object is null
  std::uint64_t plain_bits = 0;  // of a plain 64-bit integer, which plain only rounds
  void* lent_buffer = nullptr;   // by MSGetBuffer, until MSReleaseBuffer

  tagMSOOBJVECT() = default;
  // object_index, element and column are kNoIndex where they do not apply.
  tagMSOOBJVECT(CScriptVelaObject* object, std::uint32_t type_word,
                std::int32_t object_index = kNoIndex, std::int32_t element = kNoIndex,
                std::int32_t column = kNoIndex, std::uint32_t flags = 0);
  tagMSOOBJVECT(CScriptVelaObject* the_object, std::uint32_t the_type_word,
                const MSOINDICES& the_indices, std::uint32_t the_flags = 0)
      : object(the_object), type_word(the_type_word), indices(the_indices), flags(the_flags) {}
  // A plain value for Operate2 with the plain-operand bit; type_id is a scalar type id.
  static tagMSOOBJVECT Plain(const OneTCcomplex& value, std::uint32_t type_id);
  // The same for the 64-bit integers, exactly.
  static tagMSOOBJVECT Plain(std::int64_t value);
  static tagMSOOBJVECT Plain(std::uint64_t value);

  void Copy(const tagMSOOBJVECT& other);
  // Forgets the object; releases nothing.
  void Reset();
};

// Locks the data of the argument's object and returns its first byte, or null when there is none.
// The pointer stays valid until MSReleaseBuffer; calls do not nest.
VELAHOST_API void* MSGetBuffer(tagMSOOBJVECT& argument);
VELAHOST_API void MSReleaseBuffer(tagMSOOBJVECT& argument);
