// Vectors bound to host data: Dataset, Curve and categorical data. A new one is not attached: it
// has one empty row that cannot be resized until it is attached to a column.
#pragma once

#include "vector/curve_members.h"
#include "vector/dataset_members.h"
#include "vector/typed_vector.h"

namespace vela {

// The rows of the table, which are the same for every element type.
std::initializer_list<CClassMember> CategoricalRows();

// "%s, %s(1:%d-%d)" of the names of X and Y and the bounds, or without X "%s(1:%d-%d)".
CStringUTF8 CurveText(const DataBinding& y, const DataBinding& x);

}  // namespace vela

template <class T>
class TCOVectorBase : public vela::member::WithMembers<TCOVectorBase<T>, TCAllVectorsBase<T>> {
  using Base = vela::member::WithMembers<TCOVectorBase, TCAllVectorsBase<T>>;
  using Member = int (*)(const vela::dataset::Bound&, CTCall*);

 public:
  using Base::GetName;
  using Base::IsValid;
  using Base::Update;

  explicit TCOVectorBase(unsigned type_id, unsigned flag = kFlagDataset)
      : Base((type_id & kTypeIdMask) | flag), binding_(vela::kElement<T>.type_id) {}
  // Attached to data of its own with the other's elements, so that the host's data is not touched
  // by what is done with a copy.
  TCOVectorBase(const TCOVectorBase& other)
      : Base(other.GetTypeID()), binding_(vela::kElement<T>.type_id) {
    binding_.AttachCopy(other.binding_);
  }

  const CRuntimeClass* GetRuntimeClass() const override {
    static constexpr auto kName = vela::TemplateName<T>("TCOVectorBase");
    static const CRuntimeClass runtime_class{kName.data(), sizeof(TCOVectorBase),
                                             Base::GetRuntimeClass()};
    return &runtime_class;
  }
  CScriptVelaObject* CreateCopy() override { return vela::NewCopy(*this); }
  static const CClassMember* MemberTable() {
    return vela::member::TypeTable<TCOVectorBase>::Rows();
  }
  static std::initializer_list<CClassMember> MemberRows() {
    using vela::member::Method;
    namespace dataset = vela::dataset;
    static const std::initializer_list<CClassMember> rows = {
        Row<&dataset::Attach>("Attach"),
        Row<&dataset::Detach>("Detach"),
        Row<&dataset::SetText>("SetText"),
        Row<&dataset::GetText>("GetText"),
        Row<&dataset::GetStringArray>("GetStringArray"),
        Row<&dataset::PutStringArray>("PutStringArray"),
        Row<&dataset::GetMask>("GetMask"),
        Row<&dataset::SetMask>("SetMask"),
        Row<&dataset::GetName>("GetName"),
        Method("Append", &TCAllVectorNonTemplBase::Append),
        Row<&dataset::Update>("Update"),
        Row<&dataset::Create>("Create"),
        Row<&dataset::Destroy>("Destroy"),
        Method("TrimLeft", &TCAllVectorNonTemplBase::TrimLeft),
        Method("TrimRight", &TCAllVectorNonTemplBase::TrimRight),
        Method("GetSize", &TCAllVectorNonTemplBase::GetSize),
        Row<&dataset::PushUndo>("PushUndo"),
    };
    return rows;
  }

  int LayerCount() const override { return binding_.IsStale() ? 0 : 1; }
  bool IsStale() const override { return binding_.IsStale(); }
  VeSourceData* SourceOf(int) const override { return binding_.Data(); }
  vela::LayerShape ShapeOf(int) const override { return vela::LayerShape::OneRow(binding_.Size()); }
  int LowerBoundOf(int) const override { return binding_.LowerBound(); }
  vela::ElementSpan BufferOf(int) override { return binding_.Buffer(); }
  int RawResize(int, std::int64_t size) override { return binding_.Resize(size); }
  int ResizeWithLowerBound(int, std::int64_t size, int lower) override {
    return binding_.ResizeWithLowerBound(size, lower);
  }
  int ReadElements(int, std::size_t offset, const vela::ElementSpan& to) override {
    return binding_.Read(offset, to);
  }
  int StoreElements(int, std::size_t offset, const vela::ConstElementSpan& from) override {
    return binding_.Store(offset, from);
  }
  void AnnounceChange(int row) override {
    Base::AnnounceChange(row);
    binding_.AnnounceChange();
  }

  int GetName(CTCall* call) override { return Forward<&vela::dataset::GetName>(call); }
  int IsValid(CTCall* call) override { return Forward<&vela::dataset::IsValid>(call); }
  int SetUpperBound(CTCall* call) override { return Forward<&vela::dataset::SetUpperBound>(call); }
  int SetLowerBound(CTCall* call) override { return Forward<&vela::dataset::SetLowerBound>(call); }

  // --- For the host ---

