#include "frame/container/container_arguments.h"

#include <cstdint>
#include <limits>

#include "frame/element_value.h"

using vela::member::Arguments;
using vela::member::Check;
using vela::member::Fail;

namespace vela {
namespace {

// A plain number becomes a complex with that real part, and a point with that x where the frame
// converts it; 64-bit integers keep all their digits.
template <class T>
T ReadElement(Arguments& args, unsigned arg) {
  if constexpr (ComplexElement<T>) {
    return args.Complex(arg);
  } else if constexpr (PointElement<T>) {
    T value;
    if constexpr (std::is_same_v<T, PointInt>) {
      Check(args.Call().GetPointInt(arg, value));
    } else if constexpr (std::is_same_v<T, PointDouble>) {
      Check(args.Call().GetPointDouble(arg, value));
    } else {
      Check(args.Call().GetPoint3D(arg, value));
    }
    return value;
  } else {
    if constexpr (IntegerElement<T> && sizeof(T) == 8) {
      const unsigned type_id = args.TypeId(arg);
      const CStringUTF8 digits =
          type_id == kTypeInt64 || type_id == kTypeUnsignedInt64 ? args.Text(arg) : CStringUTF8();
      if (type_id == kTypeInt64) return ConvertValue<T>(ValueOfText<std::int64_t>(digits.c_str()));
      if (type_id == kTypeUnsignedInt64) {
        return ConvertValue<T>(ValueOfText<std::uint64_t>(digits.c_str()));
      }
    }
    return ConvertValue<T>(args.Double(arg));
  }
}

// The layer of a container with one of the flags; of none for NULL.
Layer OptionalLayer(Arguments& args, unsigned arg, unsigned flags) {
  const tagMSOOBJVECT object = args.Object(arg);
  if (object.object == nullptr) return {};
  if ((object.object->GetTypeID() & flags) == 0 || object.indices.ElementCount() != 0) {
    Fail(status::kBadArguments);
  }
  auto* container = dynamic_cast<TCAllTensorsBase*>(object.object);
  if (container == nullptr) Fail(status::kBadArguments);
  const int layer = container->GetVecArrayIndex(&object.indices);
  if (layer < 0 || layer >= container->LayerCount()) {
    Fail(container->StatusOfNoLayer(status::kOutOfRange));
  }
  return {container, layer};
}

}  // namespace

Layer OptionalVector(Arguments& args, unsigned arg) {
  return OptionalLayer(args, arg, kFlagAnyVector);
}

Layer RequiredVector(Arguments& args, unsigned arg) {
  const Layer vector = OptionalVector(args, arg);
  if (!vector) Fail(status::kBadArguments);
  return vector;
}

Layer RequiredMatrix(Arguments& args, unsigned arg) {
  const Layer matrix = OptionalLayer(args, arg, kFlagAnyMatrix);
  if (!matrix) Fail(status::kUnresolved);
  return matrix;
}

Layer RequiredContainer(Arguments& args, unsigned arg) {
  const Layer layer = OptionalLayer(args, arg, kFlagAnyVector | kFlagAnyMatrix);
  if (!layer) Fail(status::kBadArguments);
  return layer;
}

AnyElement ElementArgument(Arguments& args, unsigned arg, unsigned type_id) {
  AnyElement element(type_id);
  VisitElementType(type_id, [&]<class T>() { element.As<T>() = ReadElement<T>(args, arg); });
  return element;
}

void RefuseNarrowReference(const Arguments& args, unsigned arg, unsigned type_id) {
  if ((args.TypeId(arg) & kTypeIdMask) < type_id) Fail(status::kNotContiguous);
}

void SetTotal(Arguments& args, unsigned arg, unsigned type_id, const OneTCcomplex& total) {
  RefuseNarrowReference(args, arg, type_id);
  const unsigned reference = args.TypeId(arg) & kTypeIdMask;
  if (reference < kTypeUnsignedInt) {
    args.Set(arg, ConvertValue<int>(total.m_re));
  } else if (reference <= kTypeDouble) {
    args.Set(arg, total.m_re);
  } else {
    args.Set(arg, total);
  }
}

void ReturnArray(Arguments& args, const Layer& layer, const ArrayLayout& layout) {
  CComVariant array = layer.container->AsArray(layer.number, layout);
  ReturnVariant(args, layer.Size() == 0 ? CComVariant() : std::move(array));
}

void SetPosition(Arguments& args, unsigned arg, std::ptrdiff_t position) {
  if (args.IsNull(arg)) return;
  const auto is_unsigned = [](unsigned type_id) {
    return WithElementType(type_id, []<class T>() { return std::is_unsigned_v<T>; });
  };
  if (position >= 0 || !is_unsigned(args.TypeId(arg))) {
    return args.Set(arg, static_cast<double>(position));
  }
  // The number -1 would be stored as 0; the largest number of any type saturates to all bits set.
  args.Set(arg, static_cast<double>(std::numeric_limits<std::uint64_t>::max()));
}

}  // namespace vela
