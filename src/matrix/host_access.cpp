// Host-facing operations of matrices.
#include "frame/container/container_arguments.h"
#include "frame/library_state.h"
#include "matrix/typed_matrix.h"

using vela::ConstElementSpan;
using vela::ElementSpan;
using vela::Layer;
using vela::LayerShape;

int TCAllMatrixNonTemplBase::IndexIn(int layer, const MSOINDICES* at, std::size_t& index) const {
  const int count = at == nullptr ? 0 : at->ElementCount();
  if (count == 1) return status::kUnresolved;  // a row is no element
  const int row = count == 0 ? 0 : at->element;
  const int col = count == 0 ? 0 : at->column;
  if (row < 0 || col < 0) return status::kNegativeElement;
  const LayerShape shape = ShapeOf(layer);
  if (row >= shape.rows || col >= shape.cols) return status::kOutOfRange;
  index = static_cast<std::size_t>(row * shape.cols + col);
  return status::kOk;
}

int TCAllMatrixNonTemplBase::GetMatrixDimensions(int* rows, int* cols, const MSOINDICES* at) {
  int layer;
  if (LocateLayer(at, layer) != status::kOk) return 0;
  const LayerShape shape = ShapeOf(layer);
  if (rows != nullptr) *rows = static_cast<int>(shape.rows);
  if (cols != nullptr) *cols = static_cast<int>(shape.cols);
  return 1;
}

int TCAllMatrixNonTemplBase::SetMatrixDimension(int rows, int cols, const MSOINDICES* at) {
  if (LayerCount() == 0) return status::kUnsupported;
  int layer;
  if (LocateLayer(at, layer) != status::kOk) return status::kFailed;
  return SetLayerSize(layer, rows, cols, 0);
}

int TCAllMatrixNonTemplBase::GetString(CStringUTF8& text) {
  if (LayerCount() == 0) {
    text = "matrixbase";
  } else {
    const LayerShape shape = ShapeOf(0);
    text.Format("%s[%dX%d]", GetDateTypeString(), static_cast<int>(shape.rows),
                static_cast<int>(shape.cols));
  }
  return 1;
}

int TCAllMatrixNonTemplBase::GetDisplayElement(CStringUTF8& text, int layer) {
  if (layer < 0) layer = 0;
  if (IsValid(layer)) {
    text.Format("matrix(%d, %d)[%d]", GetNumRows(layer), GetNumCols(layer), LayerCount());
  } else {
    text = "matrix<Invalid>";
  }
  return status::kOk;
}

void* TCAllMatrixNonTemplBase::GetArrayElement(const MSOINDICES* at, int index) {
  int layer;
  if (LocateLayer(at, layer) != status::kOk) return nullptr;
  const LayerShape shape = ShapeOf(layer);
  const int row = at == nullptr || at->ElementCount() == 0 ? 0 : at->element;
  if (row < 0 || row >= shape.rows || index < 0 || index >= shape.cols) return nullptr;
  const ElementSpan elements = BufferOf(layer);
  const auto place = static_cast<std::size_t>(row * shape.cols + index);
  return elements ? elements.Part(place, 1).data : nullptr;
}

int TCAllMatrixNonTemplBase::GetUpperBound(const MSOINDICES* at, int& upper) {
  int layer;
  if (const int error = LocateLayer(at, layer); error != status::kOk) return error;
  const LayerShape shape = ShapeOf(layer);
  const bool of_row = at != nullptr && at->ElementCount() == 1;
  if (of_row && (at->element < 0 || at->element >= shape.rows)) return status::kOutOfRange;
  upper = static_cast<int>(of_row ? shape.cols : shape.rows) - 1;
  return status::kOk;
}

int TCAllMatrixNonTemplBase::GetDisplaySize(int& rows, int& cols) {
  return GetDisplaySizeEx(nullptr, rows, cols);
}

int TCAllMatrixNonTemplBase::GetDisplaySizeEx(const MSOINDICES* at, int& rows, int& cols) {
  return GetMatrixDimensions(&rows, &cols, at) != 0 ? status::kOk : status::kUnresolved;
}

int TCAllMatrixNonTemplBase::InitalizeFromMemory(const void* memory, int count) {
  if (LayerCount() == 0) return status::kUnsupported;
  if (count < 0 || (memory == nullptr && count > 0)) return status::kBadArguments;
  if (SizeOf(0) == 0) {
    if (const int error = ResizeLayer(0, LayerShape::OneRow(count), vela::Contents::kDrop)) {
      return error;
    }
  }
  const ConstElementSpan elements(GetInternalDataTypeID(), memory, static_cast<std::size_t>(count));
  if (SizeOf(0) != elements.size) return status::kBadArguments;
  if (const int error = StoreElements(0, 0, elements); error != status::kOk) return error;
  Update(0);
  return status::kOk;
}

int TCAllMatrixNonTemplBase::CopyFromMatrix(const MSOINDICES* at, CScriptVelaObject* matrix) try {
  int layer;
  if (const int error = LocateLayer(at, layer); error != status::kOk) return error;
  auto* source = dynamic_cast<TCAllMatrixNonTemplBase*>(matrix);
  if (source == nullptr || source->LayerCount() == 0) return status::kBadArguments;
  return AssignLayer(layer, {source, 0});
} catch (...) {
  return vela::member::StatusOfException();
}

int TCAllMatrixNonTemplBase::Lent(const MSOINDICES* at, int result) {
  int layer;
  if (result != status::kOk || LocateLayer(at, layer) != status::kOk) return result;
  if (vela::MatrixBlock* block = BlockOf(layer)) block->LockSize();
  return result;
}

int TCAllMatrixNonTemplBase::GetBufferMSO(const MSOINDICES* at, void** buffer) {
  return Lent(at, Base::GetBufferMSO(at, buffer));
}

int TCAllMatrixNonTemplBase::GetBufferMSOEx(const MSOINDICES* at, unsigned element_type,
                                            void** buffer) {
  if (element_type == GetInternalDataTypeID()) return GetBufferMSO(at, buffer);
  return Lent(at, Base::GetBufferMSOEx(at, element_type, buffer));
}

int TCAllMatrixNonTemplBase::ReleaseBufferMSO(const MSOINDICES* at, void* buffer) {
  int layer;
  if (LocateLayer(at, layer) == status::kOk) {
    if (vela::MatrixBlock* block = BlockOf(layer)) block->UnlockSize();
  }
  return Base::ReleaseBufferMSO(at, buffer);
}

void vela::InitialiseFromArguments(TCAllMatrixNonTemplBase& matrix, void** args) {
  if (args == nullptr || *args == nullptr) return;
  const int error =
      member::Run(static_cast<CTCall*>(*args), member::AtLeast(1), [&](member::Arguments& call) {
        const unsigned type_word = call.TypeId(0);
        if ((type_word & kFlagAnyMatrix) != 0) {
          return matrix.AssignLayer(0, RequiredMatrix(call, 0));
        }
        if ((type_word & kFlagDataset) != 0) return matrix.AssignLayer(0, RequiredVector(call, 0));
        return int{status::kOk};
      });
  if (error != status::kOk) ReportError(status::kReportBadInitialiser, args);
}
