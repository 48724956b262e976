// The picture object over a drawing's handle.
#if !defined(_WIN32)

#include <algorithm>
#include <atomic>
#include <cmath>
#include <new>
#include <optional>
#include <utility>

#include "platform/picture/drawing_objects.h"

namespace vela::picture {
namespace {

OLE_HANDLE OleHandle(const void* handle) {
  return static_cast<OLE_HANDLE>(reinterpret_cast<std::uintptr_t>(handle));
}

// A drawing that is played or copied: the rectangle of the surface that is the whole picture.
struct Content {
  std::shared_ptr<DrawingObject> keep;
  cairo_surface_t* surface = nullptr;
  double left = 0, top = 0, width = 0, height = 0;
};

Content ContentOf(std::shared_ptr<DrawingObject> object, const Surface& image) {
  cairo_surface_t* const surface = image.get();
  const double width = cairo_image_surface_get_width(surface);
  const double height = cairo_image_surface_get_height(surface);
  return {std::move(object), surface, 0, 0, width, height};
}

std::optional<Content> FindContent(int type, const void* handle) {
  if (type == PICTYPE_BITMAP) {
    if (auto bitmap = Find<Bitmap>(handle)) return ContentOf(bitmap, bitmap->surface);
  } else if (type == PICTYPE_ICON) {
    if (auto icon = Find<Icon>(handle)) return ContentOf(icon, icon->surface);
  } else {
    const DWORD kind = type == PICTYPE_METAFILE ? OBJ_METAFILE : OBJ_ENHMETAFILE;
    const auto metafile = Find<Metafile>(handle);
    if (metafile != nullptr && metafile->kind == kind) {
      return Content{metafile,      metafile->surface.get(), metafile->left,
                     metafile->top, metafile->width,         metafile->height};
    }
  }
  return std::nullopt;
}

LONG Rounded(double himetric) { return static_cast<LONG>(std::lround(himetric)); }

// Two interfaces of one object, which dies with the last reference to either.
class Picture final : public IPicture, public IPictureDisp {
 public:
  Picture() = default;

  // False when the description names nothing to show.
  bool Describe(const PICTDESC& description) {
    type_ = static_cast<SHORT>(description.picType);
    switch (type_) {
      case PICTYPE_NONE:
        return true;
      case PICTYPE_BITMAP:
        return Take(description.bmp.hbitmap);
      case PICTYPE_ICON:
        return Take(description.icon.hicon);
      case PICTYPE_METAFILE:
        if (!Take(description.wmf.hmeta)) return false;
        width_ = description.wmf.xExt;
        height_ = description.wmf.yExt;
        return true;
      default:
        return Take(description.emf.hemf);
    }
  }
  // From here on the drawing is deleted with the picture.
  void Own() { owns_ = true; }

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    if (iid == IID_IUnknown || iid == IID_IPicture) {
      *object = static_cast<IPicture*>(this);
    } else if (iid == IID_IDispatch || iid == IID_IPictureDisp) {
      *object = static_cast<IPictureDisp*>(this);
    } else {
      *object = nullptr;
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++references_; }
  ULONG Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  HRESULT get_Handle(OLE_HANDLE* handle) override { return Get(handle, OleHandle(handle_)); }
  HRESULT get_hPal(OLE_HANDLE* palette) override {
    if (palette == nullptr) return E_POINTER;
    return type_ == PICTYPE_BITMAP ? Get(palette, OLE_HANDLE{0}) : E_FAIL;
  }
  HRESULT get_Type(SHORT* type) override { return Get(type, type_); }
  HRESULT get_Width(OLE_XSIZE_HIMETRIC* width) override { return Get(width, width_); }
  HRESULT get_Height(OLE_YSIZE_HIMETRIC* height) override { return Get(height, height_); }
  HRESULT Render(HDC dc, LONG x, LONG y, LONG cx, LONG cy, OLE_XPOS_HIMETRIC x_source,
                 OLE_YPOS_HIMETRIC y_source, OLE_XSIZE_HIMETRIC cx_source,
                 OLE_YSIZE_HIMETRIC cy_source, LPCRECT bounds) override;
  HRESULT set_hPal(OLE_HANDLE) override { return E_NOTIMPL; }
  HRESULT get_CurDC(HDC* dc) override { return Get(dc, HDC{}); }
  HRESULT SelectPicture(HDC, HDC*, OLE_HANDLE*) override { return E_NOTIMPL; }
  HRESULT get_KeepOriginalFormat(BOOL* keep) override { return Get(keep, keep_format_); }
  HRESULT put_KeepOriginalFormat(BOOL keep) override {
    keep_format_ = keep;
    return S_OK;
  }
  HRESULT PictureChanged() override { return S_OK; }
  HRESULT SaveAsFile(IStream*, BOOL, LONG*) override { return E_NOTIMPL; }
  HRESULT get_Attributes(DWORD* attributes) override {
    DWORD value = 0;
    if (type_ == PICTYPE_METAFILE || type_ == PICTYPE_ENHMETAFILE) value = PICTURE_SCALABLE;
    if (value != 0 || type_ == PICTYPE_ICON) value |= PICTURE_TRANSPARENT;
    return Get(attributes, value);
  }

