#include "kernel/morphology.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <span>
#include <vector>

#include "kernel/dispatch.h"
#include "kernel/element_runs.h"
#include "kernel/missing.h"
#include "kernel/padded_bands.h"

#ifndef VELA_KERNEL_MORPHOLOGY_JOB
#define VELA_KERNEL_MORPHOLOGY_JOB
namespace vela::kernel {
namespace {

// One band of a matrix and the memory for it. Everything without a value is the extremum's neutral
// number.
template <class T>
struct MorphologyJob {
  const ElementRuns* element;
  T* const* rows;  // extended; the box of the window of (r, c) has its corner at rows[r][column +
                   // c] (for a rectangle: of the runs of its width from there on)
  std::size_t column;
  std::size_t count, width;
  T* out;
  std::size_t out_stride;
  T none;  // stands for the neutral number in results

  T* scratch;                     // for kBlock columns of a window, or for one run
  std::vector<T*>* planes;        // for other elements: rows of each length of run
  std::vector<const T*>* places;  // one for each run
};

// Columns that are worked on at once.
constexpr std::size_t kRunColumns = 256;

}  // namespace
}  // namespace vela::kernel
#endif

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/morphology.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/unroll-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

template <class T, bool kMost>
struct Extremum {
  static constexpr hn::ScalableTag<T> kTag{};
  using V = hn::Vec<hn::ScalableTag<T>>;
  static constexpr std::size_t kLanes = hn::MaxLanes(hn::ScalableTag<T>());
  static constexpr T kNeutral =
      kMost ? -std::numeric_limits<T>::infinity() : std::numeric_limits<T>::infinity();
  // Vectors of a stripe of columns.
  static constexpr std::size_t kVectors = 4;

  static HWY_INLINE V Of(V a, V b) {
    if constexpr (kMost) return hn::Max(a, b);
    return hn::Min(a, b);
  }
  static HWY_INLINE V Load(const T* from) { return hn::LoadU(hn::ScalableTag<T>(), from); }
  static HWY_INLINE void Store(V v, T* to) { hn::StoreU(v, hn::ScalableTag<T>(), to); }