  int Update(const MSOINDICES*) override {
    if (binding_.IsStale()) return status::kNoRow;
    binding_.AnnounceChange();
    return status::kOk;
  }
  void* GetDatasetObject(const MSOINDICES*) override { return binding_.Data(); }

 protected:
  template <Member kMember>
  int Forward(CTCall* call) {
    return kMember({*this, binding_}, call);
  }
  template <Member kMember>
  static CClassMember Row(const char* name) {
    return vela::member::Method(name, &TCOVectorBase::template Forward<kMember>);
  }

  vela::DataBinding binding_;
};

template <class T>
using TCOVectorIntegral = TCOVectorBase<T>;
template <class T>
using TCOVectorFloating = TCOVectorBase<T>;
using TCOVectordouble = TCOVectorBase<double>;

// A Dataset together with its X. The integral and floating curves of the class table.
template <class T>
class TCCurve : public vela::member::WithMembers<TCCurve<T>, TCOVectorBase<T>> {
  using Base = vela::member::WithMembers<TCCurve, TCOVectorBase<T>>;

 public:
  explicit TCCurve(unsigned type_id) : Base(type_id, kFlagCurve) {}
  TCCurve(const TCCurve& other) : Base(other) { x_.AttachCopy(other.x_); }

  const CRuntimeClass* GetRuntimeClass() const override {
    static constexpr auto kName = vela::TemplateName<T>("TCCurve");
    static const CRuntimeClass runtime_class{kName.data(), sizeof(TCCurve),
                                             Base::GetRuntimeClass()};
    return &runtime_class;
  }
  CScriptVelaObject* CreateCopy() override { return vela::NewCopy(*this); }
  static const CClassMember* MemberTable() { return vela::member::TypeTable<TCCurve>::Rows(); }
  static std::initializer_list<CClassMember> MemberRows() {
    using vela::member::Method;
    namespace curve = vela::curve;
    static const std::initializer_list<CClassMember> rows = {
        Method("HasX", &TCAllVectorNonTemplBase::HasX),
        Row<&curve::AttachX>("AttachX"),
        Row<&curve::Attach>("Attach"),
        Row<&curve::Sort>("Sort"),
        Method("GetRectPoints", &TCAllVectorNonTemplBase::GetRectPoints),
        Row<&curve::SetXBounds>("SetXBounds"),
        Row<&curve::ConstructInit>("ConstructInit"),
    };
    return rows;
  }

  VeData* XData() const override { return x_.Data(); }
  int SupportsAuxillX() override { return 1; }
  using Base::GetString;
  int GetString(CStringUTF8& text) override {
    if (this->binding_.Data() == nullptr) return Base::GetString(text);
    text = vela::CurveText(this->binding_, x_);
    return 1;
  }

 private:
  using Member = int (*)(const vela::curve::Bound&, CTCall*);
  template <Member kMember>
  int ForwardCurve(CTCall* call) {
    return kMember({{*this, this->binding_}, x_}, call);
  }
  template <Member kMember>
  static CClassMember Row(const char* name) {
    return vela::member::Method(name, &TCCurve::template ForwardCurve<kMember>);
  }

  vela::DataBinding x_{kTypeDouble};
};

template <class T>
using TCCurveIntegral = TCCurve<T>;
template <class T>
using TCCurveFloating = TCCurve<T>;
using TCCurvedouble = TCCurve<double>;

class TCOlccomplexVector
    : public vela::member::WithMembers<TCOlccomplexVector, TCOVectorBase<OneTCcomplex>> {
  using Base = vela::member::WithMembers<TCOlccomplexVector, TCOVectorBase<OneTCcomplex>>;

 public:
  using Base::Base;
  const CRuntimeClass* GetRuntimeClass() const override;
  CScriptVelaObject* CreateCopy() override { return vela::NewCopy(*this); }
  static const CClassMember* MemberTable();
};

template <class T>
class tcCategoricalData : public vela::member::WithMembers<tcCategoricalData<T>, TCOVectorBase<T>> {
  using Base = vela::member::WithMembers<tcCategoricalData, TCOVectorBase<T>>;

 public:
  explicit tcCategoricalData(unsigned type_id) : Base(type_id, kFlagCategorical) {}
  const CRuntimeClass* GetRuntimeClass() const override {
    static constexpr auto kName = vela::TemplateName<T>("tcCategoricalData");
    static const CRuntimeClass runtime_class{kName.data(), sizeof(tcCategoricalData),
                                             Base::GetRuntimeClass()};
    return &runtime_class;
  }
  CScriptVelaObject* CreateCopy() override { return vela::NewCopy(*this); }
  static const CClassMember* MemberTable() {
    return vela::member::TypeTable<tcCategoricalData>::Rows();
  }
  static std::initializer_list<CClassMember> MemberRows() { return vela::CategoricalRows(); }
};
