#include "scalar/complex_object.h"

using vela::member::Arguments;
using vela::member::Between;
using vela::member::Fail;
using vela::member::Run;
using vela::member::RunGetter;
using vela::member::RunSetter;

template <class T, int N>
std::initializer_list<CClassMember> TCPointBase<T, N>::MemberRows() {
  static const std::initializer_list<CClassMember> rows = {
      vela::member::Property("x", &TCPointBase::GetX, &TCPointBase::SetX),
      vela::member::Property("y", &TCPointBase::GetY, &TCPointBase::SetY),
      vela::member::Method("z", &TCPointBase::Z),
  };
  return rows;
}

template <class T, int N>
T& TCPointBase<T, N>::Coordinate(Arguments& args, int i) {
  auto* point = this->Element(&args.Indices());
  if (point == nullptr) Fail(status::kUnresolved);
  return (*point)[i];
}

template <class T, int N>
int TCPointBase<T, N>::GetCoordinate(CTCall* call, int i) {
  return RunGetter(call, [&](Arguments& args) { args.Return(Coordinate(args, i)); });
}

template <class T, int N>
int TCPointBase<T, N>::SetCoordinate(CTCall* call, int i) {
  return RunSetter(
      call, [&](Arguments& args) { Coordinate(args, i) = vela::ConvertValue<T>(args.Double(0)); });
}

template <class T, int N>
int TCPointBase<T, N>::GetX(CTCall* call) {
  return GetCoordinate(call, 0);
}

template <class T, int N>
int TCPointBase<T, N>::SetX(CTCall* call) {
  return SetCoordinate(call, 0);
}

template <class T, int N>
int TCPointBase<T, N>::GetY(CTCall* call) {
  return GetCoordinate(call, 1);
}

template <class T, int N>
int TCPointBase<T, N>::SetY(CTCall* call) {
  return SetCoordinate(call, 1);
}

template <class T, int N>
int TCPointBase<T, N>::Z(CTCall* call) {
  return Run(call, Between(0, 1), [&](Arguments& args) {
    if constexpr (N < 3) {
      return int{status::kUnsupported};
    } else {
      T& z = Coordinate(args, 2);
      if (args.Count() == 1) z = vela::ConvertValue<T>(args.Double(0));
      args.Return(z);
      return int{status::kOk};
    }
  });
}

template class TCPointBase<std::int32_t, 2>;
template class TCPointBase<double, 2>;
template class TCPointBase<double, 3>;
