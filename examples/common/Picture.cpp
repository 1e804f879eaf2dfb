#include "Picture.h"

#include <objbase.h>
#include <wincodec.h>

#include <cwchar>
#include <fstream>
#include <memory>

namespace
{

bool EndsInBmp(const std::wstring& path)
{
    constexpr std::size_t kLength = 4;
    return path.size() >= kLength && ::_wcsicmp(path.c_str() + path.size() - kLength, L".bmp") == 0;
}

bool WriteBmp(const Canvas& canvas, const std::wstring& path)
{
    const DWORD size = static_cast<DWORD>(canvas.RowSize()) * static_cast<DWORD>(canvas.Height());
    BITMAPINFOHEADER info{};
    info.biSize = sizeof info;
    info.biWidth = canvas.Width();
    info.biHeight = canvas.Height();
    info.biPlanes = 1;
    info.biBitCount = 24;
    info.biCompression = BI_RGB;
    info.biSizeImage = size;
    BITMAPFILEHEADER file{};
    file.bfType = 0x4D42; // "BM"
    file.bfOffBits = sizeof file + sizeof info;
    file.bfSize = file.bfOffBits + size;

    std::ofstream stream(path.c_str(), std::ios::binary);
    stream.write(reinterpret_cast<const char*>(&file), sizeof file);
    stream.write(reinterpret_cast<const char*>(&info), sizeof info);
    stream.write(reinterpret_cast<const char*>(canvas.Row(0)), static_cast<std::streamsize>(size));
    return stream.flush().good();
}

// COM for as long as the object lives.
class ComSession
{
public:
    ComSession() : m_result(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
    ComSession(const ComSession&) = delete;
    ComSession& operator=(const ComSession&) = delete;
    ~ComSession()
    {
        if (SUCCEEDED(m_result))
            ::CoUninitialize();
    }

private:
    HRESULT m_result;
};

struct Releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface>
using ComPointer = std::unique_ptr<Interface, Releaser>;

// The object that a call hands out through its last argument; null where the call fails.
template <class Interface, class Call>
ComPointer<Interface> Made(const Call& call)
{
    Interface* object = nullptr;
    return ComPointer<Interface>(SUCCEEDED(call(&object)) ? object : nullptr);
}

bool WriteFrame(const Canvas& canvas, IWICBitmapFrameEncode& frame)
{
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    if (FAILED(frame.Initialize(nullptr)) ||
        FAILED(frame.SetSize(static_cast<UINT>(canvas.Width()), static_cast<UINT>(canvas.Height()))) ||
        FAILED(frame.SetPixelFormat(&format)) || !::IsEqualGUID(format, GUID_WICPixelFormat24bppBGR))
        return false;
    // From the top down, against the order of the canvas.
    const UINT size = static_cast<UINT>(canvas.RowSize());
    for (int row = canvas.Height() - 1; row >= 0; --row) {
        if (FAILED(frame.WritePixels(1, size, size, canvas.Row(row))))
            return false;
    }
    return SUCCEEDED(frame.Commit());
}

bool WritePng(const Canvas& canvas, const std::wstring& path)
{
    const ComSession session;
    const auto factory = Made<IWICImagingFactory>([](IWICImagingFactory** made) {
        return ::CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(made));
    });
    if (!factory)
        return false;
    const auto stream = Made<IWICStream>([&](IWICStream** made) { return factory->CreateStream(made); });
    if (!stream || FAILED(stream->InitializeFromFilename(path.c_str(), GENERIC_WRITE)))
        return false;
    const auto encoder = Made<IWICBitmapEncoder>(
        [&](IWICBitmapEncoder** made) { return factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, made); });
    if (!encoder || FAILED(encoder->Initialize(stream.get(), WICBitmapEncoderNoCache)))
        return false;
    const auto frame = Made<IWICBitmapFrameEncode>(
        [&](IWICBitmapFrameEncode** made) { return encoder->CreateNewFrame(made, nullptr); });
    return frame && WriteFrame(canvas, *frame) && SUCCEEDED(encoder->Commit());
}

} // namespace

bool WritePicture(const Canvas& canvas, const std::wstring& path)
{
    // What was painted may wait in a queue still.
    ::GdiFlush();
    return EndsInBmp(path) ? WriteBmp(canvas, path) : WritePng(canvas, path);
}
