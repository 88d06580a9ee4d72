#include "engine/engine_fatal.h"

#include "base/fatal.h"

namespace {

constexpr const char* kCaption = "tessel openGL engine";

struct ErrorText {
    int code;
    const char* message;
};

constexpr ErrorText kErrorTexts[] = {
    {ERR_OPEN, "Could not open file.\n"},
    {ERR_READ, "Could not read from file.\n"},
    {ERR_WRITE, "Could not write to file.\n"},
    {ERR_SEEK, "Could not seek in file.\n"},
    {ERR_NOT_3DS, "This doesn't seems to be a .3ds file.\n"},
    {ERR_NO_MATERIAL, "A 3d object doesn't seem to have a material.\n"},
    {ERR_NOT_PCX, "This is not a pcx file.\n"},
    {ERR_BITPLANES, "Error amount of bitplanes.\n"},
};

}  // namespace

const char* engineErrorMessage(int code) {
    for (const ErrorText& entry : kErrorTexts) {
        if (entry.code == code) {
            return entry.message;
        }
    }
    return "Unkown error type.\n";
}

void engineFatal(int code) { fatalReport(kCaption, engineErrorMessage(code), 1); }
