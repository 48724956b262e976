// Pictures through the factory and a frame, on the host's own device context.
#include "platform/picture.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "host/picture/device_context.h"
#include "host/picture/picture_functions.h"
#include "matrix_fixture.h"

namespace vela::testing {
namespace {

namespace fs = std::filesystem;

const ObjectRef& Functions() {
  static const ObjectRef functions(new host::PictureFunctions);
  return functions;
}

// A handle as a script keeps it.
ObjectRef Handle(std::uint64_t value) { return ScalarOf<std::uint64_t>(value); }
ObjectRef NewHandle(const char* maker) {
  if (std::string_view(maker).ends_with("Lines")) {
    const ObjectRef points = VectorOf<double>({0, 10});
    return Handle(
        static_cast<std::uint64_t>(Call(Functions(), maker, points, points, 12, 10).integer));
  }
  return Handle(static_cast<std::uint64_t>(
      Call(Functions(), maker, MatrixOf<double>({{0, 50, 100}, {150, 200, 250}})).integer));
}
bool Delete(const ObjectRef& handle) {
  return Call(Functions(), "DeleteHandle", handle).Int() == 1;
}

int Width(const ObjectRef& picture, const MSOINDICES& at = {}) {
  return CallAt(picture, at, "GetWidth").Int();
}

// References to a picture beside the one that asks.
ULONG ReferencesTo(const ObjectRef& picture) {
  IPicture* const held =
      *static_cast<IPicture**>(picture->GetArgObjectPtrMSO(nullptr, kTypePicture));
  held->AddRef();
  return held->Release();
}

ObjectRef NewPicture() {
  ObjectRef picture = Make(kTypePicture);
  EXPECT_EQ(Call(picture, "CreateFromBitmap", NewHandle("BitmapFromMatrix"), 1).Int(), 1);
  return picture;
}

int Assign(const ObjectRef& to, const ObjectRef& from, const MSOINDICES* at = nullptr) {
  return to->Operate2(at, operation::kAssign, {from.Get(), from->GetTypeID(), MSOINDICES{}}, 0);
}

constexpr MSOINDICES kInvalid = {2, 0, 0, 0};

struct Kind {
  const char* member;
  const char* maker;
};
constexpr Kind kKinds[] = {{"CreateFromBitmap", "BitmapFromMatrix"},
                           {"CreateFromIcon", "IconFromMatrix"},
                           {"CreateFromEnhMetafile", "EnhMetafileFromLines"},
                           {"CreateFromMetafile", "MetafileFromLines"}};

Result Create(const ObjectRef& picture, const Kind& kind, const ObjectRef& handle, int own) {
  if (std::string_view(kind.member) != "CreateFromMetafile") {
    return Call(picture, kind.member, handle, own);
  }
  return Call(picture, kind.member, handle, 300, 200, own);
}

TEST(Picture, OwnsWhatItIsToldToOwn) {
  for (const Kind& kind : kKinds) {
    SCOPED_TRACE(kind.member);
    const ObjectRef picture = Make(kTypePicture);
    for (const int own : {0, 1}) {
      const ObjectRef handle = NewHandle(kind.maker);
      EXPECT_EQ(Create(picture, kind, handle, own).Int(), 1);
      EXPECT_EQ(picture->IsValidElement(nullptr), 1);
      EXPECT_EQ(picture->ResetValue(), 0);
      EXPECT_EQ(Delete(handle), own == 0);
    }
    // No such drawing, and one of another kind: the old picture is gone all the same.
    const Kind& other = kKinds[&kind == kKinds ? 1 : 0];
    for (const ObjectRef& bad : {Handle(0), Handle(~0ull), NewHandle(other.maker)}) {
      EXPECT_EQ(Create(picture, kind, NewHandle(kind.maker), 1).Int(), 1);
      EXPECT_EQ(Create(picture, kind, bad, 1).Int(), 0);
      EXPECT_EQ(picture->IsValidElement(nullptr), 0);
      Delete(bad);
    }
    EXPECT_EQ(Create(picture, kind, ScalarOf(5), 0).status, status::kBadArguments) << "4 bytes";
  }
}

TEST(Picture, TellsItsSize) {
  const ObjectRef picture = NewPicture();
  EXPECT_EQ(Width(picture), 79);  // 3 pixels at 96 per inch
  EXPECT_EQ(Call(picture, "GetHeight").Int(), 53);
  const ObjectRef metafile = NewHandle("MetafileFromLines");
  EXPECT_EQ(Call(picture, "CreateFromMetafile", metafile, 1234, 567, 1).Int(), 1);
  EXPECT_EQ(Width(picture), 1234);
  EXPECT_EQ(Call(picture, "GetHeight").Int(), 567);
  EXPECT_EQ(Call(picture, "GetHeight", 1).status, status::kBadArguments);
  CStringUTF8 text;
  EXPECT_EQ(picture->GetWrpperObjectDisplayInfo(text, nullptr), 0);
  EXPECT_TRUE(std::string(text.View()).starts_with("IPP=0x")) << text.View();

  const ObjectRef empty = Make(kTypePicture);
  EXPECT_EQ(Width(empty), -1);
  EXPECT_EQ(empty->GetWrpperObjectDisplayInfo(text, nullptr), 0);
  EXPECT_EQ(text.View(), "");
}

TEST(Picture, SlotsAndBadOnes) {
  const ObjectRef pictures = Make(kTypePicture, 3);
  const ObjectRef bitmap = NewHandle("BitmapFromMatrix");
  const MSOINDICES last = MSOINDICES::Object(2);
  EXPECT_EQ(CallAt(pictures, last, "CreateFromBitmap", bitmap, 0).Int(), 1);
  EXPECT_EQ(Width(pictures), -1);
  EXPECT_EQ(Width(pictures, last), 79);
  for (const int outside : {3, -1, 2147483647}) {
    const MSOINDICES at = MSOINDICES::Object(outside);
    EXPECT_EQ(CallAt(pictures, at, "CreateFromBitmap", bitmap, 0).Int(), 1);
    EXPECT_EQ(Width(pictures, at), -1) << "what was stored there is gone";
    EXPECT_EQ(pictures->IsValidElement(&at), 0);
    EXPECT_EQ(Assign(pictures, NewPicture(), &at), 0);
  }
  for (const char* name : {"Render", "Load", "GetWidth", "CreateFromIcon"}) {
    EXPECT_EQ(CallAt(pictures, kInvalid, name, 1).status, status::kBadIndex) << name;
  }
  EXPECT_EQ(Assign(pictures, NewPicture(), &kInvalid), status::kBadIndex);
  EXPECT_EQ(pictures->GetArgObjectPtrMSO(&last, kTypeInt), nullptr);
  EXPECT_EQ(pictures->GetArgObjectPtrMSO(&last, 0),
            static_cast<IPicture**>(pictures->GetArgObjectPtrMSO(nullptr, kTypePicture)) + 2);
  const ObjectRef copy(pictures->CreateCopy());
  EXPECT_EQ(Width(copy, last), 79);
  EXPECT_EQ(pictures->ResetValue(), 0);
  EXPECT_EQ(Width(pictures, last), -1);
  EXPECT_EQ(Width(copy, last), 79);
  Delete(bitmap);
}

TEST(Picture, AssignmentCountsReferences) {
  const ObjectRef source = NewPicture();
  const ObjectRef target = NewPicture();
  EXPECT_EQ(Assign(target, source), 0);
  EXPECT_EQ(ReferencesTo(source), 2u);
  EXPECT_EQ(Assign(target, target), 0);
  EXPECT_EQ(ReferencesTo(source), 2u);
  EXPECT_EQ(Assign(target, Make(kTypePicture)), 0);
  EXPECT_EQ(ReferencesTo(source), 1u);
  EXPECT_EQ(Width(target), -1);
  EXPECT_EQ(Assign(target, ScalarOf(1)), status::kNotOnRow);
  for (const unsigned op : {operation::kAdd, operation::kAssign | operation::kPlainOperand}) {
    EXPECT_EQ(target->Operate2(nullptr, op, tagMSOOBJVECT::Plain(1.0, kTypeInt), 0),
              status::kNotOnRow);
  }
  void* const pointer = *static_cast<void**>(source->GetArgObjectPtrMSO(nullptr, kTypePicture));
  for (int twice = 0; twice < 2; ++twice) {
    EXPECT_EQ(target->SetValueFromDWORD(reinterpret_cast<std::uintptr_t>(pointer)), 0);
    EXPECT_EQ(ReferencesTo(source), 2u);
  }
}

TEST(Picture, TravelsInAutomationValues) {
  ObjectRef source = NewPicture();
  const ObjectRef target = Make(kTypePicture);
  const ObjectRef variant = Make(kTypeVariant);
  VARIANT& value = *variant->GetVariantAddress(nullptr);
  EXPECT_EQ(Assign(target, variant), status::kNotOnRow) << "no object in it";
  EXPECT_EQ(target->GetNumericValue(nullptr, value), 0);
  EXPECT_EQ(value.vt, VT_EMPTY);
  EXPECT_EQ(source->GetNumericValue(nullptr, value), 0);
  ASSERT_EQ(value.vt, VT_DISPATCH);
  source = ObjectRef();  // the value keeps the picture
  EXPECT_EQ(Assign(target, variant), 0);
  EXPECT_EQ(Width(target), 79);
  EXPECT_EQ(ReferencesTo(target), 2u);

  OLECHAR name[] = {'h', 'E', 'i', 'g', 'h', 't', 0};
  LPOLESTR names[] = {name};
  DISPID id = 0;
  EXPECT_EQ(value.pdispVal->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id), S_OK);
  EXPECT_EQ(id, 5);
  const struct {
    DISPID id;
    VARTYPE type;
    int result;
  } properties[] = {{3, VT_I2, PICTYPE_BITMAP}, {4, VT_I4, 79}, {5, VT_I4, 53}};
  for (const auto& p : properties) {
    VARIANT result;
    VariantInit(&result);
    DISPPARAMS none = {};
    EXPECT_EQ(value.pdispVal->Invoke(p.id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET,
                                     &none, &result, nullptr, nullptr),
              S_OK);
    EXPECT_EQ(result.vt, p.type);
    EXPECT_EQ(p.type == VT_I2 ? result.iVal : result.lVal, p.result);
  }

