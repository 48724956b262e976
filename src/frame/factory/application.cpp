#include "frame/factory/application.h"

#include "frame/member/table.h"
#include "matrix/matrix_base.h"
#include "scalar/complex_object.h"
#include "vector/bound_vector.h"

namespace {

using vela::member::TypeTable;

// Calls f.operator()<Owner>() for every class whose table exists once per element type.
template <class F>
void ForEachTypeTable(F&& f) {
  vela::ForEachElementType([&]<class T>() {
    f.template operator()<TCAllVectorsBase<T>>();
    if constexpr (vela::DatasetElement<T>) {
      f.template operator()<TCOVectorBase<T>>();
      f.template operator()<TCOMatrixBase<T>>();
      if constexpr (!vela::ComplexElement<T>) f.template operator()<TCCurve<T>>();
    }
    if constexpr (vela::PointElement<T>) {
      f.template operator()<TCPointBase<typename T::Coordinate, T::kDimensions>>();
    }
  });
  f.template operator()<tcCategoricalData<int>>();
}

// Loading the library constructs it, unloading destroys it, on both platforms.
class LoadedApplication {
 public:
  LoadedApplication() { application_.InitInstance(); }
  ~LoadedApplication() { application_.ExitInstance(); }

 private:
  CVELABaseTypesApp application_;
};

const LoadedApplication application;

}  // namespace

BOOL CVELABaseTypesApp::InitInstance() {
  ForEachTypeTable([]<class Owner>() { TypeTable<Owner>::Build(); });
  return CWinApp::InitInstance();
}

int CVELABaseTypesApp::ExitInstance() {
  ForEachTypeTable([]<class Owner>() { TypeTable<Owner>::Free(); });
  return CWinApp::ExitInstance();
}
