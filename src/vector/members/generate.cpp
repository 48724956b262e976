// Members that fill a vector with generated values.
#include <algorithm>
#include <cmath>
#include <optional>

#include "frame/container/container_arguments.h"
#include "frame/interface/missing_value.h"
#include "kernel/pattern.h"
#include "kernel/random.h"
#include "kernel/sample.h"
#include "kernel/sequence.h"
#include "vector/random_stream.h"
#include "vector/vector_base.h"

using vela::ElementSpan;
using vela::Layer;
using vela::LayerElements;
using vela::SimpleElement;
using vela::member::Arguments;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::Run;
namespace kernel = vela::kernel;

namespace {

// Makes elements the real numbers that fill(std::span<T>) writes: as their own type where that is a
// simple one, else as doubles that are converted. A fill that returns how many it wrote leaves the
// others as they are.
template <class Fill>
void FillNumbers(const ElementSpan& elements, Fill&& fill) {
  const bool is_simple =
      vela::WithElementType(elements.type_id, []<class T>() { return SimpleElement<T>; });
  if (is_simple) {
    vela::WithElements(elements, [&]<SimpleElement T>(std::span<T> v) { fill(v); });
    return;
  }
  const vela::ElementMemory numbers(kTypeDouble, elements.size);
  vela::ConvertElements(elements, numbers.Span());
  const std::size_t written = fill(numbers.Span().As<double>());
  vela::ConvertElements(numbers.Span().Part(0, written), elements.Part(0, written));
}

// The size that a generated run of count values needs: exactly count for a negative offset, else
// at least offset + count.
std::size_t GeneratedSize(std::size_t size, int count, int offset) {
  const auto wanted = static_cast<std::size_t>(count);
  return offset < 0 ? wanted : std::max(size, static_cast<std::size_t>(offset) + wanted);
}

}  // namespace

// Data(double from, double to, double increment): the row becomes from, from + increment, ... up to
// to; 1, or 0 where the increment leads away from to (which leaves the row empty), is 0 or is no
// number (which changes nothing).
int TCAllVectorNonTemplBase::Data(CTCall* call) {
  return Run(call, Exactly(3), [&](Arguments& args) {
    RefuseOneRowOfMany(args, status::kNotOnRow);
    const Layer row = AddressedNumbers(args);
    const double from = args.Double(0);
    const double to = args.Double(1);
    const double increment = args.Double(2);
    const double steps = (to - from) / increment;
    args.Return(0);
    if (increment == 0 || std::isnan(steps)) return;
    const std::optional<std::int32_t> count = kernel::SequenceCount(from, to, increment);
    if (!count) Fail(status::kCannotResize);
    const auto size = static_cast<std::size_t>(*count);
    row.Resize(size, vela::Contents::kDrop);
    if (size > 0) {
      const double last = kernel::SequenceLast(from, to, increment, *count);
      const LayerElements elements(row);
      FillNumbers(elements.Span(), [&]<class T>(std::span<T> v) {
        kernel::FillSequence<T>(v, from, increment, last);
        return v.size();
      });
      elements.Commit();
      if (last == kMissingValue) row.Resize(size - 1);
    }
    args.Return(steps >= 0 ? 1 : 0);
  });
}

// Pattern(double from, double to, double step, int repeatEach, int repeatTotal, int offset,
// int count): the levels from, from + step, ... each repeated and all of them repeated, from offset
// on; 1, or 0 for no pattern.
int TCAllVectorNonTemplBase::Pattern(CTCall* call) {
  return Run(call, Exactly(7), [&](Arguments& args) {
    RefuseOneRowOfMany(args, status::kNotOnRow);
    const Layer row = AddressedNumbers(args);
    const kernel::Pattern pattern{args.Double(0), args.Double(2), args.Int(3), args.Int(4)};
    const double to = args.Double(1);
    const int offset = args.Int(5);
    const int count = args.Int(6);
    args.Return(0);
    if (pattern.repeat_each < 1 || pattern.repeat_total < 1) return;
    if (pattern.step == 0 || std::isnan((to - pattern.from) / pattern.step)) return;
    const std::optional<std::int32_t> size = kernel::PatternSize(pattern, to);
    if (!size) Fail(status::kCannotResize);
    const int wanted = count >= 0 ? count : *size;
    row.Resize(GeneratedSize(row.Size(), wanted, offset));
    const LayerElements elements(row);
    const ElementSpan target =
        elements.Span().Part(static_cast<std::size_t>(std::max(offset, 0)),
                             static_cast<std::size_t>(std::min(wanted, *size)));
    FillNumbers(target, [&]<class T>(std::span<T> v) {
      return kernel::FillPattern<T>(v, pattern, static_cast<std::uint32_t>(*size));
    });
    elements.Commit();
    args.Return(1);
  });
}

// The seeded generators: arguments count and seed; fill(random, values) draws values. 1.
template <class Fill>
int TCAllVectorNonTemplBase::FillSeeded(CTCall* call, Fill&& fill) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    RefuseOneRowOfMany(args, status::kNotOnRow);
    const Layer row = AddressedNumbers(args);
    const int count = args.Int(0);
    const double seed = args.Double(1);
    if (count > 0) {
      row.Resize(static_cast<std::size_t>(count), vela::Contents::kDrop);
      vela::RandomStream().Seed(seed);
      const LayerElements elements(row);
      FillNumbers(elements.Span(), [&](auto values) {
        fill(vela::RandomStream(), values);
        return values.size();
      });
      elements.Commit();
    }
    args.Return(1);
  });
}

// Uniform(int count, int seed): count uniform random numbers in [0, 1); 1.
// Uniform(int count, vector source, int offset): count elements drawn from the source, from offset
// on; 1, or 0 for a negative count or an empty source.
int TCAllVectorNonTemplBase::Uniform(CTCall* call) {
  if (call != nullptr && call->GetNumOfArguments() == 2 &&
      vela::ElementWidth(call->GetTypeID(1)) != 0) {
    return FillSeeded(call, [](kernel::RandomSource& random, auto v) { random.FillUniform(v); });
  }
  return Run(call, Exactly(3), [&](Arguments& args) {
    RefuseOneRowOfMany(args, status::kNotOnRow);
    const Layer row = AddressedNumbers(args);
    const int count = args.Int(0);
    const Layer source = vela::RequiredVector(args, 1);
    const int offset = args.Int(2);
    args.Return(0);
    if (count < 0) return;
    // Read before the resize, which may be of the same vector.
    const vela::ElementMemory values(row.TypeId(), source.Size());
    vela::member::Check(source.container->ReadElements(source.number, 0, values.Span()));
    row.Resize(GeneratedSize(row.Size(), count, offset));
    if (source.Size() == 0 && count > 0) return;
    const LayerElements elements(row);
    const std::size_t first = static_cast<std::size_t>(std::max(offset, 0));
    vela::VisitElementType(row.TypeId(), [&]<class T>() {
      kernel::Sample<T>(values.Span().As<T>(), vela::RandomStream(),
                        elements.As<T>().subspan(first, static_cast<std::size_t>(count)));
    });
    elements.Commit();
    args.Return(1);
  });
}

// Normal(int count, int seed): count normally distributed random numbers; 1.
int TCAllVectorNonTemplBase::Normal(CTCall* call) {
  return FillSeeded(call, [](kernel::RandomSource& random, auto v) { random.FillNormal(v); });
}
