#include "matrix_cases.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "cases.h"
#include "frame/interface/type_words.h"

namespace vela::bench {
namespace {

using host::ObjectRef;

std::size_t WidthOf(unsigned type_id) {
  return type_id == kTypeDouble ? 8 : type_id == kTypeFloat ? 4 : 1;
}

// Elements lent by a matrix for as long as this lives.
class Elements {
 public:
  explicit Elements(const ObjectRef& matrix) : matrix_(matrix) {
    if (matrix_->GetBufferMSO(nullptr, &data_) != 0) throw std::runtime_error("no elements");
  }
  ~Elements() { matrix_->ReleaseBufferMSO(nullptr, data_); }
  Elements(const Elements&) = delete;
  Elements& operator=(const Elements&) = delete;

  void* Data() const { return data_; }

 private:
  ObjectRef matrix_;
  void* data_ = nullptr;
};

class MatrixMaker {
 public:
  MatrixMaker(const host::Library& library, const Data& data) : library_(library), data_(data) {
    const std::string_view type = TextOf(data, "type");
    type_id_ = type == "double" ? kTypeDouble : type == "float" ? kTypeFloat : kTypeUnsignedChar;
  }

  ObjectRef Empty() const { return ObjectRef(library_.Create(type_id_ | kFlagMatrix)); }
  ObjectRef Filled(const std::string& name) const { return Filled(name, type_id_); }
  ObjectRef Filled(const std::string& name, unsigned type_id) const {
    const ObjectRef matrix(library_.Create(type_id | kFlagMatrix));
    Fill(matrix, name);
    return matrix;
  }

  void Fill(const ObjectRef& matrix, const std::string& name) const {
    std::istringstream shape{std::string(TextOf(data_, name + "_shape"))};
    int rows = 0, cols = 0;
    shape >> rows >> cols;
    if (matrix->SetMatrixDimension(rows, cols, nullptr) != 0) throw std::runtime_error("no memory");
    const std::vector<std::byte>& bytes = data_.at(name);
    std::memcpy(Elements(matrix).Data(), bytes.data(), bytes.size());
  }

  std::string Bytes(const ObjectRef& matrix) const {
    int rows = 0, cols = 0;
    matrix->GetMatrixDimensions(&rows, &cols, nullptr);
    const std::size_t count = static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols);
    return {static_cast<const char*>(Elements(matrix).Data()), count * WidthOf(type_id_)};
  }

 private:
  const host::Library& library_;
  const Data& data_;
  unsigned type_id_;
};

// Adds the arguments that the words name; returns the empty matrix among them.
ObjectRef AddArguments(const MatrixMaker& maker, std::istream& words, CallSite& site) {
  ObjectRef result;
  for (std::string kind, word; words >> kind;) {
    if (kind == "result") {
      result = maker.Empty();
      site.AddObject(result);
      continue;
    }
    words >> word;
    if (kind == "int") {
      site.Frame().AddInt(std::stoi(word));
    } else if (kind == "double") {
      site.Frame().AddDouble(std::stod(word));
    } else if (kind == "matrix") {
      site.AddObject(maker.Filled(word));
    } else if (kind == "doubles") {
      site.AddObject(maker.Filled(word, kTypeDouble));
    } else {
      throw std::invalid_argument("argument of kind " + kind);
    }
  }
  return result;
}

std::function<void()> Operator(const ObjectRef& x, const MatrixMaker& maker, std::istream& words) {
  unsigned code = 0;
  std::string kind, name;
  words >> code >> kind >> name;
  return [x, y = maker.Filled(name), code] {
    const tagMSOOBJVECT operand(y.Get(), y->GetTypeID());
    if (x->Operate2(nullptr, code, operand, 0) != 0) std::abort();
  };
}

std::string BytesOf(double number) {
  std::string bytes(sizeof number, '\0');
  std::memcpy(bytes.data(), &number, sizeof number);
  return bytes;
}

Prepared Member(const host::Library& library, const Data& data) {
  const MatrixMaker maker(library, data);
  const ObjectRef x = maker.Filled("x");
  std::istringstream words{std::string(TextOf(data, "call"))};
  std::string member;
  words >> member;
  const std::string_view outcome = TextOf(data, "outcome");

  Prepared prepared;
  if (outcome == "self") {
    prepared.reset = [maker, x] { maker.Fill(x, "x"); };
    prepared.result = [maker, x] { return maker.Bytes(x); };
  }
  if (member == "operator") {
    prepared.call = Operator(x, maker, words);
    return prepared;
  }
  auto site = std::make_shared<CallSite>(x, member.c_str());
  const ObjectRef result = AddArguments(maker, words, *site);
  prepared.call = [site] { (*site)(); };
  if (outcome == "result") prepared.result = [maker, result] { return maker.Bytes(result); };
  if (outcome == "number") {
    prepared.result = [site] { return BytesOf(site->Frame().ResultDouble()); };
  }
  return prepared;
}

}  // namespace

Cases MatrixCases(const host::Library& library) {
  return {{"matrix_member", [&library](const Data& data) { return Member(library, data); }}};
}

}  // namespace vela::bench
