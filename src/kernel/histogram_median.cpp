#include "kernel/histogram_median.h"

#include <algorithm>
#include <concepts>

#include "kernel/dispatch.h"

#ifndef VELA_KERNEL_HISTOGRAM_MEDIAN_JOB
#define VELA_KERNEL_HISTOGRAM_MEDIAN_JOB
namespace vela::kernel {
namespace {

// One band of a matrix, some of its columns.
struct HistogramJob {
  const std::uint8_t* const* rows;
  std::size_t column, count, cols, side;
  std::uint8_t flip;  // elements are in the order of element ^ flip
  std::int16_t* histograms;
  MedianPlace place;
  std::uint8_t* low;  // results, of count rows of out_stride; high only where a mean is asked
  std::size_t out_stride;
};

constexpr std::size_t kBins = 16;
// Counts of a column: coarse ones, of elements up to the end of each sixteenth of all values, and
// behind them fine ones, of those of each sixteenth up to each of its values.
constexpr std::size_t kCounts = kBins + kBins * kBins;
// Columns that are worked on at once, besides those that windows add.
constexpr std::size_t kBlockColumns = 768;

}  // namespace
}  // namespace vela::kernel
#endif

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/histogram_median.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/unroll-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using CountTag = hn::CappedTag<std::int16_t, kBins>;
using CountVec = hn::Vec<CountTag>;
constexpr std::size_t kCountLanes = hn::MaxLanes(CountTag());
constexpr std::size_t kParts = kBins / kCountLanes;

// Sixteen counts.
struct Counts {
  CountVec part[kParts];

  static HWY_INLINE Counts Load(const std::int16_t* from) {
    Counts counts;
    Unroll<kParts>([&](auto p) VELA_KERNEL_UNROLLED {
      counts.part[p] = hn::LoadU(CountTag(), from + p * kCountLanes);
    });
    return counts;
  }
  HWY_INLINE void Store(std::int16_t* to) const {
    Unroll<kParts>([&](auto p) VELA_KERNEL_UNROLLED {
      hn::StoreU(part[p], CountTag(), to + p * kCountLanes);
    });
  }
  HWY_INLINE void Add(const std::int16_t* counts) {
    Unroll<kParts>([&](auto p) VELA_KERNEL_UNROLLED {
      part[p] = hn::Add(part[p], hn::LoadU(CountTag(), counts + p * kCountLanes));
    });
  }
  HWY_INLINE void Subtract(const std::int16_t* counts) {
    Unroll<kParts>([&](auto p) VELA_KERNEL_UNROLLED {
      part[p] = hn::Sub(part[p], hn::LoadU(CountTag(), counts + p * kCountLanes));
    });
  }
  // How many of the counts, which ascend, are below n.
  HWY_INLINE std::size_t CountBelow(std::int16_t n) const {
    std::size_t count = 0;
    Unroll<kParts>([&](auto p) VELA_KERNEL_UNROLLED {
      count += hn::CountTrue(CountTag(), hn::Lt(part[p], hn::Set(CountTag(), n)));
    });
    return count;
  }
};

// counts[k] += by for the bins from `bin` on.
HWY_INLINE void Change(std::int16_t* counts, std::size_t bin, std::int16_t by) {
  Unroll<kParts>([&](auto p) VELA_KERNEL_UNROLLED {
    const CountTag d;
    const auto bins = hn::Iota(d, static_cast<std::int16_t>(p * kCountLanes));
    const auto before = hn::Set(d, static_cast<std::int16_t>(static_cast<std::int16_t>(bin) - 1));
    const auto above = hn::VecFromMask(d, hn::Gt(bins, before));
    std::int16_t* const at = counts + p * kCountLanes;
    hn::StoreU(hn::Add(hn::LoadU(d, at), hn::And(above, hn::Set(d, by))), d, at);
  });
}

class HistogramWalk {
 public:
  explicit HistogramWalk(const HistogramJob& job) : job_(job), width_(job.cols + job.side - 1) {}

  void Run(std::uint8_t* high, std::size_t high_stride) {
    std::fill_n(job_.histograms, width_ * kCounts, 0);
    for (std::size_t i = 0; i + 1 < job_.side; ++i) ChangeRow(job_.rows[i], 1);
    for (std::size_t r = 0; r < job_.count; ++r) {
      ChangeRow(job_.rows[r + job_.side - 1], 1);
      FilterRow(job_.low + r * job_.out_stride, high + r * high_stride);
      ChangeRow(job_.rows[r], -1);
    }
  }

 private:
  std::int16_t* Coarse(std::size_t c) const { return job_.histograms + c * kCounts; }
  std::int16_t* Fine(std::size_t c, std::size_t bin) const {
    return Coarse(c) + kBins + bin * kBins;
  }

