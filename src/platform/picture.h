// Pictures (IPicture), the drawings they are made of, and the device contexts that they are drawn
// on. Windows has them; elsewhere this header declares the same names with the same layouts, the
// sources in picture/ implement the published behaviour of what is declared here, and the host
// runtime exports them, so that a handle made in one library of a process is known in every other.
#pragma once

#include "platform/automation.h"

#if !defined(_WIN32)

struct HDC__;
struct HICON__;
struct HMETAFILE__;
struct HENHMETAFILE__;
struct HPALETTE__;
struct HPEN__;
// A handle is a number that fits 32 bits. One that was never given out, or is deleted, is refused
// by every function.
using HDC = HDC__*;
using HICON = HICON__*;
using HMETAFILE = HMETAFILE__*;
using HENHMETAFILE = HENHMETAFILE__*;
using HPALETTE = HPALETTE__*;
using HPEN = HPEN__*;
using HANDLE = void*;
using HGDIOBJ = void*;
using LPCWSTR = const OLECHAR*;

// 0x00BBGGRR.
using COLORREF = DWORD;
constexpr COLORREF RGB(unsigned red, unsigned green, unsigned blue) {
  return (red & 0xFF) | (green & 0xFF) << 8 | (blue & 0xFF) << 16;
}

struct POINT {
  LONG x;
  LONG y;
};
struct SIZE {
  LONG cx;
  LONG cy;
};
// right and bottom lie just outside.
struct RECT {
  LONG left;
  LONG top;
  LONG right;
  LONG bottom;
};
using LPCRECT = const RECT*;

struct BITMAPINFOHEADER {
  DWORD biSize;
  LONG biWidth;
  LONG biHeight;
  WORD biPlanes;
  WORD biBitCount;
  DWORD biCompression;
  DWORD biSizeImage;
  LONG biXPelsPerMeter;
  LONG biYPelsPerMeter;
  DWORD biClrUsed;
  DWORD biClrImportant;
};
struct RGBQUAD {
  BYTE rgbBlue;
  BYTE rgbGreen;
  BYTE rgbRed;
  BYTE rgbReserved;
};
struct BITMAPINFO {
  BITMAPINFOHEADER bmiHeader;
  RGBQUAD bmiColors[1];
};

struct ICONINFO {
  BOOL fIcon;
  DWORD xHotspot;
  DWORD yHotspot;
  HBITMAP hbmMask;
  HBITMAP hbmColor;
};

inline constexpr DWORD BI_RGB = 0;
inline constexpr UINT DIB_RGB_COLORS = 0;
inline constexpr int PS_SOLID = 0;
inline constexpr int MM_TEXT = 1;
inline constexpr int MM_ANISOTROPIC = 8;
inline constexpr int HORZSIZE = 4;
inline constexpr int VERTSIZE = 6;
inline constexpr int HORZRES = 8;
inline constexpr int VERTRES = 10;
inline constexpr int COLORONCOLOR = 3;  // a pixel stands for those that have no room
inline constexpr int HALFTONE = 4;      // their mean does

// What GetObjectType tells.
inline constexpr DWORD OBJ_PEN = 1;
inline constexpr DWORD OBJ_METADC = 4;
inline constexpr DWORD OBJ_BITMAP = 7;
inline constexpr DWORD OBJ_METAFILE = 9;
inline constexpr DWORD OBJ_MEMDC = 10;
inline constexpr DWORD OBJ_ENHMETADC = 12;
inline constexpr DWORD OBJ_ENHMETAFILE = 13;

// Hundredths of a millimetre; positions count upwards from the lower left corner.
using OLE_HANDLE = UINT;
using OLE_XSIZE_HIMETRIC = LONG;
using OLE_YSIZE_HIMETRIC = LONG;
using OLE_XPOS_HIMETRIC = LONG;
using OLE_YPOS_HIMETRIC = LONG;

inline constexpr SHORT PICTYPE_UNINITIALIZED = -1;
inline constexpr SHORT PICTYPE_NONE = 0;
inline constexpr SHORT PICTYPE_BITMAP = 1;
inline constexpr SHORT PICTYPE_METAFILE = 2;
inline constexpr SHORT PICTYPE_ICON = 3;
inline constexpr SHORT PICTYPE_ENHMETAFILE = 4;

inline constexpr DWORD PICTURE_SCALABLE = 1;
inline constexpr DWORD PICTURE_TRANSPARENT = 2;

inline constexpr DISPID DISPID_PICT_HANDLE = 0;
inline constexpr DISPID DISPID_PICT_HPAL = 2;
inline constexpr DISPID DISPID_PICT_TYPE = 3;
inline constexpr DISPID DISPID_PICT_WIDTH = 4;
inline constexpr DISPID DISPID_PICT_HEIGHT = 5;

inline constexpr HRESULT CTL_E_INVALIDPROPERTYVALUE = static_cast<HRESULT>(0x800A017Cu);

struct PICTDESC {
  UINT cbSizeofstruct;
  UINT picType;
  union {
    struct {
      HBITMAP hbitmap;
      HPALETTE hpal;
    } bmp;
    struct {
      HMETAFILE hmeta;
      int xExt;  // HIMETRIC
      int yExt;
    } wmf;
    struct {
      HICON hicon;
    } icon;
    struct {
      HENHMETAFILE hemf;
    } emf;
  };
};
static_assert(sizeof(void*) != 8 || sizeof(PICTDESC) == 24);

inline constexpr IID IID_IPicture = {
    0x7BF80980, 0xBF32, 0x101A, {0x8B, 0xBB, 0x00, 0xAA, 0x00, 0x30, 0x0C, 0xAB}};
