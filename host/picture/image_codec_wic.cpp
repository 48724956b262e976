// Image files by the system's imaging component.
#if defined(_WIN32)

#ifndef NOMINMAX
#define NOMINMAX
#endif
// clang-format off
#include <windows.h>
#include <objbase.h>
#include <wincodec.h>
// clang-format on

#include "host/picture/image_codec.h"

namespace vela::host {
namespace {

// Holds one reference.
template <class Interface>
class Com {
 public:
  Com() = default;
  ~Com() {
    if (object_ != nullptr) object_->Release();
  }
  Com(const Com&) = delete;
  Com& operator=(const Com&) = delete;
  Interface** operator&() { return &object_; }
  Interface* operator->() const { return object_; }
  Interface* Get() const { return object_; }

 private:
  Interface* object_ = nullptr;
};

// The system's components for a scope, whatever the thread has set up before.
class Components {
 public:
  Components() : result_(CoInitializeEx(nullptr, COINIT_MULTITHREADED)) {
    CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                     reinterpret_cast<void**>(&factory_));
  }
  ~Components() {
    if (factory_ != nullptr) factory_->Release();
    if (SUCCEEDED(result_)) CoUninitialize();
  }
  Components(const Components&) = delete;
  Components& operator=(const Components&) = delete;
  // Null when there is none.
  IWICImagingFactory* Factory() const { return factory_; }

 private:
  HRESULT result_;
  IWICImagingFactory* factory_ = nullptr;
};

const GUID& ContainerFormat(ImageFormat format) {
  switch (format) {
    case ImageFormat::kPng:
      return GUID_ContainerFormatPng;
    case ImageFormat::kJpeg:
      return GUID_ContainerFormatJpeg;
    case ImageFormat::kBmp:
      return GUID_ContainerFormatBmp;
    case ImageFormat::kGif:
      return GUID_ContainerFormatGif;
    default:
      return GUID_ContainerFormatTiff;
  }
}

// The first image of the file; false when it cannot be read.
bool OpenFrame(IWICImagingFactory* factory, ImageFormat format, Bytes file,
               Com<IWICBitmapFrameDecode>& frame) {
  Com<IWICStream> stream;
  Com<IWICBitmapDecoder> decoder;
  // It only reads the memory.
  auto* const data = const_cast<unsigned char*>(file.data());
  return SUCCEEDED(factory->CreateStream(&stream)) &&
         SUCCEEDED(stream->InitializeFromMemory(data, static_cast<DWORD>(file.size()))) &&
         SUCCEEDED(factory->CreateDecoder(ContainerFormat(format), nullptr, &decoder)) &&
         SUCCEEDED(decoder->Initialize(stream.Get(), WICDecodeMetadataCacheOnDemand)) &&
         SUCCEEDED(decoder->GetFrame(0, &frame));
}

bool CopyPixels(IWICImagingFactory* factory, IWICBitmapSource* image, const NewPixels& new_pixels) {
  UINT width = 0, height = 0;
  if (FAILED(image->GetSize(&width, &height)) || !IsImageSize(width, height)) return false;
  Com<IWICFormatConverter> converter;
  if (FAILED(factory->CreateFormatConverter(&converter)) ||
      FAILED(converter->Initialize(image, GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone,
                                   nullptr, 0, WICBitmapPaletteTypeCustom))) {
    return false;
  }
  std::uint32_t* const pixels = new_pixels(static_cast<int>(width), static_cast<int>(height));
  const UINT stride = width * 4;
  return pixels != nullptr && SUCCEEDED(converter->CopyPixels(nullptr, stride, stride * height,
                                                              reinterpret_cast<BYTE*>(pixels)));
}

// What was written to a stream in global memory.
std::string ContentsOf(IStream* stream) {
  STATSTG statistics = {};
  HGLOBAL memory = nullptr;
  if (FAILED(stream->Stat(&statistics, STATFLAG_NONAME)) ||
      FAILED(GetHGlobalFromStream(stream, &memory))) {
    return {};
  }
  const auto* const data = static_cast<const char*>(GlobalLock(memory));
  if (data == nullptr) return {};
  std::string contents(data, static_cast<std::size_t>(statistics.cbSize.QuadPart));
  GlobalUnlock(memory);
  return contents;
}

}  // namespace

bool DecodeImage(ImageFormat format, Bytes file, const NewPixels& new_pixels) {
  const Components components;
  IWICImagingFactory* const factory = components.Factory();
  if (factory == nullptr) return false;
  Com<IWICBitmapFrameDecode> frame;
  return OpenFrame(factory, format, file, frame) && CopyPixels(factory, frame.Get(), new_pixels);
}

std::string EncodePng(const std::uint32_t* pixels, int width, int height) {
  const Components components;
  IWICImagingFactory* const factory = components.Factory();
  if (factory == nullptr) return {};
  Com<IStream> stream;
  Com<IWICBitmapEncoder> encoder;
  Com<IWICBitmapFrameEncode> frame;
  Com<IWICBitmap> image;
  const UINT columns = static_cast<UINT>(width), rows = static_cast<UINT>(height);
  auto* const data = reinterpret_cast<BYTE*>(const_cast<std::uint32_t*>(pixels));
  WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
  const bool done =
      SUCCEEDED(CreateStreamOnHGlobal(nullptr, TRUE, &stream)) &&
      SUCCEEDED(factory->CreateBitmapFromMemory(columns, rows, GUID_WICPixelFormat32bppBGR,
                                                columns * 4, columns * 4 * rows, data, &image)) &&
      SUCCEEDED(factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, &encoder)) &&
      SUCCEEDED(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache)) &&
      SUCCEEDED(encoder->CreateNewFrame(&frame, nullptr)) &&
      SUCCEEDED(frame->Initialize(nullptr)) && SUCCEEDED(frame->SetSize(columns, rows)) &&
      SUCCEEDED(frame->SetPixelFormat(&format)) &&
      SUCCEEDED(frame->WriteSource(image.Get(), nullptr)) && SUCCEEDED(frame->Commit()) &&
      SUCCEEDED(encoder->Commit());
  return done ? ContentsOf(stream.Get()) : std::string();
}

}  // namespace vela::host

#endif
