// Members of "string" about tokens.
#include <array>
#include <cstring>
#include <vector>

#include "frame/container/container_arguments.h"
#include "text/operand_text.h"
#include "text/string_array.h"
#include "text/string_member.h"
#include "text/string_object.h"
#include "text/tokens.h"

using vela::member::Arguments;
using vela::member::Between;
using vela::member::Fail;
using vela::text::RunMember;
using vela::text::Tokenizer;

namespace {

char Separator(Arguments& args, unsigned arg, char when_absent = 0) {
  return args.Count() > arg ? args.Character(arg) : when_absent;
}

// A container with one of the flags; anything else is an argument of the wrong type.
vela::Layer RequiredContainer(Arguments& args, unsigned arg, unsigned flags) {
  if ((args.TypeId(arg) & flags) == 0) Fail(status::kFailed);
  return vela::RequiredContainer(args, arg);
}

double NumberOf(std::string_view token) {
  constexpr std::size_t kUsualSize = 64;
  if (token.size() >= kUsualSize) return vela::text::NumberOf(CStringUTF8(token));
  char buffer[kUsualSize];
  std::memcpy(buffer, token.data(), token.size());
  buffer[token.size()] = '\0';
  return VELAObj::ParleyStr2double(buffer);
}

int StoreTokens(Tokenizer tokens, TCVectorString& target, int row) {
  TCVectorString::Texts texts;
  texts.reserve(tokens.EstimateCount());
  CStringUTF8Maker maker(texts.capacity(), tokens.Text().size());
  for (std::string_view token; tokens.Next(token);) texts.push_back(maker.Make(token));
  const int count = static_cast<int>(texts.size());
  target.StoreRow(row, std::move(texts));
  return count;
}

int StoreNumbers(Tokenizer tokens, const vela::Layer& target) {
  std::vector<double> numbers;
  numbers.reserve(tokens.EstimateCount());
  std::array<double, 512> decimals;
  for (;;) {
    const auto some = std::span(decimals).first(tokens.NextDecimals(decimals));
    numbers.insert(numbers.end(), some.begin(), some.end());
    if (some.size() == decimals.size()) continue;
    std::string_view token;
    if (!tokens.Next(token)) break;
    numbers.push_back(NumberOf(token));
  }
  vela::StoreResult(target, vela::ConstElementSpan(std::span<const double>(numbers)));
  return static_cast<int>(numbers.size());
}

}  // namespace

int CScriptVelaString::GetToken(CTCall* call) {
  return RunMember(call, Between(1, 2), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    const int index = args.Int(0);
    Tokenizer tokens(text.View(), Separator(args, 1));
    int i = 0;
    for (std::string_view token; index >= 0 && tokens.Next(token); ++i) {
      if (i == index) return args.Return(CStringUTF8(token));
    }
    args.Return(CStringUTF8());
  });
}

int CScriptVelaString::GetNumTokens(CTCall* call) {
  return RunMember(call, Between(0, 1), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    Tokenizer tokens(text.View(), Separator(args, 0));
    int count = 0;
    for (std::string_view token; tokens.Next(token);) ++count;
    args.Return(count);
  });
}

int CScriptVelaString::GetTokens(CTCall* call) {
  return RunMember(call, Between(1, 2), [&](Arguments& args) {
    // A copy: the target may hold this very string.
    const CStringUTF8 text = Acted(args);
    const vela::Layer target = RequiredContainer(args, 0, kFlagAnyVector | kFlagAnyMatrix);
    const Tokenizer tokens(text.View(), Separator(args, 1));
    auto* strings = dynamic_cast<TCVectorString*>(target.container);
    args.Return(strings != nullptr ? StoreTokens(tokens, *strings, target.number)
                                   : StoreNumbers(tokens, target));
  });
}

int CScriptVelaString::SetTokens(CTCall* call) {
  return RunMember(call, Between(1, 2), [&](Arguments& args) {
    CStringUTF8& text = Acted(args);
    const vela::Layer source = RequiredContainer(args, 0, kFlagAnyVector);
    const char separator = Separator(args, 1, '\t');
    if (separator == 0) return args.Return(-1);
    CStringUTF8 joined;
    const auto texts = vela::text::ElementTexts(source);
    for (std::size_t i = 0; i < texts.size(); ++i) {
      if (i > 0) joined += separator;
      joined += texts[i].View();
    }
    text = joined;
    args.Return(static_cast<int>(texts.size()));
  });
}

int CScriptVelaString::FindToken(CTCall* call) {
  return RunMember(call, Between(1, 2), [&](Arguments& args) {
    const CStringUTF8& text = Acted(args);
    const CStringUTF8 wanted = args.Text(0);
    Tokenizer tokens(text.View(), Separator(args, 1));
    int index = 0;
    for (std::string_view token; tokens.Next(token); ++index) {
      if (token == wanted.View()) return args.Return(index);
    }
    args.Return(-1);
  });
}
