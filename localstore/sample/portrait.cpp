#include "localstore/sample/portrait.h"

#include <wincodec.h>

#include <algorithm>

#include "localstore/sample/sample_error.h"
#include "support/owners.h"

namespace sample {

namespace {

constexpr unsigned kBytesPerPixel = 3;

/// True for a point in an ellipse; all lengths are parts of the picture's width.
bool InEllipse(double x, double y, double centreY, double radiusX, double radiusY) {
    const double across = (x - 0.5) / radiusX;
    const double down = (y - centreY) / radiusY;
    return across * across + down * down <= 1.0;
}

unsigned ColourAt(const Portrait& portrait, double x, double y) {
    if (InEllipse(x, y, 0.43, 0.18, 0.23)) {
        return portrait.skin;
    }
    if (InEllipse(x, y, 0.36, 0.22, 0.25)) {
        return portrait.hair;
    }
    return InEllipse(x, y, 1.02, 0.38, 0.34) ? portrait.shirt : portrait.ground;
}

/// Numbers that look like chance and are the same in every run (xorshift).
class Grain {
  public:
    explicit Grain(unsigned most) : m_most(static_cast<int>(most)) {}

    BYTE On(unsigned value) {
        if (m_most == 0) {
            return static_cast<BYTE>(value);
        }
        m_state ^= m_state << 13U;
        m_state ^= m_state >> 17U;
        m_state ^= m_state << 5U;
        const int off = static_cast<int>(m_state % static_cast<unsigned>(2 * m_most + 1)) - m_most;
        return static_cast<BYTE>(std::clamp(static_cast<int>(value) + off, 0, 255));
    }

  private:
    int m_most;
    unsigned m_state = 2463534242U;
};

/// Rows from top to bottom, each pixel as blue, green and red.
std::vector<BYTE> Pixels(const Portrait& portrait) {
    std::vector<BYTE> pixels;
    pixels.reserve(std::size_t{portrait.size} * portrait.size * kBytesPerPixel);
    Grain grain(portrait.grain);
    for (unsigned row = 0; row < portrait.size; ++row) {
        for (unsigned column = 0; column < portrait.size; ++column) {
            const unsigned colour =
                ColourAt(portrait, (column + 0.5) / portrait.size, (row + 0.5) / portrait.size);
            for (const unsigned shift : {0U, 8U, 16U}) {
                pixels.push_back(grain.On((colour >> shift) & 0xFFU));
            }
        }
    }
    return pixels;
}

std::vector<BYTE> BytesOf(IStream* stream) {
    STATSTG status{};
    Require(stream->Stat(&status, STATFLAG_NONAME), L"measure a picture");
    std::vector<BYTE> bytes(static_cast<std::size_t>(status.cbSize.QuadPart));
    Require(stream->Seek({}, STREAM_SEEK_SET, nullptr), L"go to the start of a picture");
    ULONG read = 0;
    Require(stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &read), L"read a picture");
    return bytes;
}

}  // namespace

std::vector<BYTE> DrawPortrait(const Portrait& portrait) {
    ComPtr<IWICImagingFactory> factory;
    Require(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                             reinterpret_cast<void**>(factory.GetAddressOf())),
            L"reach the imaging component");
    ComPtr<IStream> stream;
    Require(CreateStreamOnHGlobal(nullptr, TRUE, stream.GetAddressOf()), L"make a stream");
    ComPtr<IWICBitmapEncoder> encoder;
    Require(factory->CreateEncoder(GUID_ContainerFormatJpeg, nullptr, encoder.GetAddressOf()),
            L"find the JPEG encoder");
    Require(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache), L"begin a JPEG file");
    ComPtr<IWICBitmapFrameEncode> frame;
    Require(encoder->CreateNewFrame(frame.GetAddressOf(), nullptr), L"begin a picture");
    Require(frame->Initialize(nullptr), L"set a picture up");
    Require(frame->SetSize(portrait.size, portrait.size), L"give a picture its size");
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    Require(frame->SetPixelFormat(&format), L"give a picture its format");
    std::vector<BYTE> pixels = Pixels(portrait);
    Require(frame->WritePixels(portrait.size, portrait.size * kBytesPerPixel,
                               static_cast<UINT>(pixels.size()), pixels.data()),
            L"draw a picture");
    Require(frame->Commit(), L"end a picture");
    Require(encoder->Commit(), L"end a JPEG file");
    return BytesOf(stream.Get());
}

}  // namespace sample