inline constexpr IID IID_IPictureDisp = {
    0x7BF80981, 0xBF32, 0x101A, {0x8B, 0xBB, 0x00, 0xAA, 0x00, 0x30, 0x0C, 0xAB}};

struct IStream;

struct IPicture : IUnknown {
  virtual HRESULT get_Handle(OLE_HANDLE* handle) = 0;
  virtual HRESULT get_hPal(OLE_HANDLE* palette) = 0;
  virtual HRESULT get_Type(SHORT* type) = 0;
  virtual HRESULT get_Width(OLE_XSIZE_HIMETRIC* width) = 0;
  virtual HRESULT get_Height(OLE_YSIZE_HIMETRIC* height) = 0;
  // Draws the part of the picture that the HIMETRIC rectangle (x_source, y_source, cx_source,
  // cy_source) names over the rectangle (x, y, cx, cy) of the device context; the whole of it, the
  // right way up, with (0, height, width, -height). bounds is for metafiles drawn into metafiles.
  // CTL_E_INVALIDPROPERTYVALUE for an empty rectangle, E_FAIL where the drawing or the device
  // context is gone.
  virtual HRESULT Render(HDC dc, LONG x, LONG y, LONG cx, LONG cy, OLE_XPOS_HIMETRIC x_source,
                         OLE_YPOS_HIMETRIC y_source, OLE_XSIZE_HIMETRIC cx_source,
                         OLE_YSIZE_HIMETRIC cy_source, LPCRECT bounds) = 0;
  virtual HRESULT set_hPal(OLE_HANDLE palette) = 0;
  virtual HRESULT get_CurDC(HDC* dc) = 0;
  virtual HRESULT SelectPicture(HDC dc, HDC* previous, OLE_HANDLE* bitmap) = 0;
  virtual HRESULT get_KeepOriginalFormat(BOOL* keep) = 0;
  virtual HRESULT put_KeepOriginalFormat(BOOL keep) = 0;
  virtual HRESULT PictureChanged() = 0;
  virtual HRESULT SaveAsFile(IStream* stream, BOOL in_memory, LONG* size) = 0;
  virtual HRESULT get_Attributes(DWORD* attributes) = 0;
};

// The picture's properties as an automation object (DISPID_PICT_...).
struct IPictureDisp : IDispatch {};

#pragma GCC visibility push(default)
extern "C" {

// OBJ_..., or 0 for what is none. Icons are no such objects.
DWORD GetObjectType(HGDIOBJ object);
// For bitmaps and pens; the other handles have functions of their own.
BOOL DeleteObject(HGDIOBJ object);

// Bits of 1 or 32 per pixel in one plane, rows from the top on, each padded to 16 bits; null bits
// leave the bitmap black. Null for another kind and for sides below 1 or above 32767.
HBITMAP CreateBitmap(int width, int height, UINT planes, UINT bits_per_pixel, const void* bits);
// A bitmap whose pixels, 0x00RRGGBB from the top left on, are in memory at *bits until it is
// deleted. Here only rows from the top down (a negative height) of 32 bits without compression.
HBITMAP CreateDIBSection(HDC dc, const BITMAPINFO* info, UINT usage, void** bits, HANDLE section,
                         DWORD offset);

// From bitmaps of one size, which it copies: a mask of 1 bit, set where the icon is transparent,
// and the colours. Colours with an alpha channel, where any is not 0, are as transparent as it
// says.
HICON CreateIconIndirect(ICONINFO* info);
BOOL DestroyIcon(HICON icon);

// A device context in memory; it draws on the bitmap that is selected into it.
HDC CreateCompatibleDC(HDC like);
BOOL DeleteDC(HDC dc);
// Selects a bitmap or pen; the previous one, or null for the one a device context begins with.
HGDIOBJ SelectObject(HDC dc, HGDIOBJ object);
HPEN CreatePen(int style, int width, COLORREF color);
BOOL MoveToEx(HDC dc, int x, int y, POINT* previous);
BOOL LineTo(HDC dc, int x, int y);
// Of metafiles: MM_ANISOTROPIC and the size of the drawing in the units it is made with.
int SetMapMode(HDC dc, int mode);
BOOL SetWindowExtEx(HDC dc, int width, int height, SIZE* previous);
// COLORONCOLOR or HALFTONE; the previous one, 0 for another.
int SetStretchBltMode(HDC dc, int mode);
// Completes drawing, before pixels are read or written in memory.
BOOL GdiFlush();

// Of the display that a device context is like: 96 pixels per inch, which HORZRES and VERTRES count
// and HORZSIZE and VERTSIZE give in millimetres.
int GetDeviceCaps(HDC dc, int what);

// Device contexts that record; closing one gives what it recorded, and ends it. Here only in
// memory, without a file name. The frame of an enhanced one, in HIMETRIC, is what its drawing fills
// where it is played; null is the area drawn on.
HDC CreateMetaFileW(LPCWSTR file);
HMETAFILE CloseMetaFile(HDC dc);
BOOL DeleteMetaFile(HMETAFILE metafile);
HDC CreateEnhMetaFileW(HDC reference, LPCWSTR file, const RECT* frame, LPCWSTR description);
HENHMETAFILE CloseEnhMetaFile(HDC dc);
BOOL DeleteEnhMetaFile(HENHMETAFILE metafile);

// A picture of the drawing that the description names, with one reference; a null description makes
// an uninitialised one. own: the drawing is deleted with the picture; otherwise it has to outlive
// it. A failure leaves the drawing to the caller.
HRESULT OleCreatePictureIndirect(PICTDESC* description, REFIID iid, BOOL own, void** picture);

}  // extern "C"
#pragma GCC visibility pop

#endif
