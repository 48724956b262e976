#include "host/picture/picture_functions.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "host/call_frame.h"
#include "host/picture/device_context.h"
#include "host/picture/grey_values.h"
#include "host/picture/line_drawing.h"

namespace vela::host {
namespace {

const CClassMember kFunctionMembers[] = {
    HostMember("PictureFromMatrix", &PictureFunctions::PictureFromMatrix),
    HostMember("MatrixFromPicture", &PictureFunctions::MatrixFromPicture),
    HostMember("BitmapFromMatrix", &PictureFunctions::BitmapFromMatrix),
    HostMember("IconFromMatrix", &PictureFunctions::IconFromMatrix),
    HostMember("MetafileFromLines", &PictureFunctions::MetafileFromLines),
    HostMember("EnhMetafileFromLines", &PictureFunctions::EnhMetafileFromLines),
    HostMember("DeleteHandle", &PictureFunctions::DeleteHandle),
    {},
};

// Bytes as an argument: a handle, or a rectangle.
template <class T>
class RawArgument final : public CScriptVelaObject {
 public:
  explicit RawArgument(const T& value) : value_(value) {}
  unsigned GetBufferSize(const MSOINDICES*) override { return sizeof value_; }
  int GetBufferMSO(const MSOINDICES*, void** buffer) override {
    *buffer = &value_;
    return status::kOk;
  }

 private:
  T value_;
};

// Calls a member by name and gives its result.
int CallMember(const tagMSOOBJVECT& object, const char* name, CallFrame& frame) {
  frame.GetIndeces() = object.indices;
  CTypeBase* owner = object.object;
  const CClassMember* const row = object.object->FindMember(name, 0, &owner, 0);
  Check(row == nullptr ? int{status::kUnsupported} : owner->DoMethod(row->GetHandler(), &frame));
  return static_cast<int>(frame.ResultInt());
}

int Ask(const tagMSOOBJVECT& object, const char* name) {
  CallFrame frame;
  return CallMember(object, name, frame);
}

tagMSOOBJVECT PictureArgument(MemberArguments& args, unsigned arg) {
  tagMSOOBJVECT picture = args.Object(arg);
  if (picture.type_word != kTypePicture) throw MemberFailure{status::kBadArguments};
  return picture;
}

int PixelsOf(int himetric) { return static_cast<int>((std::int64_t{himetric} * 96 + 1270) / 2540); }

auto HandleNumber(void* handle) {
  return static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(handle));
}

}  // namespace

PictureFunctions::PictureFunctions() = default;

const CClassMember* PictureFunctions::FindMember(const char* name, unsigned name_hash,
                                                 CTypeBase** owner, unsigned flags) {
  const CClassMember* row = FindMemberInTable(name, name_hash, kFunctionMembers, owner, flags);
  return row != nullptr ? row : TesselCObject::FindMember(name, name_hash, owner, flags);
}

int PictureFunctions::PictureFromMatrix(CTCall* call) {
  return RunMember(call, 4, [](MemberArguments& args) {
    const tagMSOOBJVECT picture = PictureArgument(args, 0);
    const tagMSOOBJVECT matrix = RealContainer(args, 1, kFlagAnyMatrix);
    const double black = args.Double(2), white = args.Double(3);
    Bitmap bitmap = GreyBitmap(MatrixValues(matrix), black, white);
    CallFrame frame;
    RawArgument handle(bitmap.Handle());
    frame.AddObject(&handle);
    frame.AddInt(1);
    const int made = CallMember(picture, "CreateFromBitmap", frame);
    if (made != 0) bitmap.Detach();  // it is the picture's
    args.Return(made);
  });
}

int PictureFunctions::MatrixFromPicture(CTCall* call) {
  return RunMember(call, 2, [](MemberArguments& args) {
    const tagMSOOBJVECT matrix = RealContainer(args, 0, kFlagAnyMatrix);
    const tagMSOOBJVECT picture = PictureArgument(args, 1);
    const int width = PixelsOf(Ask(picture, "GetWidth"));
    const int height = PixelsOf(Ask(picture, "GetHeight"));
    DeviceContext device;
    if (!device.Resize(width, height)) return args.Return(0);
    RawArgument whole(RECT{0, 0, width, height});
    CallFrame frame;
    frame.AddObject(&device);
    frame.AddObject(&whole);
    frame.AddObject(&whole);
    CallMember(picture, "Render", frame);
    Check(matrix.object->SetMatrixDimension(height, width, &matrix.indices));
    const LentDoubles values(matrix);
    const std::size_t count =
        std::size_t{1} * static_cast<unsigned>(width) * static_cast<unsigned>(height);
    std::transform(device.Image().Pixels(), device.Image().Pixels() + count, values.Get(),
                   LightnessOf);
    args.Return(1);
  });
}

