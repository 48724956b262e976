#include "tesselc/run/worksheet_functions.h"

#include <algorithm>
#include <utility>

#include "frame/interface/string_utf8.h"
#include "host/data/csv_file.h"
#include "host/data/worksheets.h"

namespace tesselc {
namespace {

using vela::host::Worksheet;
using vela::host::Worksheets;
using vela::platform::FileCause;

int NumberOr(const WorksheetArguments& arguments, int otherwise) {
  return arguments.numbers.empty() ? otherwise : arguments.numbers.front();
}

// OpenWorksheet(string book, string path, int header = 1): the rows, -1 when the file cannot be
// read, -2 when there is a book of the name already or the name cannot be one.
int OpenWorksheet(const WorksheetArguments& arguments) {
  const std::string& book = arguments.texts[0];
  if (!Worksheets::IsFree(book)) return -2;
  FileCause cause = FileCause::kNone;
  auto worksheet =
      vela::host::ReadCsvFile(arguments.texts[1], book, NumberOr(arguments, 1) != 0, cause);
  if (!worksheet) return -1;
  const auto rows = static_cast<int>(worksheet->CountRows());
  Worksheets::Add(std::move(worksheet));
  return rows;
}

// SaveWorksheet(string book, string path, int encoding = 1): 1, or 0 without the book, with an
// encoding beyond 3 and when the file cannot be written.
int SaveWorksheet(const WorksheetArguments& arguments) {
  Worksheet* const worksheet = Worksheets::Find(arguments.texts[0]);
  const auto encoding = static_cast<unsigned>(NumberOr(arguments, 1));
  if (!worksheet || encoding >= vela::text::kEncodings) return 0;
  const FileCause cause = vela::host::WriteCsvFile(*worksheet, arguments.texts[1],
                                                   static_cast<vela::text::TextEncoding>(encoding));
  if (cause != FileCause::kNone) return 0;
  worksheet->SetModified(false);
  return 1;
}

int CloseWorksheet(const WorksheetArguments& arguments) {
  return Worksheets::Close(arguments.texts[0]);
}

int UndoWorksheet(const WorksheetArguments& arguments) {
  Worksheet* const worksheet = Worksheets::Find(arguments.texts[0]);
  return worksheet && worksheet->Undo();
}

// -1 without the book.
int CountColumns(const WorksheetArguments& arguments) {
  const Worksheet* const worksheet = Worksheets::Find(arguments.texts[0]);
  return worksheet ? worksheet->CountColumns() : -1;
}

int IsWorksheetModified(const WorksheetArguments& arguments) {
  const Worksheet* const worksheet = Worksheets::Find(arguments.texts[0]);
  return worksheet && worksheet->IsModified();
}

constexpr WorksheetFunction kFunctions[] = {
    {"OpenWorksheet", "tti", 2, OpenWorksheet},
    {"SaveWorksheet", "tti", 2, SaveWorksheet},
    {"CloseWorksheet", "t", 1, CloseWorksheet},
    {"UndoWorksheet", "t", 1, UndoWorksheet},
    {"CountColumns", "t", 1, CountColumns},
    {"IsWorksheetModified", "t", 1, IsWorksheetModified},
};

class WorksheetCall final : public Expr<WorksheetCall, int> {
 public:
  WorksheetCall(const WorksheetFunction& function, std::vector<NodePtr> arguments)
      : function_(function) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      if (function.parameters[i] == 't') {
        texts_.push_back(As<CStringUTF8>(std::move(arguments[i])));
      } else {
        numbers_.push_back(As<int>(std::move(arguments[i])));
      }
    }
  }
  int Eval(Frame& frame) override {
    WorksheetArguments arguments;
    for (const auto& text : texts_) arguments.texts.emplace_back(text->Eval(frame).View());
    for (const auto& number : numbers_) arguments.numbers.push_back(number->Eval(frame));
    return function_.call(arguments);
  }

 private:
  const WorksheetFunction& function_;
  std::vector<ValuePtr<CStringUTF8>> texts_;
  std::vector<ValuePtr<int>> numbers_;
};

}  // namespace

const WorksheetFunction* FindWorksheetFunction(std::string_view name) {
  const auto found = std::ranges::find(kFunctions, name, &WorksheetFunction::name);
  return found != std::end(kFunctions) ? found : nullptr;
}

NodePtr MakeWorksheetCall(const WorksheetFunction& function, std::vector<NodePtr> arguments) {
  return std::make_unique<WorksheetCall>(function, std::move(arguments));
}

}  // namespace tesselc
