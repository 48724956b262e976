// Nodes on texts that are in no object.
#pragma once

#include "tesselc/run/carrier.h"

namespace tesselc {

NodePtr MakeConcatenation(NodePtr left, NodePtr right);
// A char as a text of one byte.
NodePtr MakeTextOfChar(NodePtr character);
// The number that a text stands for (unreadable: missing, 0 as an integer), and the text of a
// number or complex value.
NodePtr MakeNumberOfText(TypeName type, NodePtr text);
NodePtr MakeTextOfNumber(TypeName type, NodePtr number);
// == != < <= > >= by bytes; the value is an int, 0 or 1.
NodePtr MakeTextComparison(BinaryOperator op, NodePtr left, NodePtr right);

}  // namespace tesselc