int PictureFunctions::BitmapFromMatrix(CTCall* call) {
  return RunMember(call, 1, [](MemberArguments& args) {
    const tagMSOOBJVECT matrix = RealContainer(args, 0, kFlagAnyMatrix);
    args.Return(HandleNumber(GreyBitmap(MatrixValues(matrix), 0, 255).Detach()));
  });
}

int PictureFunctions::IconFromMatrix(CTCall* call) {
  return RunMember(call, 1, [](MemberArguments& args) {
    const tagMSOOBJVECT matrix = RealContainer(args, 0, kFlagAnyMatrix);
    const MatrixValues values(matrix);
    const Bitmap color = GreyBitmap(values, 0, 255);
    if (!color) return args.Return(HandleNumber(nullptr));
    // Systems differ in whether they go by the alpha or by the mask: here they say the same.
    const auto all = values.All();
    std::transform(
        all.begin(), all.end(), color.Pixels(), color.Pixels(),
        [](double value, std::uint32_t pixel) { return IsShown(value) ? 0xFF000000 | pixel : 0; });
    const HBITMAP mask = MissingMask(values);
    ICONINFO icon = {};
    icon.fIcon = 1;
    icon.hbmMask = mask;
    icon.hbmColor = color.Handle();
    args.Return(HandleNumber(CreateIconIndirect(&icon)));
    DeleteObject(mask);
  });
}

int PictureFunctions::MetafileFromLines(CTCall* call) {
  return RunMember(call, 4, [](MemberArguments& args) {
    const LineDrawing drawing(args);
    const HDC dc = CreateMetaFileW(nullptr);
    SetMapMode(dc, MM_ANISOTROPIC);
    SetWindowExtEx(dc, drawing.width, drawing.height, nullptr);
    drawing.Draw(dc);
    args.Return(HandleNumber(CloseMetaFile(dc)));
  });
}

int PictureFunctions::EnhMetafileFromLines(CTCall* call) {
  return RunMember(call, 4, [](MemberArguments& args) {
    const LineDrawing drawing(args);
    // What it is drawn in are pixels of the display, which has a size of its own.
    const HDC display = CreateCompatibleDC(nullptr);
    const auto extent = [&](int pixels, int size, int resolution) {
      const double millimetres = GetDeviceCaps(display, size);
      return static_cast<LONG>(
          std::lround(pixels * millimetres * 100 / GetDeviceCaps(display, resolution)));
    };
    const RECT frame = {0, 0, extent(drawing.width, HORZSIZE, HORZRES),
                        extent(drawing.height, VERTSIZE, VERTRES)};
    const HDC dc = CreateEnhMetaFileW(display, nullptr, &frame, nullptr);
    DeleteDC(display);
    drawing.Draw(dc);
    args.Return(HandleNumber(CloseEnhMetaFile(dc)));
  });
}

int PictureFunctions::DeleteHandle(CTCall* call) {
  return RunMember(call, 1, [](MemberArguments& args) {
    void* const handle = args.Raw<void*>(0);
    switch (GetObjectType(handle)) {
      case OBJ_BITMAP:
        return args.Return(DeleteObject(handle) != 0 ? 1 : 0);
      case OBJ_METAFILE:
        return args.Return(DeleteMetaFile(static_cast<HMETAFILE>(handle)) != 0 ? 1 : 0);
      case OBJ_ENHMETAFILE:
        return args.Return(DeleteEnhMetaFile(static_cast<HENHMETAFILE>(handle)) != 0 ? 1 : 0);
      default:
        return args.Return(DestroyIcon(static_cast<HICON>(handle)) != 0 ? 1 : 0);
    }
  });
}

}  // namespace vela::host
