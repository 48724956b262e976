// Elements of objects: of a vector, of a matrix, of an array of scalars, of a text, of a
// StringArray. Storage moves when an object is resized, so nothing is remembered between uses.
#pragma once

#include "frame/interface/indices.h"
#include "host/object_ref.h"
#include "tesselc/run/carrier.h"
#include "tesselc/run/variables.h"
#include "tesselc/source.h"

namespace tesselc {

// An element that was found to exist. Good until anything else runs.
struct ElementSpot {
  void* address = nullptr;  // of its memory, as the element type; null where there is none to see
  CScriptVelaObject* object = nullptr;
  MSOINDICES at;
  vela::host::ObjectRef keep;
};

// What a reference to an element holds; each use of one makes its own.
class ElementReference : public ElementLink {
 public:
  // Refers to the element that the indices pick now.
  virtual void Bind(Frame& frame) = 0;
};

class Referable {
 public:
  virtual ~Referable() = default;
  // Not bound yet; this must outlive it.
  virtual std::unique_ptr<ElementReference> MakeReference() = 0;
};

// T is a scalar type, or CStringUTF8 for an element that is a text.
template <class T>
class ElementNode : public ValueNode<T>, public Referable {
 public:
  // Throws a ScriptError for an index outside.
  virtual ElementSpot Find(Frame& frame) = 0;
  virtual T Load(const ElementSpot& spot) = 0;
  virtual void Store(const ElementSpot& spot, const T& value) = 0;
};

// An element of a scalar type, to refer to.
std::unique_ptr<Referable> AsReferable(TypeName type, NodePtr element);

// `object` is the container, `index` an int64; the element type is that of the container, or
// double for one whose element type is known only at run time.
NodePtr MakeVectorElement(TypeName element, NodePtr object, NodePtr index, SourceRange where);
NodePtr MakeMatrixCell(TypeName element, NodePtr object, NodePtr row, NodePtr column,
                       SourceRange where);
// Of `T a[n]`, T a scalar type.
NodePtr MakeArrayElement(TypeName element, NodePtr object, NodePtr index, SourceRange where);
// A char of a string object.
NodePtr MakeTextChar(NodePtr object, NodePtr index, SourceRange where);
// A text of a StringArray.
NodePtr MakeTextElement(NodePtr object, NodePtr index, SourceRange where);

// element = value. `carrier` is the element's.
NodePtr MakeStoreElement(Carrier carrier, NodePtr element, NodePtr value);
// element op= operand, as the object itself does it: an operation code of operations.h. The operand
// is a number or a complex value, or a point where the element is one; it is computed first.
// give_old: the value is the element's old one.
NodePtr MakeOperateElement(TypeName type, NodePtr element, unsigned op, TypeName operand_type,
                           NodePtr operand, bool give_old, SourceRange where);
// For the operators that objects do not know, and for bytes of texts. The element is found once and
// its value put into the frame at `scratch`, which `combined` reads; the value of that is stored.
// `first`, when given, runs before. For scalars.
NodePtr MakeUpdateElement(TypeName type, NodePtr element, std::uint32_t scratch, NodePtr first,
                          NodePtr combined, bool give_old);

}  // namespace tesselc
