#include "frame/factory/create.h"

#include "frame/element_types.h"
#include "frame/numeric_object.h"
#include "matrix/bound_matrix.h"
#include "scalar/complex_object.h"
#include "scalar/picture_object.h"
#include "scalar/variant_object.h"
#include "text/file_object.h"
#include "text/stdio_file_object.h"
#include "text/string_array.h"
#include "text/string_object.h"
#include "vector/bound_vector.h"

namespace vela {
namespace {

// The classes of the factory's table that differ by more than their element type.
template <class T>
struct Classes {
  using Vector =
      std::conditional_t<std::is_floating_point_v<T>, TCVectorFloating<T>, TCVectorIntegral<T>>;
  using Dataset =
      std::conditional_t<std::is_floating_point_v<T>, TCOVectorFloating<T>, TCOVectorIntegral<T>>;
  using Matrix =
      std::conditional_t<std::is_floating_point_v<T>, TCMatrixFloating<T>, TCMatrixIntegral<T>>;
  using MatrixObject =
      std::conditional_t<std::is_floating_point_v<T>, TCOMatrixFloating<T>, TCOMatrixIntegral<T>>;
};
template <>
struct Classes<OneTCcomplex> {
  using Vector = TClccomplexVector;
  using Dataset = TCOlccomplexVector;
  using Matrix = TClccomplexMatrix;
  using MatrixObject = TCOlccomplexMatrix;
};
template <PointElement T>
struct Classes<T> {
  using Vector = TCPointVector<typename T::Coordinate, T::kDimensions>;
};

template <class Vector>
CScriptVelaObject* NewVector(const CreationRequest& request, unsigned type_id) {
  return new Vector(request.args, type_id, request.n, request.n != 0);
}

template <class T>
CScriptVelaObject* CreateNumeric(const CreationRequest& request) {
  const unsigned type_id = kElement<T>.type_id;
  if (request.Has(kFlagDataset)) {
    if constexpr (DatasetElement<T>) return new typename Classes<T>::Dataset(type_id);
    return nullptr;
  }
  if (request.Has(kFlagVector)) return NewVector<typename Classes<T>::Vector>(request, type_id);
  if (request.Has(kFlagCurve)) {
    if constexpr (DatasetElement<T> && !ComplexElement<T>) return new TCCurve<T>(type_id);
    return nullptr;
  }
  if (request.Has(kFlagBitField)) return NewBitField(type_id, request.n, request.args);
  if constexpr (ComplexElement<T>) return new TCcomplex(request.n, type_id, request.args);
  if constexpr (PointElement<T>) {
    using Point = TCPointBase<typename T::Coordinate, T::kDimensions>;
    return new Point(request.n, type_id, request.args);
  }
  return NewNumber(type_id, request.n, request.args);
}

CScriptVelaObject* CreateString(const CreationRequest& request) {
  if (request.Has(kFlagVector)) return NewVector<TCVectorString>(request, kTypeString);
  return new CScriptVelaString(request.n, kTypeString, request.args);
}

}  // namespace

CScriptVelaObject* CreateObject(const CreationRequest& request) {
  switch (const unsigned type_id = request.TypeId()) {
    case kTypeCharAlias:
      return CreateNumeric<char>(request);
    case kTypeComplexOfDouble:
      if (!request.Has(kFlagVector) || request.Has(kFlagDataset)) return nullptr;
      return NewVector<TCComplexVector<double>>(request, kTypeDouble);
    case kTypeVectorBase:
    case kTypeVectorBaseAlias:
      return new TCAllVectorNonTemplBase(type_id);
    case kTypeCategorical:
    case kTypeCategoricalAlias:
      return new tcCategoricalData<int>(type_id);
    case kTypeString:
      return CreateString(request);
    case kTypeFile:
      return new CMSCFile(type_id);
    case kTypeStdioFile:
      return new CMSCSTDIOFile(type_id);
    case kTypeVariant:
      return new TCVariantObj(request.n, type_id, request.args);
    case kTypePicture:
      return new TCPicture(request.n, type_id, request.args);
    default:
      return WithElementType(type_id, [&]<class T>() { return CreateNumeric<T>(request); });
  }
}

CScriptVelaObject* CreateMatrix(const CreationRequest& request) {
  const unsigned type_id = request.TypeId();
  if (type_id == kTypeMatrixBase) return new TCAllMatrixNonTemplBase(type_id);
  return WithElementType(type_id, [&]<class T>() -> CScriptVelaObject* {
    if constexpr (DatasetElement<T>) {
      if (!request.Has(kFlagMatrix)) return new typename Classes<T>::MatrixObject(type_id);
      return new typename Classes<T>::Matrix(request.args, type_id, request.n, request.n != 0);
    }
    return nullptr;
  });
}

}  // namespace vela
