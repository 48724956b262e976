#include "text_cases.h"

#include <cstring>
#include <memory>
#include <stdexcept>

#include "cases.h"
#include "frame/interface/operations.h"

namespace vela::bench {
namespace {

using host::ObjectRef;

constexpr int kReadOnly = 0x8000;  // binary
constexpr int kFormatCalls = 1'000'000;

// A new text: a string that is given it shares memory with nothing else.
CStringUTF8 Copy(const CStringUTF8& text) { return CStringUTF8(text.View()); }

class Maker {
 public:
  Maker(const host::Library& library, const Data& data) : library_(library), data_(data) {}

  ObjectRef Make(unsigned type_word) const { return ObjectRef(library_.Create(type_word)); }
  CStringUTF8 Text(const char* name) const { return CStringUTF8(TextOf(data_, name)); }

  ObjectRef String(const char* name) const {
    ObjectRef string = Make(kTypeString);
    string->SetStringValue(nullptr, Text(name));
    return string;
  }

  // The lines of the data.
  ObjectRef StringArray(const char* name) const {
    ObjectRef array = Make(kTypeString | kFlagVector);
    std::string_view rest = TextOf(data_, name);
    int size = 0;
    for (const char ch : rest) size += ch == '\n';
    array->SetVectorDimension(nullptr, size);
    for (int i = 0; i < size; ++i) {
      const std::size_t end = rest.find('\n');
      const MSOINDICES at = MSOINDICES::Element(i);
      array->SetStringValue(&at, CStringUTF8(rest.substr(0, end)));
      rest.remove_prefix(end + 1);
    }
    return array;
  }

  // A file object that has the file open whose path the data gives.
  ObjectRef OpenFile(unsigned type_word, const char* path) const {
    ObjectRef file = Make(type_word);
    const std::string name(TextOf(data_, path));
    CallSite open(file, "Open");
    open.Frame().AddText(name.c_str());
    open.Frame().AddInt(kReadOnly);
    open();
    if (open.Frame().ResultInt() != 1) throw std::runtime_error("cannot open " + name);
    return file;
  }

