#include "vector/dataset_members.h"

#include <string>
#include <string_view>
#include <vector>

#include "frame/container/container_arguments.h"

using vela::member::Arguments;
using vela::member::Between;
using vela::member::Check;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::NoArguments;
using vela::member::Run;

namespace vela::dataset {
namespace {

std::int64_t RowArgument(const VeData& data, Arguments& args, unsigned arg) {
  const int row = args.Int(arg);
  if (row < 0 || row >= data.GetSize()) Fail(status::kOutOfRange);
  return row;
}

Layer TextsArgument(Arguments& args, unsigned arg) {
  const Layer texts = RequiredVector(args, arg);
  if (texts.TypeId() != kTypeString) Fail(status::kBadArguments);
  return texts;
}

MSOINDICES ElementOf(const Layer& layer, std::int64_t index) {
  return layer.Indices().WithElement(static_cast<std::int32_t>(index));
}

// Of a name "[book]column".
VeData* FindNamed(std::string_view name) {
  const std::size_t end = name.find(']');
  if (!name.starts_with('[') || end == name.npos) return nullptr;
  const std::string book(name.substr(1, end - 1)), column(name.substr(end + 1));
  return VeDataSources::Get().FindData(book.c_str(), column.c_str());
}

}  // namespace

void CheckRow(const Bound& bound, const Arguments& args) {
  const int row = bound.vector.GetVecArrayIndex(&args.Indices());
  if (row != 0) Fail(row < 0 ? status::kUnresolved : status::kOutOfRange);
}

VeData& Data(const Bound& bound, const Arguments& args) {
  CheckRow(bound, args);
  if (bound.binding.IsStale()) Fail(status::kNoRow);
  if (!bound.binding.IsAttached()) Fail(status::kFailed);
  return *bound.binding.Data();
}

VeData* FindData(Arguments& args, unsigned book, unsigned column) {
  const CStringUTF8 name = args.Text(book);
  VeDataSources& sources = VeDataSources::Get();
  return args.IsText(column) ? sources.FindData(name.c_str(), args.Text(column).c_str())
                             : sources.FindData(name.c_str(), args.Int(column));
}

VeData* DataOf(const Layer& layer) {
  return dynamic_cast<VeData*>(layer.container->SourceOf(layer.number));
}

VeData* SourceArgument(Arguments& args) {
  if (args.Count() == 2) return FindData(args, 0, 1);
  return args.IsText(0) ? FindNamed(args.Text(0).View()) : DataOf(RequiredVector(args, 0));
}

void AttachNew(DataBinding& binding, unsigned type_id, const Layer& elements) {
  const VeRef<VeTempDataset> data =
      VeTempDataset::Create(type_id, static_cast<std::int64_t>(elements.Size()));
  if (!data) Fail(status::kCannotResize);
  binding.Attach(data.Get());
  Check(binding.Store(0, LayerElements(elements).Span()));
}

// Attach(string book, string column), Attach(string book, int column), Attach(string name) with a
// name "[book]column", Attach(vector other) to the column that the other is attached to: 1, or 0,
// with everything as it was, when there is no such column and when its numbers do not all fit the
// element type.
int Attach(const Bound& bound, CTCall* call) {
  return Run(call, Between(1, 2), [&](Arguments& args) {
    CheckRow(bound, args);
    args.Return(bound.binding.Attach(SourceArgument(args)) ? 1 : 0);
  });
}

// Detach(): 1, or 0 when nothing was attached. The host's data stays.
int Detach(const Bound& bound, CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    CheckRow(bound, args);
    args.Return(bound.binding.IsAttached() ? 1 : 0);
    bound.binding.Detach();
  });
}

// SetText(int row, string text): sets a cell from a text, which a column of numbers reads by the
// text-to-number rule; 1.
int SetText(const Bound& bound, CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    VeData& data = Data(bound, args);
    const std::int64_t row = RowArgument(data, args, 0);
    const bool done = data.SetText(row, args.Text(1).c_str());
    if (done) data.OnChange(row, 1);
    args.Return(done ? 1 : 0);
  });
}

// GetText(int row, string& text): the text of a cell; 1, or 0 for a cell without a value.
int GetText(const Bound& bound, CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    VeData& data = Data(bound, args);
    const CStringUTF8 text = data.GetText(RowArgument(data, args, 0));
    args.Set(1, text.c_str());
    args.Return(text.GetLength() > 0 ? 1 : 0);
  });
}

// GetStringArray(StringArray& texts): the texts of all cells; how many.
int GetStringArray(const Bound& bound, CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    VeData& data = Data(bound, args);
    const Layer texts = TextsArgument(args, 0);
    const std::int64_t size = data.GetSize();
    texts.Resize(static_cast<std::size_t>(size), Contents::kDrop);
    for (std::int64_t row = 0; row < size; ++row) {
      const MSOINDICES at = ElementOf(texts, row);
      Check(texts.container->SetString(&at, data.GetText(row).c_str()));
    }
    texts.AnnounceChange();
    args.Return(static_cast<int>(size));
  });
}