  void ChangeRow(const std::uint8_t* row, std::int16_t by) {
    for (std::size_t c = 0; c < width_; ++c) {
      const std::size_t value = row[job_.column + c] ^ job_.flip;
      Change(Coarse(c), value / kBins, by);
      Change(Fine(c, value / kBins), value % kBins, by);
    }
  }

  void FilterRow(std::uint8_t* low, std::uint8_t* high) {
    std::fill_n(fine_at_, kBins, kNowhere);
    Counts coarse = Counts::Load(Coarse(0));
    for (std::size_t c = 1; c < job_.side; ++c) coarse.Add(Coarse(c));
    const auto place = static_cast<std::int16_t>(job_.place.low);
    for (std::size_t c = 0;; ++c) {
      coarse.Store(up_to_ + 1);
      low[c] = Select(coarse, place, c);
      if (job_.place.is_mean) high[c] = Select(coarse, static_cast<std::int16_t>(place + 1), c);
      if (c + 1 == job_.cols) break;
      coarse.Subtract(Coarse(c));
      coarse.Add(Coarse(c + job_.side));
    }
  }

  HWY_INLINE std::uint8_t Select(const Counts& coarse, std::int16_t n, std::size_t c) {
    // Element n, counted from 0, is where more than n are counted.
    const std::size_t bin = coarse.CountBelow(static_cast<std::int16_t>(n + 1));
    const auto left = static_cast<std::int16_t>(n + 1 - up_to_[bin]);
    const Counts fine = FineCounts(bin, c);
    return static_cast<std::uint8_t>((bin * kBins + fine.CountBelow(left)) ^ job_.flip);
  }

  // The fine counts of a window are brought up to date when they are needed.
  HWY_INLINE Counts FineCounts(std::size_t bin, std::size_t c) {
    std::int16_t* const kept = fine_ + bin * kBins;
    Counts counts;
    if (fine_at_[bin] == kNowhere || 2 * (c - fine_at_[bin]) >= job_.side) {
      counts = Counts::Load(Fine(c, bin));
      for (std::size_t j = 1; j < job_.side; ++j) counts.Add(Fine(c + j, bin));
    } else {
      counts = Counts::Load(kept);
      for (std::size_t at = fine_at_[bin]; at < c; ++at) {
        counts.Subtract(Fine(at, bin));
        counts.Add(Fine(at + job_.side, bin));
      }
    }
    counts.Store(kept);
    fine_at_[bin] = c;
    return counts;
  }

  static constexpr std::size_t kNowhere = std::size_t(-1);

  const HistogramJob& job_;
  std::size_t width_;
  std::int16_t up_to_[1 + kBins] = {};     // of the window, a zero in front
  std::int16_t fine_[kBins * kBins] = {};  // of the window, where it stood then
  std::size_t fine_at_[kBins] = {};
};

void WalkHistograms(const HistogramJob& job, std::uint8_t* high, std::size_t high_stride) {
  HistogramWalk(job).Run(high, high_stride);
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

template <class T>
requires(sizeof(T) == 1) HistogramMedian<T>::HistogramMedian(std::size_t side, std::size_t rows)
    : side_(side),
      histograms_((kBlockColumns + side - 1) * kCounts),
      rows_(rows + side - 1),
      high_(side % 2 == 0 ? rows * kBlockColumns : 0) {}

template <class T>
requires(sizeof(T) == 1) void HistogramMedian<T>::Filter(const T* const* rows, std::size_t count,
                                                         std::size_t cols, T* out) {
  for (std::size_t i = 0; i < count + side_ - 1; ++i) {
    rows_[i] = reinterpret_cast<const std::uint8_t*>(rows[i]);
  }
  const MedianPlace place(side_ * side_);
  for (std::size_t column = 0; column < cols; column += kBlockColumns) {
    const std::size_t block = std::min(kBlockColumns, cols - column);
    const HistogramJob job{.rows = rows_.data(),
                           .column = column,
                           .count = count,
                           .cols = block,
                           .side = side_,
                           .flip = std::signed_integral<T> ? std::uint8_t{0x80} : std::uint8_t{0},
                           .histograms = histograms_.data(),
                           .place = place,
                           .low = reinterpret_cast<std::uint8_t*>(out) + column,
                           .out_stride = cols};
    VELA_KERNEL_DISPATCH(WalkHistograms)(job, high_.data(), kBlockColumns);
    if (!place.is_mean) continue;
    for (std::size_t r = 0; r < count; ++r) {
      for (std::size_t c = 0; c < block; ++c) {
        T& low = out[r * cols + column + c];
        low = MedianPlace::Mean(low, static_cast<T>(high_[r * kBlockColumns + c]));
      }
    }
  }
}

template class HistogramMedian<char>;
template class HistogramMedian<unsigned char>;

}  // namespace vela::kernel
#endif