  HRESULT GetTypeInfoCount(UINT* count) override { return Get(count, UINT{0}); }
  HRESULT GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                        DISPID* ids) override;
  HRESULT Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* parameters,
                 VARIANT* result, EXCEPINFO* exception, UINT* argument_error) override;

 private:
  ~Picture() {
    if (!owns_) return;
    DeleteObject(handle_);
    DestroyIcon(static_cast<HICON>(handle_));
    DeleteMetaFile(static_cast<HMETAFILE>(handle_));
    DeleteEnhMetaFile(static_cast<HENHMETAFILE>(handle_));
  }

  bool Take(void* handle) {
    const auto content = FindContent(type_, handle);
    if (!content) return false;
    handle_ = handle;
    width_ = Rounded(content->width * 2540 / 96);
    height_ = Rounded(content->height * 2540 / 96);
    return true;
  }

  template <class T>
  static HRESULT Get(T* out, T value) {
    if (out == nullptr) return E_POINTER;
    *out = value;
    return S_OK;
  }

  std::atomic<ULONG> references_ = 1;
  SHORT type_ = PICTYPE_UNINITIALIZED;
  bool owns_ = false;
  BOOL keep_format_ = 1;
  LONG width_ = 0;
  LONG height_ = 0;
  void* handle_ = nullptr;
};

// Where an image becomes smaller, its pixels may be averaged; at its edges there is nothing to
// average them with.
void SetFilter(cairo_t* cairo, int stretch_mode) {
  cairo_pattern_t* const source = cairo_get_source(cairo);
  double x = 1, y = 1;
  cairo_user_to_device_distance(cairo, &x, &y);
  const bool is_smaller = std::fabs(x) < 1 || std::fabs(y) < 1;
  cairo_surface_t* surface = nullptr;
  cairo_pattern_get_surface(source, &surface);
  const bool is_image = cairo_surface_get_type(surface) == CAIRO_SURFACE_TYPE_IMAGE;
  const bool averages = is_smaller && stretch_mode == HALFTONE;
  cairo_pattern_set_filter(source, averages ? CAIRO_FILTER_GOOD : CAIRO_FILTER_NEAREST);
  if (is_image) cairo_pattern_set_extend(source, CAIRO_EXTEND_PAD);
}

