#include <vfil/composite.h>
#include <vfil/host/picturefactory.h>
#include <vfil/host/picturefile.h>

#include <cstdio>
#include <exception>

using namespace vfil::host;

int main(int argc, char** argv)
try {
    if (argc != 4) throw std::invalid_argument("usage: readme BACK FRONT OUT");
    RegisterPictureClass(); // the library asks the host for pictures
    const PicturePtr back = ReadPicture(argv[1], {.format = PXFormat_RGBA32});
    const PicturePtr front = ReadPicture(argv[2], {.format = PXFormat_RGBA32});
    const PicturePtr out = Picture::Create(PXFormat_RGBA32, back->Width(), back->Height());

    vfILOverImage over;
    over.SetInputImgA(back.Get());
    over.SetInputImgB(front.Get());
    over.SetDominantInput(back.Get());
    over.SetOutputImg(out.Get());
    over.SetProcessingMode(VFIL_MODE_RGBA);
    over.SetExtraTransparency(0.8); // the front's strength
    if (over.Verify() != VFIL_SUCCESS || over.Execute() != VFIL_SUCCESS) {
        char message[256];
        vfILFormatError(over, message, sizeof message);
        std::fprintf(stderr, "%s\n", message);
        return 1;
    }
    WritePicture(argv[3], *out);
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
