// Members of "string" that ask about the text or give a part of it.
#include "frame/container/container_arguments.h"
#include "frame/element_value.h"
#include "text/path_test.h"
#include "text/string_member.h"
#include "text/string_object.h"
#include "text/wildcard.h"

using vela::member::Arguments;
using vela::member::Between;
using vela::member::Check;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::NoArguments;
using vela::text::CountsCharacters;
using vela::text::RequireCharacter;
using vela::text::RequireText;
using vela::text::RunMember;

namespace {

// The text to compare with; NULL is no text.
CStringUTF8 ComparedText(Arguments& args) {
  if (args.IsNull(0)) Fail(status::kNullText);
  return args.Text(0);
}

int FindText(const CStringUTF8& text, const CStringUTF8& sub, int start, bool case_sensitive) {
  if (CountsCharacters()) return text.CharFind(sub.View(), start, case_sensitive);
  if (start < 0 || start >= text.GetLength()) return -1;
  return case_sensitive ? text.Find(sub.View(), start) : text.FindNoCase(sub.View(), start);
}

// The unit at an index as text; out of range is std::out_of_range.
CStringUTF8 UnitText(const CStringUTF8& text, int index) {
  if (CountsCharacters()) return text.CharTextAt(index);
  const char byte = text.GetAt(index);
  return {&byte, 1};
}

void StoreText(Arguments& args, unsigned arg, const CStringUTF8& text) {
  tagMSOOBJVECT target;
  const int error = args.Call().GetArgumentObject(static_cast<int>(arg), target);
  if (error != status::kOk || target.object == nullptr) Fail(status::kNotAnObject);
  Check(target.object->SetStringValue(&target.indices, text));
}

}  // namespace

int CScriptVelaString::GetLength(CTCall* call) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    const bool in_characters = args.Int(0) > 0 && CountsCharacters();
    args.Return(in_characters ? text.CharGetLength() : text.GetLength());
  });
}

int CScriptVelaString::Left(CTCall* call) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    const int count = args.Int(0);
    args.Return(CountsCharacters() ? text.CharLeft(count) : text.Left(count));
  });
}

int CScriptVelaString::Right(CTCall* call) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    const int count = args.Int(0);
    args.Return(CountsCharacters() ? text.CharRight(count) : text.Right(count));
  });
}

int CScriptVelaString::Mid(CTCall* call) {
  return RunMember(call, Between(1, 2), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    const int first = args.Int(0);
    const int count = args.Count() == 2 ? args.Int(1) : text.GetLength();
    args.Return(CountsCharacters() ? text.CharMid(first, count) : text.Mid(first, count));
  });
}

int CScriptVelaString::Compare(CTCall* call) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    args.Return(text.View().compare(ComparedText(args).View()));
  });
}

int CScriptVelaString::CompareNoCase(CTCall* call) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    args.Return(text.CompareNoCase(ComparedText(args)));
  });
}

int CScriptVelaString::Find(CTCall* call) {
  return RunMember(call, Between(1, 3), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    if (args.IsText(0)) {
      const int start = args.Count() > 1 ? args.Int(1) : 0;
      const bool case_sensitive = args.Count() < 3 || args.Int(2) != 0;
      args.Return(FindText(text, args.Text(0), start, case_sensitive));
      return;
    }
    RequireCharacter(args, 0);
    const char ch = args.Character(0);
    const int start = args.Int(1);
    args.Return(CountsCharacters() ? text.CharFind(ch, start) : text.Find(ch, start));
  });
}

int CScriptVelaString::ReverseFind(CTCall* call) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    RequireCharacter(args, 0);
    const char ch = args.Character(0);
    args.Return(CountsCharacters() ? text.CharReverseFind(ch) : text.ReverseFind(ch));
  });
}

int CScriptVelaString::FindOneOf(CTCall* call) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    args.Return(text.FindOneOf(args.Text(0)));
  });
}

int CScriptVelaString::Count(CTCall* call) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    RequireCharacter(args, 0);
    args.Return(text.Count(args.Character(0)));
  });
}

int CScriptVelaString::SpanIncluding(CTCall* call) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    args.Return(text.SpanIncluding(args.Text(0)));
  });
}

int CScriptVelaString::SpanExcluding(CTCall* call) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    args.Return(text.SpanExcluding(args.Text(0)));
  });
}

int CScriptVelaString::GetAt(CTCall* call) {
  return RunMember(call, Between(1, 2), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    const CStringUTF8 unit = UnitText(text, args.Int(0));
    if (args.Count() == 2) StoreText(args, 1, unit);
    args.Return(static_cast<int>(static_cast<signed char>(unit.View().front())));
  });
}

int CScriptVelaString::IsEmpty(CTCall* call) {
  return RunMember(call, NoArguments(),
                   [&](Arguments& args) { args.Return(Acted(args).c_str()[0] == '\0' ? 1 : 0); });
}

int CScriptVelaString::Match(CTCall* call) {
  return RunMember(call, Exactly(2), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    RequireText(args, 0);
    const CStringUTF8 pattern = args.Text(0);
    const bool case_sensitive = args.Int(1) != 0;
    args.Return(vela::text::MatchesWildcards(text.View(), pattern.View(), case_sensitive) ? 1 : 0);
  });
}

int CScriptVelaString::IsPath(CTCall* call) {
  return RunMember(call, NoArguments(), [&](Arguments& args) {
    args.Return(vela::text::IsFolder(Acted(args)) ? 1 : 0);
  });
}

int CScriptVelaString::IsFile(CTCall* call) {
  return RunMember(call, NoArguments(),
                   [&](Arguments& args) { args.Return(vela::text::IsFile(Acted(args)) ? 1 : 0); });
}

int CScriptVelaString::GetBytes(CTCall* call) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    const vela::Layer target = vela::OptionalVector(args, 0);
    if (target) {
      if (target.TypeId() != kTypeUnsignedChar) Fail(status::kFailed);
      vela::StoreResult(target, {kTypeUnsignedChar, text.c_str(), text.View().size()});
    }
    args.Return(target ? 1 : 0);
  });
}