  // As an initial value, and what is none.
  for (const ObjectRef& initial : {variant, target, ScalarOf(1)}) {
    CallFrame frame;
    frame.AddObject(initial.Get());
    const ObjectRef made(TheLibrary().Create(kTypePicture, 2, &frame));
    const bool is_source = initial->GetTypeID() != kTypeInt;
    EXPECT_EQ(host::Library::TakeErrorReport(), is_source ? 0 : status::kBadValue);
    EXPECT_EQ(Width(made), is_source ? 79 : -1);
  }
}

TEST(Picture, RendersIntoRectangles) {
  const ObjectRef device(new host::DeviceContext);
  EXPECT_EQ(Call(device, "SetSize", 8, 6).status, 0);
  const auto pixel = [&](int x, int y) { return Call(device, "GetPixel", x, y).Int(); };
  const ObjectRef picture = NewPicture();
  const ObjectRef all = VectorOf<int>({0, 0, 8, 6}), small = VectorOf<int>({2, 3, 5, 5});
  EXPECT_EQ(Call(picture, "Render", device, small, all).status, 0);
  EXPECT_EQ(pixel(2, 3), 0x000000);
  EXPECT_EQ(pixel(4, 3), 0x646464);
  EXPECT_EQ(pixel(3, 4), 0xC8C8C8);
  EXPECT_EQ(pixel(4, 4), 0xFAFAFA);
  EXPECT_EQ(pixel(5, 4), 0xFFFFFF);
  EXPECT_EQ(pixel(2, 2), 0xFFFFFF);
  EXPECT_EQ(pixel(8, 0), -1);

  // Nothing to draw, and nothing to draw on.
  const ObjectRef empty = Make(kTypePicture);
  EXPECT_EQ(Call(empty, "Render", device, all, all).status, 0);
  EXPECT_EQ(Call(picture, "Render", Null(), all, all).status, 0);
  EXPECT_EQ(Call(picture, "Render", ObjectRef(new host::DeviceContext), all, all).status, 0);
  EXPECT_EQ(Call(picture, "Render", empty, all, all).status, status::kBadArguments);
  EXPECT_EQ(Call(picture, "Render", device, VectorOf<int>({1, 2, 3}), all).status,
            status::kBadArguments);
  constexpr int kMost = 2147483647, kLeast = -kMost - 1;
  for (const auto& r :
       {VectorOf<int>({0, 0, 0, 0}), VectorOf<int>({kLeast, kLeast, kMost, kMost}),
        VectorOf<int>({kMost - 5, 0, kMost, 9}), VectorOf<int>({-9, -9, kMost, 0})}) {
    EXPECT_EQ(Call(picture, "Render", device, r, r).status, 0);
  }

  // Lines reach the device through both kinds of metafiles.
  const ObjectRef ends = VectorOf<double>({0, 40});
  for (const char* maker : {"MetafileFromLines", "EnhMetafileFromLines"}) {
    SCOPED_TRACE(maker);
    EXPECT_EQ(Call(device, "SetSize", 20, 20).status, 0);
    const ObjectRef handle =
        Handle(static_cast<std::uint64_t>(Call(Functions(), maker, ends, ends, 40, 40).integer));
    const bool enhanced = maker[0] == 'E';
    EXPECT_EQ(Create(picture, kKinds[enhanced ? 2 : 3], handle, 1).Int(), 1);
    EXPECT_EQ(Call(picture, "Render", device, VectorOf<int>({0, 0, 20, 20}), all).status, 0);
    EXPECT_LT(pixel(10, 10), 0xFFFFFF);
    EXPECT_EQ(pixel(15, 4), 0xFFFFFF);
  }
}

TEST(Picture, MatricesBecomePicturesAndBack) {
  const ObjectRef picture = Make(kTypePicture);
  const ObjectRef matrix =
      MatrixOf<double>({{-5, 127.5, 300}, {kMissingValue, std::nan(""), 99.4}});
  ObjectRef back = Make(kTypeFloat | kFlagMatrix);
  EXPECT_EQ(Call(Functions(), "MatrixFromPicture", back, picture).Int(), 0);
  EXPECT_EQ(Call(Functions(), "PictureFromMatrix", picture, matrix, 0, 255).Int(), 1);
  EXPECT_EQ(Call(Functions(), "MatrixFromPicture", back, picture).Int(), 1);
  ExpectRows(back, {{0, 128, 255}, {0, 0, 99}});
  EXPECT_EQ(
      Call(Functions(), "PictureFromMatrix", picture, Make(kTypeComplex | kFlagMatrix), 0, 255)
          .status,
      status::kBadArguments);
  EXPECT_EQ(
      Call(Functions(), "PictureFromMatrix", picture, Make(kTypeInt | kFlagMatrix), 0, 255).status,
      status::kBadValue);
}

std::string Contents(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Picture, LoadsImageFilesAndRefusesDamagedOnes) {
  const fs::path folder = fs::temp_directory_path() / u8"vela Bilder \u00e4\u4e2d";
  fs::create_directories(folder);
  const fs::path file = folder / "image";
  const std::u8string utf8 = file.u8string();
  const std::string name(utf8.begin(), utf8.end());
  const auto load = [&](const ObjectRef& picture, const std::string& contents) {
    std::ofstream(file, std::ios::binary) << contents;
    return Call(picture, "Load", name).Int();
  };
  const fs::path seeds = fs::path(TEST_DATA_DIR) / "../../fuzz/corpus/picture_load";
  for (const char* format : {"png", "jpeg", "bmp", "gif", "tiff"}) {
    SCOPED_TRACE(format);
    const std::string contents = Contents(seeds / format);
    const ObjectRef picture = Make(kTypePicture);
    EXPECT_EQ(load(picture, contents), 1);
    EXPECT_EQ(Width(picture), 159);  // 6 pixels
    EXPECT_EQ(Call(picture, "GetHeight").Int(), 106);
    // Cut short anywhere, the file is none, and the old picture stays.
    for (std::size_t length = 0; length + 12 < contents.size(); length += 7) {
      EXPECT_EQ(load(picture, contents.substr(0, length)), 0) << length;
    }
    EXPECT_EQ(Width(picture), 159);
  }
  const ObjectRef picture = Make(kTypePicture);
  // 60,000 x 60,000 pixels in the header, where it says so in each format.
  const struct {
    const char* format;
    std::size_t place;
    std::string size;
  } huge[] = {{"png", 16, std::string("\0\0\xEA\x60\0\0\xEA\x60", 8)},
              {"jpeg", 163, "\xEA\x60\xEA\x60"},
              {"bmp", 18, std::string("\x60\xEA\0\0\x60\xEA\0\0", 8)},
              {"gif", 6, "\x60\xEA\x60\xEA"},
              {"gif", 30, "\x60\xEA\x60\xEA"},
              {"tiff", 96, "\x60\xEA"}};
  for (const auto& h : huge) {
    std::string contents = Contents(seeds / h.format);
    contents.replace(h.place, h.size.size(), h.size);
    EXPECT_EQ(load(picture, contents), 0) << h.format;
  }
  for (const std::string& contents : {std::string(), std::string("<svg/>")}) {
    EXPECT_EQ(load(picture, contents), 0);
  }
  fs::remove_all(folder);
  for (const std::string& missing : {name, std::string(), std::string("\xff\xfe")}) {
    EXPECT_EQ(Call(picture, "Load", missing).Int(), 0);
  }
  EXPECT_EQ(Call(picture, "Load").status, status::kBadArguments);
}

}  // namespace
}  // namespace vela::testing