 private:
  const host::Library& library_;
  const Data& data_;
};

std::shared_ptr<CallSite> Site(const ObjectRef& object, const char* member) {
  return std::make_shared<CallSite>(object, member);
}

std::function<std::string()> ResultInt(std::shared_ptr<CallSite> site) {
  return [site] { return std::to_string(site->Frame().ResultInt()); };
}

CStringUTF8 TextValue(const ObjectRef& object, const MSOINDICES* at = nullptr) {
  CStringUTF8 text;
  if (object->GetString(at, text) != 0) throw std::runtime_error("no text");
  return text;
}

std::function<std::string()> ResultText(ObjectRef string) {
  return [string] { return std::string(TextValue(string).View()); };
}

std::function<std::string()> ResultLines(ObjectRef array) {
  return [array] {
    int upper = -1;
    array->GetUpperBound(nullptr, upper);
    std::string lines;
    for (int i = 0; i <= upper; ++i) {
      const MSOINDICES at = MSOINDICES::Element(i);
      lines.append(TextValue(array, &at).View()).append("\n");
    }
    return lines;
  };
}

std::function<std::string()> ResultBytes(ObjectRef vector) {
  return [vector] {
    void* bytes = nullptr;
    const std::size_t size = vector->GetBufferSize(nullptr);
    if (vector->GetBufferMSO(nullptr, &bytes) != 0) throw std::runtime_error("no bytes");
    std::string copy(static_cast<const char*>(bytes), size);
    vector->ReleaseBufferMSO(nullptr, bytes);
    return copy;
  };
}

// Reads the file to its end, line by line into one string.
template <class Use>
void ReadLines(CallSite& to_begin, CallSite& read, Use&& use) {
  to_begin();
  for (;;) {
    read();
    if (read.Frame().ResultInt() == 0) return;
    use();
  }
}

Prepared ReadString(const Maker& maker) {
  const ObjectRef file = maker.OpenFile(kTypeStdioFile, "path");
  const ObjectRef line = maker.Make(kTypeString);
  auto to_begin = Site(file, "SeekToBegin");
  auto read = Site(file, "ReadString");
  read->AddObject(line);
  read->Frame().AddInt(0);
  const auto lines = [=] {
    std::string all;
    ReadLines(*to_begin, *read, [&] { all.append(TextValue(line).View()).append("\n"); });
    return all;
  };
  return {nullptr, [=] { ReadLines(*to_begin, *read, [] {}); }, lines};
}

// The same with the frame filled anew for each line, as an interpreter does.
Prepared ReadStringFilled(const Maker& maker) {
  const ObjectRef file = maker.OpenFile(kTypeStdioFile, "path");
  const ObjectRef line = maker.Make(kTypeString);
  auto to_begin = Site(file, "SeekToBegin");
  auto read = Site(file, "ReadString");
  const auto fill = [=] {
    read->Frame().Reset();
    read->Frame().AddObject(line.Get());
    read->Frame().AddInt(0);
  };
  return {fill, [=] { ReadLines(*to_begin, *read, fill); }};
}

Prepared ReadInt(const Maker& maker) {
  const ObjectRef file = maker.OpenFile(kTypeFile, "path");
  const ObjectRef items = maker.Make(kTypeInt | kFlagVector);
  auto length = Site(file, "GetLength");
  (*length)();
  const int count = static_cast<int>(length->Frame().ResultInt() / 4);
  items->SetVectorDimension(nullptr, count);
  auto to_begin = Site(file, "SeekToBegin");
  auto read = Site(file, "ReadInt");
  read->AddObject(items);
  for (const int argument : {4, count, 0}) read->Frame().AddInt(argument);
  return {nullptr,
          [=] {
            (*to_begin)();
            (*read)();
          },
          ResultBytes(items)};
}

std::shared_ptr<CallSite> TokensSite(const Maker& maker, const ObjectRef& target) {
  auto site = Site(maker.String("text"), "GetTokens");
  site->AddObject(target);
  return site;
}

Prepared GetTokensTexts(const Maker& maker) {
  const ObjectRef target = maker.Make(kTypeString | kFlagVector);
  auto site = TokensSite(maker, target);
  return {nullptr, [site] { (*site)(); }, ResultLines(target)};
}

Prepared GetTokensNumbers(const Maker& maker) {
  const ObjectRef target = maker.Make(kTypeDouble | kFlagVector);
  auto site = TokensSite(maker, target);
  return {nullptr, [site] { (*site)(); }, ResultBytes(target)};
}

Prepared Find(const Maker& maker, bool case_sensitive) {
  auto site = Site(maker.String("text"), "Find");
  site->AddObject(maker.String("wanted"));
  site->Frame().AddInt(0);
  site->Frame().AddInt(case_sensitive);
  return {nullptr, [site] { (*site)(); }, ResultInt(site)};
}

Prepared Count(const Maker& maker) {
  auto site = Site(maker.String("text"), "Count");
  site->Frame().AddChar('e');
  return {nullptr, [site] { (*site)(); }, ResultInt(site)};
}

// A member that changes the text: it starts from a text of its own.
Prepared Changing(const Maker& maker, const char* member,
                  const std::function<void(CallSite&)>& add) {
  const ObjectRef string = maker.Make(kTypeString);
  auto site = Site(string, member);
  add(*site);
  const CStringUTF8 text = maker.Text("text");
  return {[string, text] { string->SetStringValue(nullptr, Copy(text)); }, [site] { (*site)(); },
          ResultText(string)};
}

Prepared Replace(const Maker& maker) {
  return Changing(maker, "Replace", [&](CallSite& site) {
    site.AddObject(maker.String("replaced"));
    site.AddObject(maker.String("by"));
  });
}

Prepared MakeUpper(const Maker& maker) {
  return Changing(maker, "MakeUpper", [](CallSite&) {});
}

Prepared MakeLower(const Maker& maker) {
  return Changing(maker, "MakeLower", [](CallSite&) {});
}

Prepared Sort(const Maker& maker) {
  const ObjectRef unsorted = maker.StringArray("texts");
  const ObjectRef array = maker.Make(kTypeString | kFlagVector);
  auto site = Site(array, "Sort");
  site->Frame().AddInt(1);
  site->Frame().AddInt(1);
  site->Frame().AddNull();
  site->Frame().AddInt(0);
  const auto reset = [=] {
    const tagMSOOBJVECT operand(unsorted.Get(), unsorted->GetTypeID());
    array->Operate2(nullptr, operation::kAssign, operand, 0);
  };
  return {reset, [site] { (*site)(); }, ResultLines(array)};
}

Prepared FindDuplicates(const Maker& maker) {
  auto site = Site(maker.StringArray("texts"), "FindDuplicates");
  const ObjectRef map = maker.Make(kTypeInt | kFlagVector);
  site->AddObject(map);
  site->AddObject(maker.Make(kTypeUnsignedInt | kFlagVector));
  site->Frame().AddInt(1);
  site->AddObject(maker.Make(kTypeUnsignedInt | kFlagVector));
  site->Frame().AddInt(0);
  return {nullptr, [site] { (*site)(); }, ResultBytes(map)};
}

Prepared Format(const Maker& maker) {
  const ObjectRef string = maker.Make(kTypeString);
  auto site = Site(string, "Format");
  const auto call = [=] {
    for (int i = 0; i < kFormatCalls; ++i) {
      host::CallFrame& frame = site->Frame();
      frame.Reset();
      frame.AddText("%5d %-10s %.3f");
      frame.AddInt(i);
      frame.AddText("sample");
      frame.AddDouble(i * 0.37);
      (*site)();
    }
  };
  return {nullptr, call, ResultText(string)};
}

}  // namespace

Cases TextCases(const host::Library& library) {
  const std::map<std::string, std::function<Prepared(const Maker&)>> makers = {
      {"ReadString", ReadString},
      {"ReadString_filled", ReadStringFilled},
      {"ReadInt", ReadInt},
      {"GetTokens_texts", GetTokensTexts},
      {"GetTokens_numbers", GetTokensNumbers},
      {"Find", [](const Maker& maker) { return Find(maker, true); }},
      {"Find_no_case", [](const Maker& maker) { return Find(maker, false); }},
      {"Count", Count},
      {"Replace", Replace},
      {"MakeUpper", MakeUpper},
      {"MakeLower", MakeLower},
      {"Sort_texts", Sort},
      {"FindDuplicates", FindDuplicates},
      {"Format", Format},
  };
  Cases cases;
  for (const auto& [name, make] : makers) {
    cases[name] = [&library, make](const Data& data) { return make(Maker(library, data)); };
  }
  return cases;
}

}  // namespace vela::bench