  // Copies a row with missing values and NaNs made neutral; whether it had a neutral number before.
  static bool Clean(const T* HWY_RESTRICT row, std::size_t n, T* HWY_RESTRICT to) {
    const hn::ScalableTag<T> d;
    const V neutral = hn::Set(d, kNeutral);
    auto found = hn::MaskFromVec(hn::Zero(d));
    const auto clean = [&](V v) HWY_ATTR {
      found = hn::Or(found, hn::Eq(v, neutral));
      v = hn::IfThenElse(hn::IsNaN(v), neutral, v);
      if constexpr (sizeof(T) == 8) {
        v = hn::IfThenElse(hn::Eq(v, hn::Set(d, kMissing)), neutral, v);
      }
      return v;
    };
    std::size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) Store(clean(Load(row + i)), to + i);
    if (i < n) {
      HWY_ALIGN T last[kLanes] = {};
      std::memcpy(last, row + i, (n - i) * sizeof(T));
      hn::Store(clean(hn::Load(d, last)), d, last);
      std::memcpy(to + i, last, (n - i) * sizeof(T));
    }
    return !hn::AllFalse(d, found);
  }

  // to[c] becomes the extremum of from[c] and from[c + delta]; n is rounded up to whole vectors.
  // The two may be one.
  static HWY_INLINE void Pair(const T* from, std::size_t delta, std::size_t n, T* to) {
    for (std::size_t c = 0; c < n; c += kLanes) {
      Store(Of(Load(from + c), Load(from + c + delta)), to + c);
    }
  }

  // to[c], the extremum of from[c] ... for `have` elements, becomes that for `want`; n as above.
  static void Extend(const T* from, std::size_t have, std::size_t want, std::size_t n, T* to) {
    if (have == want && from != to) std::memcpy(to, from, n * sizeof(T));
    for (; have < want; from = to) {
      const std::size_t next = std::min(2 * have, want);
      Pair(from, next - have, n + want - next, to);
      have = next;
    }
  }

  // vector[k] becomes the extremum of vector[k] ... vector[k + window - 1] for k < count, where
  // vectors from `end` on are neutral: each window is a tail of one group of so many vectors and
  // a head of the next, so its size does not matter. `at` gives the place of a vector, `put` stores
  // a result.
  template <std::size_t kStripe, class At, class Put>
  static HWY_INLINE void Slide(std::size_t window, std::size_t count, std::size_t end, T* tails,
                               At at, Put put) {
    const hn::ScalableTag<T> d;
    V head[kStripe];
    for (std::size_t begin = 0; begin < count; begin += window) {
      Unroll<kStripe>([&](auto v) VELA_KERNEL_UNROLLED { head[v] = hn::Set(d, kNeutral); });
      for (std::size_t k = std::min(begin + window, end); k-- > begin;) {
        Unroll<kStripe>([&](auto v) VELA_KERNEL_UNROLLED {
          head[v] = Of(head[v], Load(at(k) + v * kLanes));
          Store(head[v], tails + ((k - begin) * kStripe + v) * kLanes);
        });
      }
      Unroll<kStripe>([&](auto v) VELA_KERNEL_UNROLLED { head[v] = hn::Set(d, kNeutral); });
      for (std::size_t k = begin; k < std::min(begin + window, count); ++k) {
        const std::size_t entering = k + window - 1;
        if (k > begin && entering < end) {
          Unroll<kStripe>([&](auto v) VELA_KERNEL_UNROLLED {
            head[v] = Of(head[v], Load(at(entering) + v * kLanes));
          });
        }
        V result[kStripe];
        Unroll<kStripe>([&](auto v) VELA_KERNEL_UNROLLED {
          result[v] = Of(head[v], Load(tails + ((k - begin) * kStripe + v) * kLanes));
        });
        put(k, result);
      }
    }
  }

  // row[c] becomes the extremum of row[c] ... row[c + length - 1], for c < n.
  static void Runs(T* row, std::size_t length, std::size_t n, T* tails) {
    if (length == 3) {
      for (std::size_t c = 0; c < n; c += kLanes) {
        Store(Of(Of(Load(row + c), Load(row + c + 1)), Load(row + c + 2)), row + c);
      }
      return;
    }
    const std::size_t small = std::min(length, kLanes);
    Extend(row, 1, small, n + length - small, row);
    const std::size_t windows = length / small;
    if (windows > 1) {
      const std::size_t end = (n + length - 1 + kLanes - 1) / kLanes;
      Slide<1>(
          windows, std::min(end, (n + length - windows * small) / kLanes + 1), end, tails,
          [&](std::size_t k) { return row + k * kLanes; },
          [&](std::size_t k, V(&result)[1]) HWY_ATTR { Store(result[0], row + k * kLanes); });
    }
    const std::size_t rest = length - windows * small;
    if (length > 1 && rest > 0) Pair(row, rest, n, row);
  }

  template <std::size_t kStripe>
  static HWY_INLINE void StoreResults(const MorphologyJob<T>& job, V (&result)[kStripe],
                                      std::size_t r, std::size_t c) {
    const hn::ScalableTag<T> d;
    T* const to = job.out + r * job.out_stride + c;
    Unroll<kStripe>([&](auto v) VELA_KERNEL_UNROLLED {
      const auto is_none = hn::Eq(result[v], hn::Set(d, kNeutral));
      result[v] = hn::IfThenElse(is_none, hn::Set(d, job.none), result[v]);
    });
    if (c + kStripe * kLanes <= job.width) {
      Unroll<kStripe>([&](auto v) VELA_KERNEL_UNROLLED { Store(result[v], to + v * kLanes); });
    } else {
      HWY_ALIGN T last[kStripe * kLanes];
      Unroll<kStripe>([&](auto v) VELA_KERNEL_UNROLLED { Store(result[v], last + v * kLanes); });
      std::memcpy(to, last, (job.width - c) * sizeof(T));
    }
  }

  // Windows are columns of runs.
  static void Rectangle(const MorphologyJob<T>& job) {
    const ElementRuns& element = *job.element;
    const std::size_t height = element.height, all = job.count + height - 1;
    for (std::size_t c = 0; c < job.width; c += kVectors * kLanes) {
      const auto at = [&](std::size_t k) { return job.rows[k] + job.column + c; };
      const auto put = [&](std::size_t k, V(&result)[kVectors])
                           HWY_ATTR { StoreResults(job, result, k, c); };
      constexpr std::size_t kFewRows = 4;
      if (height > kFewRows) {
        Slide<kVectors>(height, job.count, all, job.scratch, at, put);
      } else {
        SlideFew(height, job.count, at, put);
      }
    }
  }

  // As Slide for windows of few rows: two that follow each other share all but one.
  template <class At, class Put>
  static HWY_INLINE void SlideFew(std::size_t window, std::size_t count, At at, Put put) {
    std::size_t k = 0;
    V first[kVectors], second[kVectors];
    for (; k + 2 <= count && window > 1; k += 2) {
      Unroll<kVectors>([&](auto v) VELA_KERNEL_UNROLLED {
        V shared = Load(at(k + 1) + v * kLanes);
        for (std::size_t i = 2; i < window; ++i) shared = Of(shared, Load(at(k + i) + v * kLanes));
        first[v] = Of(Load(at(k) + v * kLanes), shared);
        second[v] = Of(shared, Load(at(k + window) + v * kLanes));
      });
      put(k, first);
      put(k + 1, second);
    }
    for (; k < count; ++k) {
      Unroll<kVectors>([&](auto v) VELA_KERNEL_UNROLLED {
        first[v] = Load(at(k) + v * kLanes);
        for (std::size_t i = 1; i < window; ++i)
          first[v] = Of(first[v], Load(at(k + i) + v * kLanes));
      });
      put(k, first);
    }
  }

  // The runs of each length are found once for each row, and a window is one of them for each of
  // the element's.
  static void Other(const MorphologyJob<T>& job) {
    const ElementRuns& element = *job.element;
    const std::size_t all = job.count + element.height - 1;
    const std::vector<std::size_t>& lengths = element.lengths;
    for (std::size_t begin = 0; begin < job.width; begin += kRunColumns) {
      const std::size_t n = std::min(kRunColumns, job.width - begin);
      for (std::size_t i = 0; i < all; ++i) {
        const T* from = job.rows[i] + job.column + begin;
        std::size_t have = 1;
        for (std::size_t l = 0; l < lengths.size(); ++l) {
          T* const to = (*job.planes)[l * all + i];
          Extend(from, have, lengths[l], n + element.width - lengths[l], to);
          from = to;
          have = lengths[l];
        }
      }
      for (std::size_t r = 0; r < job.count; ++r) OtherRow(job, r, begin, n);
    }
  }

  static void OtherRow(const MorphologyJob<T>& job, std::size_t r, std::size_t begin,
                       std::size_t n) {
    const ElementRuns& element = *job.element;
    const std::size_t all = job.count + element.height - 1;
    std::vector<const T*>& places = *job.places;
    for (std::size_t k = 0; k < places.size(); ++k) {
      const ElementRuns::Run& run = element.runs[k];
      const auto length =
          std::lower_bound(element.lengths.begin(), element.lengths.end(), run.length) -
          element.lengths.begin();
      places[k] = (*job.planes)[static_cast<std::size_t>(length) * all + r + run.row] + run.col;
    }
    for (std::size_t c = 0; c < n; c += kVectors * kLanes) {
      V result[kVectors];
      Unroll<kVectors>([&](auto v)
                           VELA_KERNEL_UNROLLED { result[v] = Load(places[0] + c + v * kLanes); });
      for (std::size_t k = 1; k < places.size(); ++k) {
        Unroll<kVectors>([&](auto v) VELA_KERNEL_UNROLLED {
          result[v] = Of(result[v], Load(places[k] + c + v * kLanes));
        });
      }
      StoreResults(job, result, r, begin + c);
    }
  }
};

