#include "host/data/worksheet_functions.h"

#include <string>

#include "host/data/csv_file.h"
#include "host/data/worksheets.h"
#include "host/member_arguments.h"

namespace vela::host {
namespace {

using platform::FileCause;

const CClassMember kMembers[] = {
    HostMember("OpenWorksheet", &WorksheetFunctions::OpenWorksheet),
    HostMember("SaveWorksheet", &WorksheetFunctions::SaveWorksheet),
    HostMember("CloseWorksheet", &WorksheetFunctions::CloseWorksheet),
    HostMember("UndoWorksheet", &WorksheetFunctions::UndoWorksheet),
    HostMember("CountColumns", &WorksheetFunctions::CountColumns),
    HostMember("IsWorksheetModified", &WorksheetFunctions::IsWorksheetModified),
    {},
};

std::string TextOf(MemberArguments& args, unsigned arg) {
  return std::string(args.Text(arg).View());
}

Worksheet* BookOf(MemberArguments& args) { return Worksheets::Find(TextOf(args, 0)); }

}  // namespace

const CClassMember* WorksheetFunctions::FindMember(const char* name, unsigned name_hash,
                                                   CTypeBase** owner, unsigned flags) {
  return FindMemberInTable(name, name_hash, kMembers, owner, flags);
}

int WorksheetFunctions::OpenWorksheet(CTCall* call) {
  return RunMember(call, 3, [](MemberArguments& args) {
    const std::string book = TextOf(args, 0);
    if (!Worksheets::IsFree(book)) return args.Return(-2);
    FileCause cause = FileCause::kNone;
    auto worksheet = ReadCsvFile(TextOf(args, 1), book, args.Int(2) != 0, cause);
    if (!worksheet) return args.Return(-1);
    const auto rows = static_cast<int>(worksheet->CountRows());
    Worksheets::Add(std::move(worksheet));
    args.Return(rows);
  });
}

int WorksheetFunctions::SaveWorksheet(CTCall* call) {
  return RunMember(call, 3, [](MemberArguments& args) {
    Worksheet* const worksheet = BookOf(args);
    const auto encoding = static_cast<unsigned>(args.Int(2));
    if (!worksheet || encoding >= text::kEncodings) return args.Return(0);
    const FileCause cause =
        WriteCsvFile(*worksheet, TextOf(args, 1), static_cast<text::TextEncoding>(encoding));
    if (cause == FileCause::kNone) worksheet->SetModified(false);
    args.Return(cause == FileCause::kNone ? 1 : 0);
  });
}

int WorksheetFunctions::CloseWorksheet(CTCall* call) {
  return RunMember(call, 1, [](MemberArguments& args) {
    args.Return(Worksheets::Close(TextOf(args, 0)) ? 1 : 0);
  });
}

int WorksheetFunctions::UndoWorksheet(CTCall* call) {
  return RunMember(call, 1, [](MemberArguments& args) {
    Worksheet* const worksheet = BookOf(args);
    args.Return(worksheet && worksheet->Undo() ? 1 : 0);
  });
}

int WorksheetFunctions::CountColumns(CTCall* call) {
  return RunMember(call, 1, [](MemberArguments& args) {
    const Worksheet* const worksheet = BookOf(args);
    args.Return(worksheet ? worksheet->CountColumns() : -1);
  });
}

int WorksheetFunctions::IsWorksheetModified(CTCall* call) {
  return RunMember(call, 1, [](MemberArguments& args) {
    const Worksheet* const worksheet = BookOf(args);
    args.Return(worksheet && worksheet->IsModified() ? 1 : 0);
  });
}

}  // namespace vela::host
