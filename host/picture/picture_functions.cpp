#include "host/picture/picture_functions.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "frame/interface/missing_value.h"
#include "host/call_frame.h"
#include "host/member_arguments.h"
#include "host/picture/device_context.h"
#include "host/picture/image_codec.h"

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

// The elements of a container as doubles; what is written to them goes back into it.
class LentDoubles {
 public:
  explicit LentDoubles(const tagMSOOBJVECT& container) : container_(container) {
    Check(container_.object->GetBufferMSOEx(&container_.indices, kTypeDouble, &buffer_));
  }
  ~LentDoubles() { container_.object->ReleaseBufferMSO(&container_.indices, buffer_); }
  LentDoubles(const LentDoubles&) = delete;
  LentDoubles& operator=(const LentDoubles&) = delete;
  double* Get() const { return static_cast<double*>(buffer_); }

 private:
  const tagMSOOBJVECT& container_;
  void* buffer_ = nullptr;
};

tagMSOOBJVECT RealContainer(MemberArguments& args, unsigned arg, unsigned flags) {
  tagMSOOBJVECT container = args.Object(arg);
  const bool real = (container.type_word & kTypeIdMask) != kTypeComplex;
  if ((container.type_word & flags) == 0 || !real) throw MemberFailure{status::kBadArguments};
  return container;
}

tagMSOOBJVECT PictureArgument(MemberArguments& args, unsigned arg) {
  tagMSOOBJVECT picture = args.Object(arg);
  if (picture.type_word != kTypePicture) throw MemberFailure{status::kBadArguments};
  return picture;
}

// The values of a matrix, with its shape.
struct Values {
  explicit Values(const tagMSOOBJVECT& matrix) {
    const auto* const at = &matrix.indices;
    if (matrix.object->GetMatrixDimensions(&rows, &cols, at) == 0 || !IsImageSize(cols, rows)) {
      throw MemberFailure{status::kBadValue};
    }
    lent.emplace(matrix);
  }
  std::span<const double> All() const {
    return {lent->Get(), static_cast<std::size_t>(rows) * static_cast<unsigned>(cols)};
  }
  int rows = 0, cols = 0;
  std::optional<LentDoubles> lent;
};

bool IsShown(double value) { return value != kMissingValue && !std::isnan(value); }

// The grey between black and white, 0 .. 255, that a value stands for.
std::uint32_t GreyOf(double value, double black, double white) {
  if (!IsShown(value)) return 0;
  if (black == white) return value < white ? 0 : 255;
  const double scaled = (value - black) / (white - black) * 255;
  return static_cast<std::uint32_t>(std::clamp(std::floor(scaled + 0.5), 0.0, 255.0));
}

std::uint32_t GreyPixel(std::uint32_t grey) { return grey << 16 | grey << 8 | grey; }

// How light a pixel is, in thousandths of the parts of red, green and blue.
double LightnessOf(std::uint32_t pixel) {
  const std::uint32_t red = pixel >> 16 & 0xFF, green = pixel >> 8 & 0xFF, blue = pixel & 0xFF;
  return (299 * red + 587 * green + 114 * blue + 500) / 1000;
}

Bitmap GreyBitmap(const Values& values, double black, double white) {
  Bitmap bitmap(values.cols, values.rows);
  if (!bitmap) return bitmap;
  std::ranges::transform(values.All(), bitmap.Pixels(),
                         [=](double value) { return GreyPixel(GreyOf(value, black, white)); });
  return bitmap;
}

// One bit per value, set where it is missing, in rows of whole 16-bit words.
HBITMAP MissingMask(const Values& values) {
  const std::size_t stride = (static_cast<std::size_t>(values.cols) + 15) / 16 * 2;
  std::vector<unsigned char> bits(stride * static_cast<unsigned>(values.rows));
  const double* value = values.All().data();
  for (int row = 0; row < values.rows; ++row) {
    for (int col = 0; col < values.cols; ++col) {
      if (IsShown(*value++)) continue;
      bits[static_cast<unsigned>(row) * stride + static_cast<unsigned>(col) / 8] |=
          static_cast<unsigned char>(0x80 >> col % 8);
    }
  }
  return CreateBitmap(values.cols, values.rows, 1, 1, bits.data());
}

int PixelsOf(int himetric) { return static_cast<int>((std::int64_t{himetric} * 96 + 1270) / 2540); }

auto HandleNumber(void* handle) {
  return static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(handle));
}

struct LinePlan {
  explicit LinePlan(MemberArguments& args)
      : x(RealContainer(args, 0, kFlagAnyVector)), y(RealContainer(args, 1, kFlagAnyVector)) {
    width = args.Int(2);
    height = args.Int(3);
    int last_x = -1, last_y = -1;
    Check(x.object->GetUpperBound(&x.indices, last_x));
    Check(y.object->GetUpperBound(&y.indices, last_y));
    count = std::min(last_x, last_y) + 1;
    if (last_x != last_y || !IsImageSize(width, height)) throw MemberFailure{status::kBadValue};
  }
  // Draws the lines that the points make.
  void Draw(HDC dc) const {
    if (count == 0) return;
    const SelectedPen pen(dc, 0, 1);
    const LentDoubles all_x(x), all_y(y);
    bool is_drawing = false;
    for (int i = 0; i < count; ++i) {
      const double at_x = all_x.Get()[i], at_y = all_y.Get()[i];
      const bool is_point = IsShown(at_x) && IsShown(at_y);
      if (is_point && is_drawing) LineTo(dc, Coordinate(at_x), Coordinate(at_y));
      if (is_point && !is_drawing) MoveToEx(dc, Coordinate(at_x), Coordinate(at_y), nullptr);
      is_drawing = is_point;
    }
  }
  static int Coordinate(double value) {
    constexpr double kMost = 32767;  // as far as metafiles go
    return static_cast<int>(std::floor(std::clamp(value, -kMost, kMost) + 0.5));
  }

  tagMSOOBJVECT x, y;
  int width = 0, height = 0, count = 0;
};

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
    Bitmap bitmap = GreyBitmap(Values(matrix), black, white);
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
    args.Return(HandleNumber(GreyBitmap(Values(matrix), 0, 255).Detach()));
  });
}

int PictureFunctions::IconFromMatrix(CTCall* call) {
  return RunMember(call, 1, [](MemberArguments& args) {
    const tagMSOOBJVECT matrix = RealContainer(args, 0, kFlagAnyMatrix);
    const Values values(matrix);
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
    const LinePlan plan(args);
    const HDC dc = CreateMetaFileW(nullptr);
    SetMapMode(dc, MM_ANISOTROPIC);
    SetWindowExtEx(dc, plan.width, plan.height, nullptr);
    plan.Draw(dc);
    args.Return(HandleNumber(CloseMetaFile(dc)));
  });
}

int PictureFunctions::EnhMetafileFromLines(CTCall* call) {
  return RunMember(call, 4, [](MemberArguments& args) {
    const LinePlan plan(args);
    // What it is drawn in are pixels of the display, which has a size of its own.
    const HDC display = CreateCompatibleDC(nullptr);
    const auto extent = [&](int pixels, int size, int resolution) {
      const double millimetres = GetDeviceCaps(display, size);
      return static_cast<LONG>(
          std::lround(pixels * millimetres * 100 / GetDeviceCaps(display, resolution)));
    };
    const RECT frame = {0, 0, extent(plan.width, HORZSIZE, HORZRES),
                        extent(plan.height, VERTSIZE, VERTRES)};
    const HDC dc = CreateEnhMetaFileW(display, nullptr, &frame, nullptr);
    DeleteDC(display);
    plan.Draw(dc);
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
