// Type words: the type id of a built-in type in the low 16 bits, a container flag above it. The
// same numbering serves the factory, the arguments of a call frame (CTCall::GetTypeID) and the
// internal data type of an element (GetInternalDataTypeID).
#pragma once

enum TypeId : unsigned {
  kTypeNone = 0,
  kTypeCharAlias = 2,  // another id of char, accepted on creation of scalars and vectors only
  kTypeChar = 3,       // also how a call frame reports a character literal
  kTypeUnsignedChar = 4,
  kTypeShort = 5,
  kTypeUnsignedShort = 6,
  kTypeInt = 8,  // also how a call frame reports an int literal
  kTypeUnsignedInt = 9,
  kTypeFloat = 10,
  kTypeDouble = 11,
  kTypeComplex = 12,
  kTypeComplexOfDouble = 13,  // complex vector of doubles; exists only as a vector
  kTypePointInt = 14,
  kTypePointDouble = 15,
  kTypePoint3D = 16,
  kTypeVectorBase = 17,
  kTypeCategorical = 19,
  kTypeCategoricalAlias = 20,
  kTypeMatrixBase = 22,
  kTypeVectorBaseAlias = 25,
  kTypeString = 27,
  kTypeFile = 28,
  kTypeStdioFile = 29,
  kTypeReference = 32,
  kTypePointer = 33,  // also how a call frame reports a string literal
  kTypeVariant = 42,
  kTypeDeviceContext = 105,
  kTypePicture = 138,
  kTypeInt64 = 187,
  kTypeUnsignedInt64 = 188,
};

inline constexpr unsigned kTypeStringLiteral = kTypePointer;
inline constexpr unsigned kLastTypeId = kTypeUnsignedInt64;

// Container flags.
inline constexpr unsigned kTypeIdMask = 0xFFFF;
inline constexpr unsigned kFlagVector = 0x10000;        // free vector
inline constexpr unsigned kFlagDataset = 0x20000;       // vector bound to a host Dataset
inline constexpr unsigned kFlagMatrix = 0x40000;        // free matrix
inline constexpr unsigned kFlagMatrixObject = 0x80000;  // matrix bound to a host MatrixObject
inline constexpr unsigned kFlagCurve = 0x100000;        // Dataset with its X
inline constexpr unsigned kFlagCategorical = 0x200000;  // categorical data
inline constexpr unsigned kFlagBitField = 0x1000000;    // integer of n bits
inline constexpr unsigned kFlagAnyMatrix = kFlagMatrix | kFlagMatrixObject;
inline constexpr unsigned kFlagAnyVector =
    kFlagVector | kFlagDataset | kFlagCurve | kFlagCategorical;
inline constexpr unsigned kFlagAnyContainer = 0x330000;  // what a size argument is tested against
