// Members that fill a vector with generated values, and the cyclic shift.
#pragma once

#include <array>
#include <cmath>
#include <optional>

#include "kernel/pattern.h"
#include "kernel/random.h"
#include "kernel/rotate.h"
#include "kernel/sequence.h"
#include "vector/random_stream.h"
#include "vector/typed_vector.h"

namespace vela {

// Fills elements with what fill writes into a run of doubles (simple types: of the type itself).
// fill is called with consecutive runs.
template <class T, class Fill>
void FillBlocks(std::span<T> elements, Fill&& fill) {
  if constexpr (SimpleElement<T>) {
    fill(elements);
  } else {
    std::array<double, 512> block;
    for (std::size_t begin = 0; begin < elements.size(); begin += block.size()) {
      const std::size_t count = std::min(block.size(), elements.size() - begin);
      fill(std::span<double>(block).first(count));
      for (std::size_t i = 0; i < count; ++i) {
        elements[begin + i] = ConvertValue<T>(block[i]);
      }
    }
  }
}

// The size that a generated run of count values needs: exactly count for a negative offset, else
// at least offset + count.
inline std::int64_t GeneratedSize(std::size_t size, std::int64_t count, int offset) {
  if (offset < 0) return count;
  return std::max(static_cast<std::int64_t>(size), count + offset);
}

}  // namespace vela

template <class T>
int TCAllVectorsBase<T>::Data(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(3), [&](Arguments& args) {
    this->RefuseOneRowOfMany(args, status::kNotOnRow);
    const int row = this->Row(args);
    const double from = args.Double(0);
    const double to = args.Double(1);
    const double increment = args.Double(2);
    const double steps = (to - from) / increment;
    args.Return(0);
    if (increment == 0 || std::isnan(steps)) return;
    const std::optional<std::int32_t> count = vela::kernel::SequenceCount(from, to, increment);
    if (!count) Fail(status::kCannotResize);
    Check(this->RawResize(row, *count));
    if (*count > 0) {
      const double last = vela::kernel::SequenceLast(from, to, increment, *count);
      RowAccess<T> elements(*this, row);
      if constexpr (vela::SimpleElement<T>) {
        vela::kernel::FillSequence<T>(elements.Elements(), from, increment, last);
      } else {
        std::vector<double> values(static_cast<std::size_t>(*count));
        vela::kernel::FillSequence<double>(values, from, increment, last);
        vela::ConvertRun<T>(vela::ElementRun(std::span<const double>(values)), elements.Elements());
      }
      Check(elements.Commit());
      if (last == kMissingValue) Check(this->RawResize(row, *count - 1));
    }
    args.Return(steps >= 0 ? 1 : 0);
  });
}

template <class T>
int TCAllVectorsBase<T>::Pattern(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(7), [&](Arguments& args) {
    this->RefuseOneRowOfMany(args, status::kNotOnRow);
    const int row = this->Row(args);
    const vela::kernel::Pattern pattern{args.Double(0), args.Double(2), args.Int(3), args.Int(4)};
    const double to = args.Double(1);
    const int offset = args.Int(5);
    const int count = args.Int(6);
    args.Return(0);
    if (pattern.repeat_each < 1 || pattern.repeat_total < 1) return;
    if (pattern.step == 0 || std::isnan((to - pattern.from) / pattern.step)) return;
    const std::optional<std::int32_t> size = vela::kernel::PatternSize(pattern, to);
    if (!size) Fail(status::kCannotResize);
    const int wanted = count >= 0 ? count : *size;
    Check(this->RawResize(row, vela::GeneratedSize(this->RowSize(row), wanted, offset)));
    RowAccess<T> elements(*this, row);
    const std::span<T> target =
        elements.Elements().subspan(static_cast<std::size_t>(std::max(offset, 0)),
                                    static_cast<std::size_t>(std::min(wanted, *size)));
    const auto pattern_size = static_cast<std::uint32_t>(*size);
    if constexpr (vela::SimpleElement<T>) {
      vela::kernel::FillPattern<T>(target, pattern, pattern_size);
    } else {
      std::vector<double> values(target.size());
      const std::size_t written = vela::kernel::FillPattern<double>(values, pattern, pattern_size);
      vela::ConvertRun<T>(vela::ElementRun(std::span<const double>(values).first(written)), target);
    }
    Check(elements.Commit());
    args.Return(1);
  });
}

