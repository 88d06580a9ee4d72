#include "content/images/images.h"

#include "content/images/pictures.h"

std::vector<ContentEntry> makeImages() {
    return {
        makeObjectsPicture(), makeLogoPicture(),      makeCreditsPicture(), makeCrossesPicture(),
        makeRingsPicture(),   makeSpritePicture(),    makePartPicture(),    makeGreetingsPicture(),
        makeEverPicture(),    makeForgetPicture(),    makeInvertPicture(),  makeOutsidePicture(),
    };
}
