// Members of "string" that change the text.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <stdexcept>

#include "frame/container/container_arguments.h"
#include "text/format.h"
#include "text/string_member.h"
#include "text/string_object.h"
#include "text/text_forms.h"
#include "text/utf8_character.h"

using vela::member::Arguments;
using vela::member::AtLeast;
using vela::member::Between;
using vela::member::Check;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::NoArguments;
using vela::text::CountsCharacters;
using vela::text::FailingBetween;
using vela::text::RequireCharacter;
using vela::text::RequireText;
using vela::text::RunMember;

namespace {

// The arguments from the second on, marshalled for as long as this lives.
class MarshalledArguments {
 public:
  explicit MarshalledArguments(CTCall& call) : call_(call), count_(call.GetNumOfArguments() - 1) {
    Check(call_.BeginGetValuesForExternalCall(builder_, 1, count_, 0));
  }
  ~MarshalledArguments() { call_.EndGetValuesForExternalCall(builder_, 1, count_, 0); }
  MarshalledArguments(const MarshalledArguments&) = delete;
  MarshalledArguments& operator=(const MarshalledArguments&) = delete;

  std::span<const CTCExternalCallBuilder::Slot> Slots() const {
    return {builder_.GetArgValuesBuffer(), builder_.GetCount()};
  }

 private:
  CTCall& call_;
  unsigned count_;
  CTCExternalCallBuilder builder_;
};

// The text with one byte replaced.
CStringUTF8 WithByteReplaced(const CStringUTF8& text, int index, std::string_view by) {
  if (index < 0 || index >= text.GetLength()) Fail(status::kOutOfRange);
  CStringUTF8 result = text.Left(index);
  result += by;
  result += text.View().substr(static_cast<std::size_t>(index) + 1);
  return result;
}

int CountNoCase(const CStringUTF8& text, std::string_view sub) {
  int count = 0;
  int matched = 0;
  for (int at = 0; (at = text.FindNoCase(sub, at, &matched)) >= 0; at += matched) ++count;
  return count;
}

// Replaces every match of old, found without regard to case; returns how many.
int ReplaceNoCase(CStringUTF8& text, std::string_view old_text, std::string_view new_text) {
  if (old_text.empty()) return 0;
  const std::string_view all = text.View();
  // A match has one byte at least. What could become too long is counted before it is made.
  const auto most = static_cast<std::uint64_t>(CStringUTF8::kMostBytes);
  if (all.size() * (new_text.size() + 1) > most) {
    const auto matches = static_cast<std::uint64_t>(CountNoCase(text, old_text));
    if (matches * new_text.size() > most) throw std::length_error("text is too long");
  }
  std::string result;
  int count = 0;
  int matched = 0;
  int from = 0;
  for (int at; (at = text.FindNoCase(old_text, from, &matched)) >= 0; ++count) {
    result += all.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(at - from));
    result += new_text;
    from = at + matched;
  }
  if (count == 0) return 0;
  result += all.substr(static_cast<std::size_t>(from));
  text = std::string_view(result);
  return count;
}

std::string FromUtf16(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  const auto unit = [&](std::size_t at) {
    char16_t value;
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
  };
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    char32_t code_point = unit(at);
    const bool is_high = code_point >= 0xD800 && code_point < 0xDC00;
    if (is_high && at + 3 < bytes.size() && unit(at + 2) >= 0xDC00 && unit(at + 2) < 0xE000) {
      at += 2;
      code_point = 0x10000 + ((code_point - 0xD800) << 10) + (unit(at) - 0xDC00u);
    }
    vela::text::AppendCodePoint(text, code_point);
  }
  return text;
}

// The first length UTF-16 units of the bytes, or those up to a NUL unit when length is negative.
std::string_view Utf16Units(std::string_view bytes, int length) {
  std::size_t size = static_cast<std::size_t>(std::max(length, 0)) * 2;
  if (length < 0) {
    while (size + 1 < bytes.size() && (bytes[size] != 0 || bytes[size + 1] != 0)) size += 2;
  }
  if (size > bytes.size()) Fail(status::kBadArguments);
  return bytes.substr(0, size);
}

}  // namespace

int CScriptVelaString::Delete(CTCall* call) {
  return RunMember(call, FailingBetween(1, 2), [&](Arguments& args) {
    CStringUTF8& text = Acted(args);
    const int index = std::max(args.Int(0), 0);
    const int asked = args.Count() == 2 ? args.Int(1) : 1;
    const int count = std::clamp(asked, 0, std::max(text.GetLength() - index, 0));
    args.Return(CountsCharacters() ? text.CharDelete(index, count) : text.Delete(index, count));
  });
}

int CScriptVelaString::Format(CTCall* call) {
  return RunMember(call, AtLeast(1), [&](Arguments& args) {
    CStringUTF8& text = Acted(args);
    RequireText(args, 0);
    const CStringUTF8 format = args.Text(0);
    const MarshalledArguments values(args.Call());
    try {
      text = std::string_view(vela::text::Format(format.View(), values.Slots()));
    } catch (const std::exception&) {
      Fail(status::kFormatFailed);
    }
  });
}