template <class T>
int TCAllVectorsBase<T>::Uniform(CTCall* call) {
  using namespace vela::member;
  if (call != nullptr && call->GetNumOfArguments() == 2 && call->GetTypeID(1) == kTypeInt) {
    return FillSeeded(
        call, [](vela::kernel::RandomSource& random, auto values) { random.FillUniform(values); });
  }
  return Run(call, Exactly(3), [&](Arguments& args) {
    this->RefuseOneRowOfMany(args, status::kNotOnRow);
    const int row = this->Row(args);
    const int count = args.Int(0);
    const vela::VectorArgument source = vela::RequiredVector(args, 1);
    const int offset = args.Int(2);
    args.Return(0);
    if (count < 0) return;
    // Read before the resize, which may be of the same vector.
    const vela::RowElements run(source);
    const vela::ElementsAs<T> converted(run.Run());
    std::vector<T> own_values;
    std::span<const T> values = converted.Span();
    if (source.vector == this && source.row == row) {
      own_values.assign(values.begin(), values.end());
      values = own_values;
    }
    Check(this->RawResize(row, vela::GeneratedSize(this->RowSize(row), count, offset)));
    if (values.empty() && count > 0) return;
    RowAccess<T> elements(*this, row);
    std::span<T> target = elements.Elements().subspan(static_cast<std::size_t>(std::max(offset, 0)),
                                                      static_cast<std::size_t>(count));
    std::array<std::uint32_t, 1024> indices;
    while (!target.empty()) {
      const std::span<std::uint32_t> block =
          std::span(indices).first(std::min(indices.size(), target.size()));
      vela::RandomStream().FillIndices(block, static_cast<std::uint32_t>(values.size()));
      for (std::size_t i = 0; i < block.size(); ++i) target[i] = values[block[i]];
      target = target.subspan(block.size());
    }
    Check(elements.Commit());
    args.Return(1);
  });
}

template <class T>
int TCAllVectorsBase<T>::Normal(CTCall* call) {
  return FillSeeded(
      call, [](vela::kernel::RandomSource& random, auto values) { random.FillNormal(values); });
}

template <class T>
template <class Fill>
int TCAllVectorsBase<T>::FillSeeded(CTCall* call, Fill&& fill) {
  using namespace vela::member;
  return Run(call, Exactly(2), [&](Arguments& args) {
    this->RefuseOneRowOfMany(args, status::kNotOnRow);
    const int row = this->Row(args);
    const int count = args.Int(0);
    const int seed = args.Int(1);
    if (count > 0) {
      Check(this->RawResize(row, count));
      vela::RandomStream().Seed(seed);
      RowAccess<T> elements(*this, row);
      vela::FillBlocks(elements.Elements(),
                       [&](auto values) { fill(vela::RandomStream(), values); });
      Check(elements.Commit());
    }
    args.Return(1);
  });
}

template <class T>
int TCAllVectorsBase<T>::Wrap(CTCall* call) {
  using namespace vela::member;
  return Run(call, Between(0, 1), [&](Arguments& args) {
    if (args.Count() == 0) Fail(status::kFailed);
    this->RefuseOneRowOfMany(args, status::kNotOnOneRow);
    RowAccess<T> elements(*this, this->Row(args));
    vela::kernel::Rotate(elements.Elements(), args.Int(0));
    Check(elements.Commit());
    args.Return(1);
  });
}