template <class T, bool kMost>
bool CleanRow(const T* row, std::size_t n, T* to) {
  return Extremum<T, kMost>::Clean(row, n, to);
}

template <class T, bool kMost>
void RunsOfRow(T* row, std::size_t length, std::size_t n, T* scratch) {
  Extremum<T, kMost>::Runs(row, length, n, scratch);
}

template <class T, bool kMost>
void FilterBand(const MorphologyJob<T>& job) {
  if (job.element->is_rectangle) {
    Extremum<T, kMost>::Rectangle(job);
  } else {
    Extremum<T, kMost>::Other(job);
  }
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {
namespace {

template <class T>
T NoValue() {
  return sizeof(T) == 8 ? static_cast<T>(kMissing) : std::numeric_limits<T>::quiet_NaN();
}

WindowReach ReachOf(const ElementRuns& element) {
  const auto before = [](std::ptrdiff_t first) {
    return static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, -first));
  };
  const auto behind = [](std::ptrdiff_t first, std::size_t size) {
    const std::ptrdiff_t last = first + static_cast<std::ptrdiff_t>(size) - 1;
    return static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, last));
  };
  return {before(element.top), behind(element.top, element.height), before(element.left),
          behind(element.left, element.width), EdgeMode::kZeros};
}

// Rows of a band at least as long as a window is high, and a cache full of others.
template <class T>
std::size_t BandRows(std::size_t cols, std::size_t height) {
  constexpr std::size_t kCacheBytes = std::size_t{1} << 18;
  return std::max({height, std::size_t{16}, kCacheBytes / sizeof(T) / (cols + 1)});
}