HRESULT Picture::Render(HDC handle, LONG x, LONG y, LONG cx, LONG cy, OLE_XPOS_HIMETRIC x_source,
                        OLE_YPOS_HIMETRIC y_source, OLE_XSIZE_HIMETRIC cx_source,
                        OLE_YSIZE_HIMETRIC cy_source, LPCRECT) try {
  if (cx == 0 || cy == 0 || cx_source == 0 || cy_source == 0) return CTL_E_INVALIDPROPERTYVALUE;
  if (handle_ == nullptr) return S_OK;
  std::optional<Content> content = FindContent(type_, handle_);
  const auto dc = Find<DeviceContext>(handle);
  if (!content || dc == nullptr || dc->context == nullptr) return E_FAIL;
  if (content->width == 0 || content->height == 0) {
    content->width = width_;
    content->height = height_;
  }
  if (content->width == 0 || content->height == 0) return E_FAIL;

  // A context of its own: one that an impossible size has put out of order stays so.
  ReadAgain(cairo_get_target(dc->context.get()));
  const Context context(cairo_create(cairo_get_target(dc->context.get())));
  cairo_t* const cairo = context.get();
  cairo_rectangle(cairo, x, y, cx, cy);
  cairo_clip(cairo);
  // From the picture's HIMETRIC to the rectangle, then from the drawing to HIMETRIC.
  cairo_translate(cairo, x, y);
  cairo_scale(cairo, static_cast<double>(cx) / cx_source, static_cast<double>(cy) / cy_source);
  cairo_translate(cairo, -static_cast<double>(x_source), height_ - static_cast<double>(y_source));
  cairo_scale(cairo, width_ / content->width, -height_ / content->height);
  cairo_translate(cairo, -content->left, -content->top);
  cairo_rectangle(cairo, content->left, content->top, content->width, content->height);
  cairo_clip(cairo);
  ReadAgain(content->surface);
  cairo_set_source_surface(cairo, content->surface, 0, 0);
  SetFilter(cairo, dc->stretch_mode);
  cairo_paint(cairo);
  cairo_surface_flush(cairo_get_target(cairo));
  return cairo_status(cairo) == CAIRO_STATUS_SUCCESS ? S_OK : E_FAIL;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

struct PropertyName {
  const char16_t* name;  // in lower case
  DISPID id;
};
constexpr PropertyName kProperties[] = {{u"handle", DISPID_PICT_HANDLE},
                                        {u"hpal", DISPID_PICT_HPAL},
                                        {u"type", DISPID_PICT_TYPE},
                                        {u"width", DISPID_PICT_WIDTH},
                                        {u"height", DISPID_PICT_HEIGHT}};

bool IsName(const OLECHAR* text, const char16_t* lower) {
  const auto fold = [](char16_t c) -> char16_t { return c >= u'A' && c <= u'Z' ? c + 32 : c; };
  for (; *lower != 0 && fold(*text) == *lower; ++text) ++lower;
  return *lower == 0 && *text == 0;
}

HRESULT Picture::GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
  if (reserved != IID_NULL) return DISP_E_UNKNOWNNAME;
  std::fill_n(ids, count, DISPID_UNKNOWN);
  for (const PropertyName& property : kProperties) {
    if (names[0] != nullptr && IsName(names[0], property.name)) ids[0] = property.id;
  }
  // Names behind the first are of arguments, which properties have not.
  return count == 1 && ids[0] != DISPID_UNKNOWN ? S_OK : DISP_E_UNKNOWNNAME;
}

HRESULT Picture::Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                        VARIANT* result, EXCEPINFO*, UINT*) {
  if ((flags & DISPATCH_PROPERTYGET) == 0) return DISP_E_MEMBERNOTFOUND;
  if (parameters == nullptr || parameters->cArgs != 0) return E_INVALIDARG;
  if (result == nullptr) return S_OK;
  VARIANT value;
  VariantInit(&value);
  value.vt = VT_I4;
  HRESULT code = S_OK;
  switch (member) {
    case DISPID_PICT_HANDLE:
      code = get_Handle(&value.uintVal);
      break;
    case DISPID_PICT_HPAL:
      code = get_hPal(&value.uintVal);
      break;
    case DISPID_PICT_TYPE:
      value.vt = VT_I2;
      code = get_Type(&value.iVal);
      break;
    case DISPID_PICT_WIDTH:
      code = get_Width(&value.lVal);
      break;
    case DISPID_PICT_HEIGHT:
      code = get_Height(&value.lVal);
      break;
    default:
      return DISP_E_MEMBERNOTFOUND;
  }
  if (SUCCEEDED(code)) *result = value;
  return code;
}

}  // namespace
}  // namespace vela::picture

HRESULT OleCreatePictureIndirect(PICTDESC* description, REFIID iid, BOOL own, void** picture) {
  if (picture == nullptr) return E_POINTER;
  *picture = nullptr;
  if (description != nullptr && (description->cbSizeofstruct != sizeof(PICTDESC) ||
                                 description->picType > UINT{PICTYPE_ENHMETAFILE})) {
    return E_INVALIDARG;
  }
  auto* const made = new (std::nothrow) vela::picture::Picture;
  if (made == nullptr) return E_OUTOFMEMORY;
  HRESULT result = E_INVALIDARG;
  if (description == nullptr || made->Describe(*description)) {
    result = made->QueryInterface(iid, picture);
    if (SUCCEEDED(result) && own != 0) made->Own();
  }
  made->Release();
  return result;
}

#endif
