// The typed layers of a matrix: what tells its element type, and the free-standing matrix that owns
// its layers.
#pragma once

#include <new>

#include "frame/element_types.h"
#include "frame/numeric_object.h"
#include "frame/runtime_class.h"
#include "matrix/matrix_base.h"

template <class T>
class TCAllMatricesBase : public TCAllMatrixNonTemplBase {
 public:
  using TCAllMatrixNonTemplBase::TCAllMatrixNonTemplBase;

  unsigned GetInternalDataTypeID() const override { return vela::kElement<T>.type_id; }
  const char* GetDateTypeString() const override { return vela::kElement<T>.name; }
  const char* GetTCTypeName() const override { return "matrix"; }
  std::unique_ptr<vela::MatrixBlock> GetOperationsView(int layer) override {
    return std::unique_ptr<vela::MatrixBlock>(
        new (std::nothrow) TCOneMatrix<T>(this->GetDataPointer(layer), this->ShapeOf(layer)));
  }
};

namespace vela {

// Makes layer 0 a copy of argument 0 of the call frame that args points to, when that is a matrix,
// or fills it from a Dataset; for any other argument it stays empty. Code 48 is reported when it
// cannot be.
void InitialiseFromArguments(TCAllMatrixNonTemplBase& matrix, void** args);

}  // namespace vela

// A matrix that owns its layers.
template <class T>
class TCMatrixBase : public TCAllMatricesBase<T> {
 public:
  // layers 0 is 1. args, when given, is one pointer to a call frame that initialises layer 0.
  // Throws std::bad_alloc.
  TCMatrixBase(void** args, unsigned type_id, unsigned layers, bool /*is_array*/)
      : TCAllMatricesBase<T>((type_id & kTypeIdMask) | kFlagMatrix),
        layers_(layers != 0 ? layers : 1) {
    vela::InitialiseFromArguments(*this, args);
  }
  TCMatrixBase(const TCMatrixBase& other)
      : TCAllMatricesBase<T>(other.GetTypeID()), layers_(other.layers_.size()) {
    for (std::size_t i = 0; i < layers_.size(); ++i) layers_[i].CopyFrom(other.layers_[i]);
  }

  const CRuntimeClass* GetRuntimeClass() const override {
    static constexpr auto kName = vela::TemplateName<T>("TCMatrixBase");
    static const CRuntimeClass runtime_class{kName.data(), sizeof(TCMatrixBase),
                                             TCAllMatrixNonTemplBase::GetRuntimeClass()};
    return &runtime_class;
  }
  CScriptVelaObject* CreateCopy() override { return vela::NewCopy(*this); }
  int LayerCount() const override { return static_cast<int>(layers_.size()); }
  vela::MatrixBlock* BlockOf(int layer) override { return &layers_[layer]; }
  vela::LayerShape ShapeOf(int layer) const override { return layers_[layer].Shape(); }

 private:
  CArrayOfMatrices<T> layers_;
};

// The leaves of the factory's table differ in their element type alone.
template <class T>
using TCMatrixFloating = TCMatrixBase<T>;
template <class T>
using TCMatrixIntegral = TCMatrixBase<T>;
using TClccomplexMatrix = TCMatrixBase<OneTCcomplex>;