template <class T, bool kMost>
class MorphologyFilter {
 public:
  MorphologyFilter(MatrixSpan<T> x, const ElementRuns& element)
      : x_(x),
        element_(element),
        reach_(ReachOf(element)),
        bands_(x, reach_, kNeutral, BandRows<T>(x.cols, element.height)),
        row_(Offset(element.top, reach_.above)),
        column_(Offset(element.left, reach_.left)),
        rows_(bands_.MaxCount() + element.height - 1),
        marks_(bands_.MaxCount() + bands_.Halo(), bands_.Width()),
        found_(new T[CheckedProduct(bands_.MaxCount(), x.cols)]),
        scratch_(CheckedSum(CheckedProduct(element.height, 4 * kMostLanes),
                            CheckedSum(element.width, kMostLanes))),
        plane_rows_(element.is_rectangle ? 0 : CheckedProduct(element.lengths.size(), rows_.size()),
                    CheckedSum(kRunColumns, element.width)),
        planes_(plane_rows_.Rows(), plane_rows_.Rows() + plane_rows_.Count()),
        places_(element.runs.size()) {}

  void Run() {
    std::size_t last_count = 0;
    bool has_fresh_neutral = false;
    const auto clean = [&](const T* from, std::size_t n, T* to) {
      if (VELA_KERNEL_DISPATCH(CleanRow<T, kMost>)(from, n, to)) has_fresh_neutral = true;
    };
    while (bands_.Next(clean)) {
      marks_.Advance(last_count);
      last_count = bands_.Count();
      Prepare(has_fresh_neutral);
      T* const out = x_.data + bands_.First() * x_.cols;
      if (!has_neutral_) {
        Filter(bands_.Rows(), out, NoValue<T>());
        continue;
      }
      Filter(marks_.Rows(), found_.get(), kNeutral);
      Filter(bands_.Rows(), out, kNeutral);
      for (std::size_t i = 0; i < last_count * x_.cols; ++i) {
        if (found_[i] == kNeutral) out[i] = NoValue<T>();
      }
    }
  }

 private:
  static constexpr T kNeutral =
      kMost ? -std::numeric_limits<T>::infinity() : std::numeric_limits<T>::infinity();
  static constexpr std::size_t kMostLanes = 64 / sizeof(T);

  static std::size_t Offset(std::ptrdiff_t first, std::size_t before) {
    return static_cast<std::size_t>(first + static_cast<std::ptrdiff_t>(before));
  }

