// Free functions of the host runtime that the support library calls.
#pragma once

#include "frame/interface/export.h"
#include "frame/interface/string_utf8.h"
#include "platform/types.h"

class CScriptVelaObject;

// Smallest and largest value of a simple element type, as doubles. False for any other type id.
VELAHOST_API bool GetDataTypeRange(unsigned type_id, double& smallest, double& largest);
// Automation type of a simple element type (VT_I4 for int ...); VT_EMPTY for any other.
VELAHOST_API WORD GetVariantTypeFromSimpleType(unsigned type_id);
// Bytes of one element of a type id; 0 for an unknown one.
VELAHOST_API unsigned PLTTypeToSizeOf(unsigned type_id);
// Element type id for the elements of an automation array; 0 when there is none.
VELAHOST_API unsigned GetVectorBasicTypeFromSafeArrayType(WORD variant_type);

// Checked power: 1 and the value, or 0 when it is not a finite real number (a negative base with a
// fractional exponent, 0 to a negative power, overflow). Underflow to 0 succeeds.
VELAHOST_API int CheckedPower(double x, double y, double& result);

VELAHOST_API CStringUTF8 make_str_from_char(char ch);
VELAHOST_API CStringUTF8 make_str_from_char_array(const char* text, int length);

// A new bitmap with the picture of an image file, owned by the caller; null when the file cannot be
// read. The name is UTF-8, null reads as none.
VELAHOST_API HBITMAP LoadImageFile(const char* file_name);
