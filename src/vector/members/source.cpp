// What a vector's elements stand for: their X values, and the data that they come from.
#include <algorithm>
#include <vector>

#include "frame/container/container_arguments.h"
#include "kernel/missing.h"
#include "vector/data_binding.h"
#include "vector/vector_base.h"

using vela::Layer;
using vela::LayerValues;
using vela::member::Arguments;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::NoArguments;
using vela::member::Run;

namespace {

// The X values of the first elements, as many as there are of both.
std::vector<double> XValues(VeData& x, std::size_t elements) {
  const auto rows = static_cast<std::size_t>(x.GetSize());
  std::vector<double> values(std::min(rows, elements));
  vela::DataBinding binding(kTypeDouble);
  binding.Attach(&x);
  binding.Read(0, vela::ElementSpan(std::span(values)));
  return values;
}

bool IsInside(double value, double low, double high) {
  return !vela::kernel::IsMissing(value) && value >= low && value <= high;
}

}  // namespace

// HasX(): 1 when there are X values, else 0.
int TCAllVectorNonTemplBase::HasX(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    Row(args);
    args.Return(XData() != nullptr ? 1 : 0);
  });
}

// Only a curve has a place for X values.
int TCAllVectorNonTemplBase::AttachX(CTCall*) { return status::kUnsupported; }

// CopyX(vector& x): x becomes the X values; 0, or -1 with x as it was when there are none.
int TCAllVectorNonTemplBase::CopyX(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const std::size_t size = Addressed(args).Size();
    const Layer target = vela::RequiredVector(args, 0);
    if (XData() == nullptr) return args.Return(-1);
    const std::vector<double> x = XValues(*XData(), size);
    vela::StoreResult(target, vela::ConstElementSpan(std::span<const double>(x)));
    args.Return(0);
  });
}

// GetRectPoints(double x1, double x2, double y1, double y2, vector<uint>& points): points becomes
// the positions of the elements from y1 to y2 whose X is from x1 to x2; how many. An element's
// position is its X where there are no X values.
int TCAllVectorNonTemplBase::GetRectPoints(CTCall* call) {
  return Run(call, Exactly(5), [&](Arguments& args) {
    const Layer row = AddressedNumbers(args);
    const Layer target = vela::RequiredVector(args, 4);
    if (!vela::IsReal(row)) Fail(status::kUnsupported);
    const double low_x = args.Double(0), high_x = args.Double(1);
    const double low_y = args.Double(2), high_y = args.Double(3);
    const bool has_x = XData() != nullptr;
    const std::vector<double> x = has_x ? XValues(*XData(), row.Size()) : std::vector<double>();
    std::vector<unsigned> found;
    {
      const LayerValues<double> y(row);
      const std::size_t points = has_x ? x.size() : y.Span().size();
      for (std::size_t i = row.FirstOfData(); i < points; ++i) {
        const double at = has_x ? x[i] : static_cast<double>(i);
        if (!IsInside(at, low_x, high_x) || !IsInside(y.Span()[i], low_y, high_y)) continue;
        found.push_back(static_cast<unsigned>(i));
      }
    }
    vela::StoreResult(target, vela::ConstElementSpan(std::span<const unsigned>(found)));
    args.Return(static_cast<int>(found.size()));
  });
}

// Update(): tells whoever shows the elements that they changed; 0.
int TCAllVectorNonTemplBase::Update(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    AnnounceChange(Row(args));
    args.Return(0);
  });
}

// UpdateRowColRanges(): 0. What a data set is attached to is looked at in every call, so that there
// is nothing to bring up to date; a plain vector has no such ranges.
int TCAllVectorNonTemplBase::UpdateRowColRanges(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    if (SourceOf(Row(args)) == nullptr) Fail(status::kUnsupported);
    args.Return(0);
  });
}

// GetSourceRange(string& range): the host's data and its rows, counted from 1,
// "[book]column[1:10]"; empty for a vector of its own. 0.
int TCAllVectorNonTemplBase::GetSourceRange(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const Layer row = Addressed(args);
    const VeSourceData* const source = SourceOf(row.number);
    CStringUTF8 text;
    if (source != nullptr) {
      text.Format("%s[%d:%d]", source->GetName().c_str(), row.LowerBound() + 1,
                  static_cast<int>(row.Size()));
    }
    args.Set(0, text.c_str());
    args.Return(0);
  });
}

// CopySourceDataRange(vector source): notes where the elements come from: what the source has
// noted, or its own data; 0. For the source's own note nothing changes.
int TCAllVectorNonTemplBase::CopySourceDataRange(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    Row(args);
    const Layer source = vela::RequiredVector(args, 0);
    auto* const vector = dynamic_cast<TCAllVectorNonTemplBase*>(source.container);
    if (vector == nullptr) Fail(status::kBadArguments);
    if (vector != this) {
      source_range_ =
          vector->source_range_
              ? std::make_unique<VectorSourceDataRangeHolder>(*vector->source_range_)
              : std::make_unique<VectorSourceDataRangeHolder>(VectorSourceDataRangeHolder{
                    vector, vector->GetCreationID(), source.number,
                    static_cast<int>(source.FirstOfData()), static_cast<int>(source.Size()) - 1});
    }
    args.Return(0);
  });
}

// GetSourceDataRange(int& lower, int& upper): the first and last position of what
// CopySourceDataRange noted; 1, or 0 with both -1 when nothing was noted and when the source is
// gone or has become shorter.
int TCAllVectorNonTemplBase::GetSourceDataRange(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    Row(args);
    if (source_range_ && !source_range_->IsValid()) source_range_.reset();
    args.Set(0, source_range_ ? source_range_->lower : -1);
    args.Set(1, source_range_ ? source_range_->upper : -1);
    args.Return(source_range_ ? 1 : 0);
  });
}