  // Makes runs and marks of the fresh rows. An element with a value may be the neutral number too:
  // from the first of those on, marks of all that have values, which go through the filter as the
  // elements do, tell the windows without any.
  void Prepare(bool has_fresh_neutral) {
    for (std::size_t i = 0; i < bands_.Fresh() && has_fresh_neutral && !has_neutral_; ++i) {
      MarkFormer(i);
    }
    has_neutral_ = has_neutral_ || has_fresh_neutral;
    for (std::size_t i = bands_.Fresh(); i < bands_.Count() + bands_.Halo(); ++i) {
      const std::size_t row = bands_.First() + i;
      const bool is_inside = row >= reach_.above && row - reach_.above < x_.rows;
      if (has_neutral_) {
        std::fill_n(marks_.Rows()[i], bands_.Width(), kNeutral);
        if (is_inside) Mark(x_.Row(row - reach_.above), marks_.Rows()[i] + reach_.left);
        MakeRuns(marks_.Rows()[i]);
      }
      if (is_inside) MakeRuns(bands_.Rows()[i]);
    }
  }

  // The row has no neutral number among its values.
  void MarkFormer(std::size_t i) {
    const T* const row = bands_.Rows()[i];
    std::transform(row, row + bands_.Width(), marks_.Rows()[i],
                   [](T value) { return value == kNeutral ? kNeutral : T{0}; });
  }
  static void Mark(std::span<const T> elements, T* marks) {
    std::transform(elements.begin(), elements.end(), marks,
                   [](T value) { return IsMissing(value) || std::isnan(value) ? kNeutral : T{0}; });
  }

  void MakeRuns(T* row) {
    if (!element_.is_rectangle) return;
    VELA_KERNEL_DISPATCH(RunsOfRow<T, kMost>)
    (row + column_, element_.width, x_.cols, scratch_.data());
  }

  void Filter(T* const* rows, T* out, T none) {
    std::copy_n(rows + row_, bands_.Count() + element_.height - 1, rows_.begin());
    const MorphologyJob<T> job{.element = &element_,
                               .rows = rows_.data(),
                               .column = column_,
                               .count = bands_.Count(),
                               .width = x_.cols,
                               .out = out,
                               .out_stride = x_.cols,
                               .none = none,
                               .scratch = scratch_.data(),
                               .planes = &planes_,
                               .places = &places_};
    VELA_KERNEL_DISPATCH(FilterBand<T, kMost>)(job);
  }

  MatrixSpan<T> x_;
  const ElementRuns& element_;
  WindowReach reach_;
  PaddedBands<T> bands_;
  std::size_t row_, column_;  // of the element's box in the extended matrix
  std::vector<T*> rows_;
  RowRing<T> marks_;
  std::unique_ptr<T[]> found_;
  std::vector<T> scratch_;
  RowRing<T> plane_rows_;
  std::vector<T*> planes_;
  std::vector<const T*> places_;
  bool has_neutral_ = false;
};

template <class T, bool kMost>
void FilterMatrix(MatrixSpan<T> x, const StructuringElement& element) {
  if (x.IsEmpty()) return;
  const ElementRuns runs(element, kMost, x.rows, x.cols);
  if (runs.IsEmpty()) {
    std::fill_n(x.data, x.Size(), NoValue<T>());
  } else {
    MorphologyFilter<T, kMost>(x, runs).Run();
  }
}

}  // namespace

template <std::floating_point T>
void Dilate(MatrixSpan<T> x, const StructuringElement& element) {
  FilterMatrix<T, true>(x, element);
}

template <std::floating_point T>
void Erode(MatrixSpan<T> x, const StructuringElement& element) {
  FilterMatrix<T, false>(x, element);
}

template void Dilate(MatrixSpan<float>, const StructuringElement&);
template void Dilate(MatrixSpan<double>, const StructuringElement&);
template void Erode(MatrixSpan<float>, const StructuringElement&);
template void Erode(MatrixSpan<double>, const StructuringElement&);

}  // namespace vela::kernel
#endif
