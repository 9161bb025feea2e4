// Encodes a block and decodes it again, without Qt.

#include <TQX_codec.h>

#include <cstdio>

using namespace Kor::MessageApi;

int main()
{
    TQX_PVTGeodetic2_s sent;
    TQX_init_PVTGeodetic2(&sent);
    sent.Height = 123.25;
    unsigned char buffer[256];
    const int bits = TQX_encode_PVTGeodetic2(buffer, sizeof buffer, &sent);
    if (bits <= 0)
        return 1;

    TQX_Context_s context;
    TQX_init_context(&context);
    TQX_AnyRecord_u record{};
    const int32_t result = TQX_decode(&context, buffer, static_cast<uint16_t>(bits / 8), &record);
    if (result <= 0) {
        std::printf("%s\n", TQX_errorName(result));
        return 1;
    }
    std::printf("%.2f\n", reinterpret_cast<const TQX_PVTGeodetic2_s*>(&record)->Height);
    TQX_release(&record);
}
