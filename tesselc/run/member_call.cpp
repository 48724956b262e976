#include "tesselc/run/member_call.h"

#include "frame/interface/script_object.h"
#include "tesselc/run/number_conversion.h"
#include "tesselc/run/status_text.h"

namespace tesselc {
namespace {

using vela::host::CallFrame;
using ResultKind = CallFrame::ResultKind;

// What the signatures say is of use where the arguments were wrong.
[[noreturn]] void ThrowMemberError(const std::string& owner, const std::string& member, int status,
                                   const SourceRange& where,
                                   const std::vector<std::string>& signatures = {}) {
  const bool arguments = status == status::kBadArguments;
  throw ScriptError(
      where, status,
      owner + "." + member + ": status " + std::to_string(status) + " (" + StatusText(status) + ")",
      arguments ? signatures : std::vector<std::string>());
}

// The row of a member, found at the first call. Objects of one static type can be of several
// classes (a vectorbase of any element type), so the row is that of one class.
class MemberCache {
 public:
  struct Found {
    const CClassMember* row;
    CTypeBase* owner;
  };
  Found Find(CScriptVelaObject& object, const std::string& name) {
    const unsigned type_word = object.GetTypeID();
    // The owner of a row may be a part of the object; where it is the object itself, which is the
    // rule, the row serves every object of the type.
    if (row_ && type_word == type_word_) return {row_, &object};
    if (hash_ == 0) hash_ = CTypeBase::HashMemberName(name.c_str());
    CTypeBase* owner = nullptr;
    const CClassMember* row = object.FindMember(name.c_str(), hash_, &owner, 0);
    if (row && (owner == nullptr || owner == &object)) {
      row_ = row;
      type_word_ = type_word;
    }
    return {row, owner ? owner : &object};
  }

 private:
  unsigned hash_ = 0;
  const CClassMember* row_ = nullptr;
  unsigned type_word_ = 0;
};

template <class T>
T NumberResult(const CallFrame& call) {
  switch (call.Kind()) {
    case ResultKind::kInt:
      return static_cast<T>(call.ResultInt());
    case ResultKind::kUnsigned:
      return static_cast<T>(static_cast<std::uint64_t>(call.ResultInt()));
    default:
      return ConvertScalar<T>(call.ResultDouble());
  }
}

template <class T>
T ResultOf(const CallFrame& call) {
  if constexpr (std::is_arithmetic_v<T>) {
    return NumberResult<T>(call);
  } else if constexpr (std::is_same_v<T, OneTCcomplex>) {
    if (call.Kind() == ResultKind::kComplex) return call.ResultComplex();
    return OneTCcomplex(call.ResultDouble());
  } else if constexpr (std::is_same_v<T, CStringUTF8>) {
    return call.ResultText();
  } else {
    return T{};  // a frame carries no point
  }
}

class MemberNode {
 public:
  explicit MemberNode(MemberUse use) : use_(std::move(use)) {}

 protected:
  enum class Access { kCall, kGet, kSet };
  static constexpr std::size_t kFewArguments = 4;

  // Binds the object and the arguments, calls the member, and lets `take` have the result.
  template <class Take>
  void Run(Frame& frame, Access access, CallFrame& call, const Take& take) {
    if (use_.arguments.size() <= kFewArguments) {
      std::array<Passed, kFewArguments> passed;
      RunWith(frame, access, call, passed.data(), take);
    } else {
      const std::unique_ptr<Passed[]> passed(new Passed[use_.arguments.size()]);
      RunWith(frame, access, call, passed.get(), take);
    }
  }
  const SourceRange& where() const { return use_.where; }

 private:
  template <class Take>
  void RunWith(Frame& frame, Access access, CallFrame& call, Passed* passed, const Take& take) {
    Passed self;
    use_.object->Bind(frame, self);
    for (std::size_t i = 0; i < use_.arguments.size(); ++i) {
      passed[i].previous = i == 0 ? &self : &passed[i - 1];
      use_.arguments[i]->Pass(frame, passed[i], call);
    }
    call.GetIndeces() = self.value.at;
    Dispatch(*self.value.object, access, call);
    take(call);
    use_.object->Complete(self, Binding::Return::kChanged);
    for (std::size_t i = 0; i < use_.arguments.size(); ++i) {
      use_.arguments[i]->Complete(passed[i]);
    }
  }

