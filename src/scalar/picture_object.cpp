#include "scalar/picture_object.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <new>

#include "frame/interface/host_services.h"
#include "frame/interface/operations.h"
#include "frame/library_state.h"
#include "frame/numeric_object.h"

namespace {

using vela::PictureHolder;
using vela::member::Arguments;
using vela::member::Check;
using vela::member::Fail;
using vela::member::Method;

const CClassMember kPictureMembers[] = {
    Method("CreateFromBitmap", &TCPicture::CreateFromBitmap),
    Method("CreateFromMetafile", &TCPicture::CreateFromMetafile),
    Method("CreateFromEnhMetafile", &TCPicture::CreateFromEnhMetafile),
    Method("CreateFromIcon", &TCPicture::CreateFromIcon),
    Method("Render", &TCPicture::Render),
    Method("Load", &TCPicture::Load),
    Method("GetWidth", &TCPicture::GetWidth),
    Method("GetHeight", &TCPicture::GetHeight),
    {},
};

// The host is given the address of a slot, and those of an array as an array.
static_assert(sizeof(PictureHolder) == sizeof(IPicture*));

// The raw bytes of an argument as a value: a handle, or a rectangle.
template <class T>
T Raw(Arguments& args, unsigned arg) {
  T value;
  std::memcpy(&value, args.Buffer(arg, sizeof value), sizeof value);
  return value;
}

int Stored(PictureHolder& slot, PictureHolder made) {
  slot = std::move(made);
  return slot ? 1 : 0;
}

// The device context that an object gives, or null without an object.
HDC DeviceContextOf(const tagMSOOBJVECT& device) {
  if (device.object == nullptr) return nullptr;
  if ((device.object->GetTypeID() & kTypeIdMask) != kTypeDeviceContext) Fail(status::kBadArguments);
  return static_cast<HDC>(device.object->GetArgObjectPtrMSO(&device.indices, kTypeDeviceContext));
}

}  // namespace

TCPicture::TCPicture(unsigned count, unsigned type_word, void** args)
    : slots_(count == 0 ? 1 : count) {
  InitTypeIDs(type_word);
  if (args == nullptr || *args == nullptr) return;
  const int error = vela::member::Run(
      static_cast<CTCall*>(*args), vela::member::AtLeast(1), [&](Arguments& call) {
        const tagMSOOBJVECT source = call.Object(0);
        return source.object == nullptr ? int{status::kBadValue} : Assign(nullptr, source);
      });
  if (error != status::kOk) vela::ReportError(status::kBadValue, args);
}

TCPicture::TCPicture(const TCPicture& other) {
  InitTypeIDs(other.GetTypeID());
  slots_.reserve(other.slots_.size());
  for (const PictureHolder& slot : other.slots_) slots_.push_back(PictureHolder::Share(slot.Get()));
}

const CRuntimeClass* TCPicture::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"TCPicture", sizeof(TCPicture),
                                           TesselCObject::GetRuntimeClass()};
  return &runtime_class;
}

const CClassMember* TCPicture::MemberTable() { return kPictureMembers; }

PictureHolder* TCPicture::Select(const MSOINDICES* at) {
  if (at == nullptr || at->kind == MSOINDICES::kWhole) return &slots_.front();
  if (at->kind != MSOINDICES::kOneObject) return nullptr;
  if (at->index >= 0 && at->index < GetArraySize()) return &slots_[at->index];
  outside_.Clear();
  return &outside_;
}

// The slot comes before the arguments, their number included.
template <class Body>
int TCPicture::RunOnSlot(CTCall* call, unsigned arguments, Body&& body) {
  return vela::member::Run(call, vela::member::AtLeast(0), [&](Arguments& args) {
    PictureHolder* const slot = Select(&args.Indices());
    if (slot == nullptr) Fail(status::kBadIndex);
    if (args.Count() != arguments) Fail(status::kBadArguments);
    body(args, *slot);
  });
}

int TCPicture::CreateFromBitmap(CTCall* call) {
  return RunOnSlot(call, 2, [](Arguments& args, PictureHolder& slot) {
    const auto bitmap = Raw<HBITMAP>(args, 0);
    args.Return(Stored(slot, PictureHolder::FromBitmap(bitmap, args.Int(1) != 0)));
  });
}

int TCPicture::CreateFromMetafile(CTCall* call) {
  return RunOnSlot(call, 4, [](Arguments& args, PictureHolder& slot) {
    const auto metafile = Raw<HMETAFILE>(args, 0);
    const int x_extent = args.Int(1), y_extent = args.Int(2);
    args.Return(
        Stored(slot, PictureHolder::FromMetafile(metafile, x_extent, y_extent, args.Int(3) != 0)));
  });
}

int TCPicture::CreateFromEnhMetafile(CTCall* call) {
  return RunOnSlot(call, 2, [](Arguments& args, PictureHolder& slot) {
    const auto metafile = Raw<HENHMETAFILE>(args, 0);
    const bool own = args.Int(1) != 0;
    slot.Clear();
    args.Return(Stored(slot, PictureHolder::FromEnhMetafile(metafile, own)));
  });
}

