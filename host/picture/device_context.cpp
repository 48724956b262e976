#include "host/picture/device_context.h"

#include <algorithm>
#include <utility>

#include "host/member_arguments.h"
#include "host/picture/image_file.h"

namespace vela::host {
namespace {

const CClassMember kDeviceMembers[] = {
    HostMember("SetSize", &DeviceContext::SetSize),
    HostMember("GetWidth", &DeviceContext::GetWidth),
    HostMember("GetHeight", &DeviceContext::GetHeight),
    HostMember("Clear", &DeviceContext::Clear),
    HostMember("Line", &DeviceContext::Line),
    HostMember("GetPixel", &DeviceContext::GetPixel),
    HostMember("Save", &DeviceContext::Save),
    {},
};

std::size_t PixelCount(const Bitmap& image) {
  return std::size_t{1} * static_cast<unsigned>(image.Width()) *
         static_cast<unsigned>(image.Height());
}

}  // namespace

DeviceContext::DeviceContext() { InitTypeIDs(kTypeDeviceContext); }

DeviceContext::~DeviceContext() { Close(); }

void DeviceContext::Close() {
  // A bitmap cannot be deleted while it is selected.
  if (dc_ != nullptr) DeleteDC(std::exchange(dc_, nullptr));
  bitmap_ = Bitmap();
}

const CClassMember* DeviceContext::FindMember(const char* name, unsigned name_hash,
                                              CTypeBase** owner, unsigned flags) {
  const CClassMember* row = FindMemberInTable(name, name_hash, kDeviceMembers, owner, flags);
  return row != nullptr ? row : TesselCObject::FindMember(name, name_hash, owner, flags);
}

void* DeviceContext::GetArgObjectPtrMSO(const MSOINDICES*, unsigned type_id) {
  return type_id == kTypeDeviceContext ? dc_ : nullptr;
}

bool DeviceContext::Resize(int width, int height) {
  Bitmap bitmap(width, height);
  const HDC dc = bitmap ? CreateCompatibleDC(nullptr) : nullptr;
  if (dc == nullptr) return false;
  Close();
  SelectObject(dc, bitmap.Handle());
  SetStretchBltMode(dc, HALFTONE);
  dc_ = dc;
  bitmap_ = std::move(bitmap);
  return true;
}

int DeviceContext::SetSize(CTCall* call) {
  return RunMember(call, 2, [&](MemberArguments& args) {
    const int width = args.Int(0);
    if (!Resize(width, args.Int(1))) throw MemberFailure{status::kBadValue};
  });
}

int DeviceContext::GetWidth(CTCall* call) {
  return RunMember(call, 0, [&](MemberArguments& args) { args.Return(bitmap_.Width()); });
}

int DeviceContext::GetHeight(CTCall* call) {
  return RunMember(call, 0, [&](MemberArguments& args) { args.Return(bitmap_.Height()); });
}

int DeviceContext::Clear(CTCall* call) {
  return RunMember(call, 1, [&](MemberArguments& args) {
    const auto color = static_cast<std::uint32_t>(args.Int(0)) & 0xFFFFFF;
    if (bitmap_) std::fill_n(bitmap_.Pixels(), PixelCount(bitmap_), color);
  });
}

int DeviceContext::Line(CTCall* call) {
  return RunMember(call, 6, [&](MemberArguments& args) {
    const POINT from = {args.Int(0), args.Int(1)}, to = {args.Int(2), args.Int(3)};
    const int color = args.Int(4), width = args.Int(5);
    if (dc_ == nullptr) return;
    const SelectedPen pen(dc_, color, width);
    MoveToEx(dc_, from.x, from.y, nullptr);
    LineTo(dc_, to.x, to.y);
  });
}

int DeviceContext::GetPixel(CTCall* call) {
  return RunMember(call, 2, [&](MemberArguments& args) {
    const int x = args.Int(0), y = args.Int(1);
    const bool inside = x >= 0 && y >= 0 && x < bitmap_.Width() && y < bitmap_.Height();
    const std::size_t at = inside ? std::size_t{1} * y * bitmap_.Width() + x : 0;
    args.Return(inside ? static_cast<int>(bitmap_.Pixels()[at] & 0xFFFFFF) : -1);
  });
}

int DeviceContext::Save(CTCall* call) {
  return RunMember(call, 1, [&](MemberArguments& args) {
    args.Return(WritePngFile(args.Text(0).c_str(), bitmap_) ? 1 : 0);
  });
}

SelectedPen::SelectedPen(HDC dc, int color, int width) : dc_(dc) {
  constexpr int kMostWidth = 1000;
  const COLORREF color_ref = RGB(color >> 16 & 0xFF, color >> 8 & 0xFF, color & 0xFF);
  pen_ = CreatePen(PS_SOLID, std::clamp(width, 1, kMostWidth), color_ref);
  previous_ = SelectObject(dc_, pen_);
}

SelectedPen::~SelectedPen() {
  SelectObject(dc_, previous_);
  DeleteObject(pen_);
}

}  // namespace vela::host