// PutStringArray(StringArray texts): the column becomes the texts, as SetText sets them; how many.
int PutStringArray(const Bound& bound, CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    VeData& data = Data(bound, args);
    const Layer texts = TextsArgument(args, 0);
    const auto size = static_cast<std::int64_t>(texts.Size());
    Check(bound.binding.Resize(size));
    CStringUTF8 text;
    for (std::int64_t row = 0; row < size; ++row) {
      const MSOINDICES at = ElementOf(texts, row);
      Check(texts.container->GetString(&at, text));
      data.SetText(row, text.c_str());
    }
    data.OnChange(0, size);
    args.Return(static_cast<int>(size));
  });
}

// GetMask(vector& mask): 1 for each masked row, 0 for the others; how many are masked.
int GetMask(const Bound& bound, CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const VeData& data = Data(bound, args);
    const Layer mask = RequiredVector(args, 0);
    RefuseSameLayer(mask, {&bound.vector, 0});
    std::vector<unsigned char> marks(static_cast<std::size_t>(data.GetSize()));
    int masked = 0;
    for (std::size_t row = 0; row < marks.size(); ++row) {
      marks[row] = data.IsMasked(static_cast<std::int64_t>(row)) ? 1 : 0;
      masked += marks[row];
    }
    StoreResult(mask, ConstElementSpan(std::span<const unsigned char>(marks)));
    args.Return(masked);
  });
}

// SetMask(vector mask): masks the rows whose element is neither 0 nor missing, and no others; how
// many.
int SetMask(const Bound& bound, CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    VeData& data = Data(bound, args);
    const LayerValues<double> marks(RequiredVector(args, 0));
    const std::int64_t size = data.GetSize();
    int masked = 0;
    for (std::int64_t row = 0; row < size; ++row) {
      const auto place = static_cast<std::size_t>(row);
      const bool is_masked = place < marks.Span().size() && marks.Span()[place] != 0 &&
                             !kernel::IsMissing(marks.Span()[place]);
      masked += data.SetMasked(row, is_masked) && is_masked;
    }
    data.OnChange(0, size);
    args.Return(masked);
  });
}

// GetName(string& name): the name by which Attach finds the column, "[book]column"; empty without
// one. 0.
int GetName(const Bound& bound, CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    CheckRow(bound, args);
    if (bound.binding.IsStale()) Fail(status::kNoRow);
    VeData* const data = bound.binding.Data();
    args.Set(0, data != nullptr ? data->GetName().c_str() : "");
    args.Return(0);
  });
}

// Update(): tells the host that the data changed; 0. For what a script wrote element by element.
int Update(const Bound& bound, CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    VeData& data = Data(bound, args);
    data.OnChange(0, data.GetSize());
    args.Return(0);
  });
}

// Create(string book, string column, int rows = 0): makes a column of the element type, in a new
// book if need be, and attaches to it. Create(int rows): attaches to data of its own that no book
// has. 1, or 0, with everything as it was, when there is such a column already.
int Create(const Bound& bound, CTCall* call) {
  return Run(call, Between(1, 3), [&](Arguments& args) {
    CheckRow(bound, args);
    const unsigned type_id = bound.vector.GetInternalDataTypeID();
    const bool is_named = args.Count() > 1;
    const unsigned rows_argument = is_named ? 2 : 0;
    const int rows = args.Count() > rows_argument ? args.Int(rows_argument) : 0;
    if (rows < 0) Fail(status::kOutOfRange);
    if (!is_named) {
      const VeRef<VeTempDataset> data = VeTempDataset::Create(type_id, rows);
      if (!data) Fail(status::kCannotResize);
      return args.Return(bound.binding.Attach(data.Get()) ? 1 : 0);
    }
    VeData* const data =
        VeDataSources::Get().CreateData(args.Text(0).c_str(), args.Text(1).c_str(), type_id, rows);
    args.Return(bound.binding.Attach(data) ? 1 : 0);
  });
}

// Destroy(): removes the column from the host and detaches from it; what else is attached to it
// goes stale. 1, or 0 when the host refuses.
int Destroy(const Bound& bound, CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    const bool removed = Data(bound, args).Remove();
    if (removed) bound.binding.Detach();
    args.Return(removed ? 1 : 0);
  });
}

// PushUndo(): keeps the column's state for the user to come back to; 1, or 0 without undo.
int PushUndo(const Bound& bound, CTCall* call) {
  return Run(call, NoArguments(),
             [&](Arguments& args) { args.Return(Data(bound, args).PushUndo() ? 1 : 0); });
}

// IsValid(): 1 while a column is attached that the host still has, else 0.
int IsValid(const Bound& bound, CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    CheckRow(bound, args);
    args.Return(bound.binding.Data() != nullptr ? 1 : 0);
  });
}

// SetUpperBound(int upper): the column gets upper + 1 rows; 1, or 0 for fewer than none.
int SetUpperBound(const Bound& bound, CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    Data(bound, args);
    const std::int64_t size = std::int64_t{args.Int(0)} + 1;
    if (size < 0) return args.Return(0);
    Check(bound.binding.Resize(size));
    bound.binding.AnnounceChange();
    args.Return(1);
  });
}

// SetLowerBound(int lower): the first row that is data; those below it stay as they are but count
// no longer. 1, or 0 for a row that there is not and where the host has no such bound.
int SetLowerBound(const Bound& bound, CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    VeData& data = Data(bound, args);
    const int lower = args.Int(0);
    const bool done = lower >= 0 && lower <= data.GetSize() && data.SetLowerBound(lower);
    if (done) bound.binding.AnnounceChange();
    args.Return(done ? 1 : 0);
  });
}

}  // namespace vela::dataset