int TCPicture::CreateFromIcon(CTCall* call) {
  return RunOnSlot(call, 2, [](Arguments& args, PictureHolder& slot) {
    const auto icon = Raw<HICON>(args, 0);
    args.Return(Stored(slot, PictureHolder::FromIcon(icon, args.Int(1) != 0)));
  });
}

int TCPicture::Load(CTCall* call) {
  return RunOnSlot(call, 1, [](Arguments& args, PictureHolder& slot) {
    const HBITMAP bitmap = LoadImageFile(args.Text(0).c_str());
    PictureHolder made = PictureHolder::FromBitmap(bitmap, true);
    const bool is_made = static_cast<bool>(made);
    if (is_made) {
      slot = std::move(made);
    } else if (bitmap != nullptr) {
      DeleteObject(bitmap);
    }
    args.Return(is_made ? 1 : 0);
  });
}

int TCPicture::GetWidth(CTCall* call) {
  return RunOnSlot(call, 0,
                   [](Arguments& args, PictureHolder& slot) { args.Return(slot.Width()); });
}

int TCPicture::GetHeight(CTCall* call) {
  return RunOnSlot(call, 0,
                   [](Arguments& args, PictureHolder& slot) { args.Return(slot.Height()); });
}

int TCPicture::Render(CTCall* call) {
  return RunOnSlot(call, 3, [](Arguments& args, PictureHolder& slot) {
    const HDC dc = DeviceContextOf(args.Reference(0));
    const auto destination = Raw<RECT>(args, 1);
    slot.Render(dc, destination, Raw<RECT>(args, 2));
  });
}

int TCPicture::Assign(const MSOINDICES* at, const tagMSOOBJVECT& source) {
  PictureHolder* const target = Select(at);
  if (target == nullptr) return status::kBadIndex;
  CScriptVelaObject* const object = source.object;
  const unsigned type = object == nullptr ? kTypeNone : object->GetTypeID();
  if (type == kTypePicture) {
    const void* const slot = object->GetArgObjectPtrMSO(&source.indices, kTypePicture);
    if (slot == nullptr) return status::kBadIndex;
    *target = PictureHolder::Share(*static_cast<IPicture* const*>(slot));
    return status::kOk;
  }
  if (type != kTypeVariant) return status::kNotOnRow;
  return SetFromVariant(at, object->GetVariantAddress(&source.indices));
}

int TCPicture::Operate2(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand, unsigned) {
  constexpr unsigned kOperation = operation::kCodeMask | operation::kPlainOperand;
  if ((op & kOperation) != operation::kAssign) return status::kNotOnRow;
  return Assign(at, operand);
}

int TCPicture::SetFromVariant(const MSOINDICES* at, const VARIANT* value) {
  PictureHolder* const target = Select(at);
  if (target == nullptr || value == nullptr) return status::kBadIndex;
  if (value->vt != VT_DISPATCH) return status::kNotOnRow;
  *target = PictureHolder::FromDispatch(value->pdispVal);
  return status::kOk;
}

int TCPicture::GetNumericValue(const MSOINDICES* at, VARIANT& value) {
  PictureHolder* const slot = Select(at);
  if (slot == nullptr) return status::kBadIndex;
  VariantClear(&value);
  void* dispatch = nullptr;
  if (*slot && SUCCEEDED(slot->Get()->QueryInterface(IID_IPictureDisp, &dispatch))) {
    value.vt = VT_DISPATCH;
    value.pdispVal = static_cast<IPictureDisp*>(dispatch);
  }
  return status::kOk;
}

int TCPicture::GetIntoVariant(const MSOINDICES* at, VARIANT* value) {
  return value == nullptr ? int{status::kBadArguments} : GetNumericValue(at, *value);
}

// Not guarded against a pointer to something else; but a picture of another language may raise.
int TCPicture::SetValueFromDWORD(std::uint64_t value) try {
  PictureHolder& slot = slots_.front();
  PictureHolder kept = std::move(slot);  // it may be the same picture
  slot = PictureHolder::Share(reinterpret_cast<IPicture*>(static_cast<std::uintptr_t>(value)));
  return status::kOk;
} catch (...) {
  return status::kBadValue;
}

void* TCPicture::GetArgObjectPtrMSO(const MSOINDICES* at, unsigned type_id) {
  if (type_id != kTypeNone && type_id != kTypePicture) return nullptr;
  PictureHolder* const slot = Select(at);
  return slot == nullptr ? nullptr : slot->Address();
}

int TCPicture::IsValidElement(const MSOINDICES* at) {
  const PictureHolder* const slot = Select(at);
  return slot != nullptr && *slot;
}

int TCPicture::GetWrpperObjectDisplayInfo(CStringUTF8& text, const MSOINDICES* at) {
  const PictureHolder* const slot = Select(at);
  if (slot == nullptr) return status::kBadIndex;
  std::array<char, 32> buffer = {};
  if (*slot) {
    // As a 64-bit Windows writes a pointer; the form of %p differs between systems.
    std::snprintf(buffer.data(), buffer.size(), "IPP=0x%016llX",
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(slot->Get())));
  }
  text = buffer.data();
  return status::kOk;
}

int TCPicture::ResetValue() {
  for (PictureHolder& slot : slots_) slot.Clear();
  return status::kOk;
}

CScriptVelaObject* TCPicture::CreateCopy() { return vela::NewCopy(*this); }
