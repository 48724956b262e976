#include "frame/factory/application.h"

#include <atomic>
#include <mutex>

#include "frame/member/table.h"
#include "matrix/bound_matrix.h"
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

// Loading the library starts it, unloading ends it, on both platforms.
class LoadedApplication {
 public:
  LoadedApplication() { Start(); }
  ~LoadedApplication() { application_.ExitInstance(); }

  bool Start() {
    if (is_started_.load(std::memory_order_acquire)) return true;
    const std::lock_guard lock(mutex_);
    const bool starts = application_.InitInstance() != 0;
    is_started_.store(starts, std::memory_order_release);
    return starts;
  }

 private:
  CVELABaseTypesApp application_;
  std::mutex mutex_;
  std::atomic<bool> is_started_ = false;
};

LoadedApplication application;

}  // namespace

bool vela::StartApplication() { return application.Start(); }

BOOL CVELABaseTypesApp::InitInstance() {
  bool is_complete = true;
  ForEachTypeTable([&]<class Owner>() { is_complete = TypeTable<Owner>::Build() && is_complete; });
  return is_complete ? CWinApp::InitInstance() : 0;
}

int CVELABaseTypesApp::ExitInstance() {
  ForEachTypeTable([]<class Owner>() { TypeTable<Owner>::Free(); });
  return CWinApp::ExitInstance();
}
