// Decodes arbitrary bytes as a PCX entry into an exact-size buffer: once with
// the whole input as the entry, once with the entry ending halfway through it.
#include <cstdint>
#include <cstdio>
#include <vector>

#include "fuzz/fatal_thrown.h"
#include "resources/pcx_decoder.h"

namespace {

// The header's own size when it is small, so whole images decode; larger and
// broken ones go into a buffer of an odd size that clips them.
int bufferSide(int side) { return side >= 1 && side <= 300 ? side : 37; }

void decodeEntry(const uint8_t* data, size_t size, uint32_t dataSize) {
    PcxHeader header{};
    const bool known = parsePcxHeader(data, size, &header) == nullptr;
    const int width = known ? bufferSide(header.width) : 7;
    const int height = known ? bufferSide(header.height) : 5;
    std::vector<uint8_t> pixels(static_cast<size_t>(width) * height * 4);
    FILE* file = fmemopen(const_cast<uint8_t*>(data), size, "rb");
    if (file == nullptr) {
        return;
    }
    try {
        decodePcx(file, dataSize, pixels.data(), width, height);
    } catch (const FatalThrown&) {
    }
    std::fclose(file);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    setFatalHook(throwFatal);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    decodeEntry(data, size, static_cast<uint32_t>(size));
    decodeEntry(data, size, static_cast<uint32_t>(size / 2));
    return 0;
}
