// PNG files through the system's imaging component (WIC).
#include "gallery.h"
#include <wincodec.h>

namespace {

template <typename T>
void Release(T *&object)
{
    if (object) object->Release();
    object = nullptr;
}

}  // namespace

bool WritePng(const wchar_t *path, int width, int height, const DWORD *pixels)
{
    IWICImagingFactory *factory = nullptr;
    IWICStream *stream = nullptr;
    IWICBitmapEncoder *encoder = nullptr;
    IWICBitmapFrameEncode *frame = nullptr;
    bool written = false;
    HRESULT hr = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                  IID_IWICImagingFactory, reinterpret_cast<void **>(&factory));
    if (SUCCEEDED(hr)) hr = factory->CreateStream(&stream);
    if (SUCCEEDED(hr)) hr = stream->InitializeFromFilename(path, GENERIC_WRITE);
    if (SUCCEEDED(hr)) hr = factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, &encoder);
    if (SUCCEEDED(hr)) hr = encoder->Initialize(stream, WICBitmapEncoderNoCache);
    if (SUCCEEDED(hr)) hr = encoder->CreateNewFrame(&frame, nullptr);
    if (SUCCEEDED(hr)) hr = frame->Initialize(nullptr);
    if (SUCCEEDED(hr)) hr = frame->SetSize(width, height);
    WICPixelFormatGUID format = GUID_WICPixelFormat32bppBGR;
    if (SUCCEEDED(hr)) hr = frame->SetPixelFormat(&format);
    if (SUCCEEDED(hr) && !IsEqualGUID(format, GUID_WICPixelFormat32bppBGR)) hr = E_FAIL;
    UINT stride = static_cast<UINT>(width) * 4;
    if (SUCCEEDED(hr))
        hr = frame->WritePixels(height, stride, stride * height,
                                reinterpret_cast<BYTE *>(const_cast<DWORD *>(pixels)));
    if (SUCCEEDED(hr)) hr = frame->Commit();
    if (SUCCEEDED(hr)) hr = encoder->Commit();
    written = SUCCEEDED(hr);
    Release(frame);
    Release(encoder);
    Release(stream);
    Release(factory);
    return written;
}