  void Dispatch(CScriptVelaObject& object, Access access, CallFrame& call) {
    const auto [row, owner] = cache_.Find(object, use_.member);
    if (!row) {
      throw ScriptError(use_.where, status::kUnsupported,
                        use_.owner + " has no member '" + use_.member + "'");
    }
    // A member that the catalogue declares a property may be one method that reads without an
    // argument and sets with one.
    const bool is_method = access == Access::kCall || !row->IsProperty();
    const int result = is_method                ? owner->DoMethod(row->GetHandler(), &call)
                       : access == Access::kGet ? owner->DoPropertyGet(row->GetHandler(), &call)
                                                : owner->DoPropertySet(row->GetSetter(), &call);
    if (result != status::kOk) {
      ThrowMemberError(use_.owner, use_.member, result, use_.where, use_.signatures);
    }
  }

  MemberUse use_;
  MemberCache cache_;
};

template <class T, bool kGet>
class MemberValue final : public Expr<MemberValue<T, kGet>, T>, private MemberNode {
 public:
  MemberValue(MemberUse use, ObjectType result_type)
      : MemberNode(std::move(use)), result_type_(std::move(result_type)) {}
  T Eval(Frame& frame) override {
    CallFrameLease call(*frame.run);
    T result{};
    if constexpr (std::is_same_v<T, ObjectValue>) {
      result =
          ObjectValue(frame.run->Create(result_type_.type_word, 0, result_type_.name, where()));
      call->SetReturnObject(result.object);
    }
    Run(frame, kGet ? Access::kGet : Access::kCall, *call, [&](const CallFrame& done) {
      if constexpr (!std::is_same_v<T, ObjectValue>) result = ResultOf<T>(done);
    });
    return result;
  }

 private:
  ObjectType result_type_;
};

class VoidMember final : public Node, private MemberNode {
 public:
  explicit VoidMember(MemberUse use) : MemberNode(std::move(use)) {}
  Flow Exec(Frame& frame) override {
    CallFrameLease call(*frame.run);
    Run(frame, Access::kCall, *call, [](const CallFrame&) {});
    return Flow::kNext;
  }
};

// The value is kept while it is passed, because it is the value of the assignment as well.
template <class T>
class PropertySet final : public Expr<PropertySet<T>, T>, private MemberNode {
 public:
  PropertySet(MemberUse use, ValuePtr<T> value)
      : MemberNode(std::move(use)), value_(std::move(value)) {}
  T Eval(Frame& frame) override {
    CallFrameLease call(*frame.run);
    T value = value_->Eval(frame);
    AddValue(*call, value);
    Run(frame, Access::kSet, *call, [](const CallFrame&) {});
    return value;
  }

 private:
  static void AddValue(CallFrame& call, const T& value) {
    if constexpr (std::is_same_v<T, CStringUTF8>) {
      call.AddText(value.c_str());
    } else if constexpr (std::is_same_v<T, OneTCcomplex>) {
      call.AddComplex(value);
    } else if constexpr (std::is_same_v<T, ObjectValue>) {
      call.AddObject(value.object, value.at, false);
    } else if constexpr (std::is_floating_point_v<T>) {
      call.AddDouble(value);
    } else if constexpr (std::is_same_v<T, std::uint64_t>) {
      call.AddUnsigned64(value);
    } else if constexpr (std::is_integral_v<T> && sizeof(T) < 8 && !std::is_same_v<T, unsigned>) {
      call.AddInt(value);
    } else if constexpr (std::is_integral_v<T>) {
      call.AddInt64(value);
    }
  }

  ValuePtr<T> value_;
};

template <bool kGet>
NodePtr MakeMemberValue(MemberUse use, Carrier carrier, ObjectType result_type) {
  if (carrier == TypeName::kVoid) return std::make_unique<VoidMember>(std::move(use));
  return WithCarrier(carrier, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    return std::make_unique<MemberValue<T, kGet>>(std::move(use), std::move(result_type));
  });
}

}  // namespace

NodePtr MakeMethodCall(MemberUse use, Carrier carrier, ObjectType result_type) {
  return MakeMemberValue<false>(std::move(use), carrier, std::move(result_type));
}

NodePtr MakePropertyGet(MemberUse use, Carrier carrier, ObjectType result_type) {
  return MakeMemberValue<true>(std::move(use), carrier, std::move(result_type));
}

NodePtr MakePropertySet(MemberUse use, Carrier carrier, NodePtr value) {
  return WithCarrier(carrier, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    return std::make_unique<PropertySet<T>>(std::move(use), As<T>(std::move(value)));
  });
}

void CallMethod(CScriptVelaObject& object, const char* name, CallFrame& call,
                const SourceRange& where) {
  CTypeBase* owner = &object;
  const CClassMember* row = object.FindMember(name, 0, &owner, 0);
  const int result = row ? owner->DoMethod(row->GetHandler(), &call) : status::kUnsupported;
  if (result != status::kOk) ThrowMemberError(object.GetTCTypeName(), name, result, where);
}

}  // namespace tesselc
