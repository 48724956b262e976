// Operation codes and options of CScriptVelaObject::Operate2 and CompareVals.
#pragma once

namespace operation {

// Low byte of the operation argument of Operate2.
inline constexpr unsigned kAssign = 1;
inline constexpr unsigned kAdd = 2;
inline constexpr unsigned kSubtract = 3;
inline constexpr unsigned kMultiply = 4;
inline constexpr unsigned kDivide = 5;
inline constexpr unsigned kPower = 21;
// Set in the low byte when the operand is a plain value (tagMSOOBJVECT::Plain).
inline constexpr unsigned kPlainOperand = 0x80;
inline constexpr unsigned kCodeMask = 0x7F;

// Options of Operate2 on vectors.
inline constexpr unsigned kBroadcast = 0x20000;  // a one-element source applies to every element
inline constexpr unsigned kAppend = 0x80000;     // assign behind the current end

// Operators of CompareVals; the outcome is kCompareTrue set or cleared in the flags word.
inline constexpr unsigned kEqual = 64;
inline constexpr unsigned kNotEqual = 65;
inline constexpr unsigned kLess = 66;
inline constexpr unsigned kLessOrEqual = 67;
inline constexpr unsigned kGreater = 68;
inline constexpr unsigned kGreaterOrEqual = 69;
inline constexpr unsigned kCompareTrue = 0x10000;

}  // namespace operation