int CScriptVelaString::TrimLeft(CTCall* call) {
  return RunMember(call, Between(0, 1), [&](Arguments& args) {
    CStringUTF8& text = Acted(args);
    if (args.Count() == 0) return text.TrimLeft();
    if (args.IsText(0)) return text.TrimLeft(args.Text(0));
    RequireCharacter(args, 0);
    text.TrimLeft(args.Character(0));
  });
}

int CScriptVelaString::TrimRight(CTCall* call) {
  return RunMember(call, Between(0, 1), [&](Arguments& args) {
    CStringUTF8& text = Acted(args);
    if (args.Count() == 0) return text.TrimRight();
    if (args.IsText(0)) return text.TrimRight(args.Text(0));
    RequireCharacter(args, 0);
    text.TrimRight(args.Character(0));
  });
}

int CScriptVelaString::Insert(CTCall* call) {
  return RunMember(call, Exactly(2), [&](Arguments& args) {
    CStringUTF8& text = Acted(args);
    const int index = args.Int(0);
    if (args.IsText(1)) {
      const CStringUTF8 inserted = args.Text(1);
      args.Return(CountsCharacters() ? text.CharInsert(index, inserted.View())
                                     : text.Insert(index, inserted.View()));
      return;
    }
    RequireCharacter(args, 1);
    const char ch = args.Character(1);
    args.Return(CountsCharacters() ? text.CharInsert(index, ch) : text.Insert(index, ch));
  });
}

int CScriptVelaString::MakeLower(CTCall* call) {
  return RunMember(call, NoArguments(), [&](Arguments& args) { Acted(args).MakeLower(); });
}

int CScriptVelaString::MakeUpper(CTCall* call) {
  return RunMember(call, NoArguments(), [&](Arguments& args) { Acted(args).MakeUpper(); });
}

int CScriptVelaString::SetAt(CTCall* call) {
  return RunMember(call, Exactly(2), [&](Arguments& args) {
    CStringUTF8& text = Acted(args);
    const int index = args.Int(0);
    if (args.IsText(1)) {
      const CStringUTF8 by = args.Text(1);
      if (CountsCharacters()) {
        text.CharSetAt(index, by.View());
      } else {
        text = WithByteReplaced(text, index, by.View());
      }
      return;
    }
    RequireCharacter(args, 1);
    const char ch = args.Character(1);
    CountsCharacters() ? text.CharSetAt(index, ch) : text.SetAt(index, ch);
  });
}

int CScriptVelaString::MakeValidCName(CTCall* call) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    using vela::text::MisfitCharacters;
    CStringUTF8& text = Acted(args);
    const auto misfits = args.Int(0) == 1 ? MisfitCharacters::kDrop : MisfitCharacters::kUnderscore;
    text = std::string_view(vela::text::ValidCName(text.View(), misfits));
  });
}

int CScriptVelaString::Empty(CTCall* call) {
  return RunMember(call, NoArguments(), [&](Arguments& args) { Acted(args).Empty(); });
}

int CScriptVelaString::Replace(CTCall* call) {
  return RunMember(call, Between(2, 3), [&](Arguments& args) {
    CStringUTF8& text = Acted(args);
    if (args.IsText(0)) {
      RequireText(args, 1);
      const CStringUTF8 old_text = args.Text(0);
      const CStringUTF8 new_text = args.Text(1);
      const bool case_sensitive = args.Count() < 3 || args.Int(2) != 0;
      args.Return(case_sensitive ? text.Replace(old_text.View(), new_text.View())
                                 : ReplaceNoCase(text, old_text.View(), new_text.View()));
      return;
    }
    RequireCharacter(args, 0);
    RequireCharacter(args, 1);
    args.Return(text.Replace(args.Character(0), args.Character(1)));
  });
}

int CScriptVelaString::Remove(CTCall* call) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    CStringUTF8& text = Acted(args);
    RequireCharacter(args, 0);
    args.Return(text.Remove(args.Character(0)));
  });
}

int CScriptVelaString::SetBytes(CTCall* call) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    CStringUTF8& text = Acted(args);
    const vela::Layer source = vela::OptionalVector(args, 0);
    if (source) {
      if (source.TypeId() != kTypeUnsignedChar) Fail(status::kFailed);
      const vela::LayerValues<unsigned char> bytes(source);
      text =
          std::string_view(reinterpret_cast<const char*>(bytes.Span().data()), bytes.Span().size());
    }
    args.Return(source ? 1 : 0);
  });
}

int CScriptVelaString::SetUTF16(CTCall* call) {
  return RunMember(call, Exactly(2), [&](Arguments& args) {
    CStringUTF8& text = Acted(args);
    if (args.IsNull(0)) return text.Empty();
    if (!args.IsText(0)) Fail(status::kBadValue);
    const CStringUTF8 units = args.Text(0);
    text = std::string_view(FromUtf16(Utf16Units(units.View(), args.Int(1))));
  });
}

int CScriptVelaString::Shorten(CTCall* call) {
  return RunMember(call, Exactly(2), [&](Arguments& args) {
    using vela::text::CutAt;
    CStringUTF8& text = Acted(args);
    const auto most = static_cast<std::size_t>(std::max(args.Int(0), 0));
    const CutAt cut = args.Int(1) != 0 ? CutAt::kInside : CutAt::kEnd;
    const bool is_cut = text.View().size() > most;
    if (is_cut) text = std::string_view(vela::text::Shortened(text.View(), most, cut));
    args.Return(is_cut ? 1 : 0);
  });
}
