#include "matrix/bound_matrix.h"

using vela::member::Unbuilt;

std::initializer_list<CClassMember> vela::MatrixObjectRows() {
  static const std::initializer_list<CClassMember> rows = {
      Unbuilt("Attach"),
      Unbuilt("Detach"),
      Unbuilt("GetXMin"),
      Unbuilt("GetYMin"),
      Unbuilt("GetXMax"),
      Unbuilt("GetYMax"),
      Unbuilt("SetXMin"),
      Unbuilt("SetYMin"),
      Unbuilt("SetXMax"),
      Unbuilt("SetYMax"),
      Unbuilt("IsValid"),
      Unbuilt("Update"),
      Unbuilt("GetXValue"),
      Unbuilt("GetYValue"),
      Unbuilt("SetCellValue"),
      Unbuilt("GetCellValue"),
      Unbuilt("SetZRangeUpdate"),
      Unbuilt("SetZRange"),
      Unbuilt("GetZRange"),
      Unbuilt("GetName"),
      Unbuilt("ImageLinesProfile"),
      Unbuilt("GetInterpolatedValue"),
  };
  return rows;
}
