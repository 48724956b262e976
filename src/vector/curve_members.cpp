#include "vector/curve_members.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "frame/container/container_arguments.h"
#include "kernel/reorder.h"
#include "kernel/sort.h"

using vela::member::Arguments;
using vela::member::Between;
using vela::member::Check;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::Run;

namespace vela::curve {
namespace {

VeData& Y(const Bound& bound, const Arguments& args) { return dataset::Data(bound.y, args); }

VeData& X(const Bound& bound) {
  if (bound.x.IsStale()) Fail(status::kNoRow);
  if (!bound.x.IsAttached()) Fail(status::kFailed);
  return *bound.x.Data();
}

// The points that have both values.
std::size_t CountPoints(const Bound& bound) {
  return static_cast<std::size_t>(std::min(bound.x.Size(), bound.y.binding.Size()));
}

std::vector<double> XValues(const Bound& bound) {
  std::vector<double> x(CountPoints(bound));
  Check(bound.x.Read(0, ElementSpan(std::span(x))));
  return x;
}

// Element k of the first ones becomes the former element order[k].
void Permute(DataBinding& binding, unsigned type_id, std::span<const unsigned> order) {
  const ElementMemory elements(type_id, order.size());
  Check(binding.Read(0, elements.Span()));
  WithWords(elements.Span(), [&]<class T>(std::span<T> words) { kernel::Reorder(words, order); });
  Check(binding.Store(0, elements.Span()));
}

}  // namespace

// Attach(string book, string y, string x), Attach(string book, int y, int x): a Y column with its X
// column; Attach(vector y, vector x): the columns that these are attached to. With the Y column
// alone, named as Attach of a data set names it, there are no X values, but from another curve its
// X values come along. 1, or 0, with everything as it was, as Attach of a data set.
int Attach(const Bound& bound, CTCall* call) {
  return Run(call, Between(1, 3), [&](Arguments& args) {
    dataset::CheckRow(bound.y, args);
    DataBinding x(kTypeDouble);
    VeData* y = nullptr;
    bool has_x = true;
    if (args.Count() == 3) {
      y = dataset::FindData(args, 0, 1);
      has_x = x.Attach(dataset::FindData(args, 0, 2));
    } else if (args.Count() == 2 && !args.IsText(0)) {
      y = dataset::DataOf(RequiredVector(args, 0));
      has_x = x.Attach(dataset::DataOf(RequiredVector(args, 1)));
    } else {
      y = dataset::SourceArgument(args);
      if (!args.IsText(0)) {
        const auto* other =
            dynamic_cast<TCAllVectorNonTemplBase*>(RequiredVector(args, 0).container);
        if (other != nullptr && other->XData() != nullptr) x.Attach(other->XData());
      }
    }
    if (!has_x || !bound.y.binding.Attach(y)) return args.Return(0);
    bound.x = x;
    args.Return(1);
  });
}

// AttachX(string book, string column) and the other forms of Attach of a data set: the column of X
// values. 1, or 0 with everything as it was.
int AttachX(const Bound& bound, CTCall* call) {
  return Run(call, Between(1, 2), [&](Arguments& args) {
    dataset::CheckRow(bound.y, args);
    args.Return(bound.x.Attach(dataset::SourceArgument(args)) ? 1 : 0);
  });
}

// Sort(int order = 1): sorts the points by X, upwards when bit 0 of order is set, else downwards;
// equal X keep their order, points without X go to the end. 1. Values behind the last point that
// has both stay where they are.
int Sort(const Bound& bound, CTCall* call) {
  return Run(call, Between(0, 1), [&](Arguments& args) {
    VeData& y = Y(bound, args);
    VeData& x = X(bound);
    const bool ascending = args.Count() == 0 || (args.Int(0) & 1) != 0;
    std::vector<double> keys = XValues(bound);
    std::vector<unsigned> order(keys.size());
    std::iota(order.begin(), order.end(), 0u);
    const std::size_t missing =
        kernel::PartitionMissing<double>(std::span(keys), std::span(order), false);
    const std::size_t count = keys.size() - missing;
    kernel::SortWithIndices<double>(std::span(keys).first(count), std::span(order).first(count),
                                    ascending);
    if (&x != &y) Permute(bound.x, kTypeDouble, order);
    Permute(bound.y.binding, bound.y.vector.GetInternalDataTypeID(), order);
    x.OnChange(0, x.GetSize());
    y.OnChange(0, y.GetSize());
    args.Return(1);
  });
}

// SetXBounds(double low, double high): masks the points whose X is not from low to high, and no
// others; how many are left.
int SetXBounds(const Bound& bound, CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    VeData& y = Y(bound, args);
    X(bound);
    const double low = args.Double(0), high = args.Double(1);
    const std::vector<double> x = XValues(bound);
    int left = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
      const bool is_inside = !kernel::IsMissing(x[i]) && x[i] >= low && x[i] <= high;
      y.SetMasked(static_cast<std::int64_t>(i), !is_inside);
      left += is_inside;
    }
    y.OnChange(0, y.GetSize());
    args.Return(left);
  });
}

// ConstructInit(vector x, vector y): the curve gets data of its own with these X and Y values; 1.
int ConstructInit(const Bound& bound, CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    dataset::CheckRow(bound.y, args);
    DataBinding x(kTypeDouble), y(bound.y.vector.GetInternalDataTypeID());
    dataset::AttachNew(x, kTypeDouble, RequiredVector(args, 0));
    dataset::AttachNew(y, bound.y.vector.GetInternalDataTypeID(), RequiredVector(args, 1));
    bound.x = x;
    bound.y.binding = y;
    args.Return(1);
  });
}

}  // namespace vela::curve
