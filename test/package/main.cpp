/// \file
/// A program outside of the project that uses the installed library. It ends with 0 when what it asks works.

#include <vfil/vfil.h>

#include <cstdio>

// Each program of this source is built for one standard, which nothing may raise.
#if defined(EXPECTED_STANDARD)
static_assert(__cplusplus == EXPECTED_STANDARD, "the library changes the language of its host");
#endif

namespace {

int failures = 0;

void Expect(bool holds, const char* what)
{
    if (holds) return;
    std::printf("not so: %s\n", what);
    ++failures;
}

/// A host's own operator, of the frame's virtual functions.
class Halve : public vfILMonadicPixelProc {
protected:
    unsigned char Operation8(unsigned char value) override { return value / 2; }
};

} // namespace

int main()
{
    const vfILVector2l sum = vfILVector2l(3, -4) + vfILVector2l(10, 20);
    Expect(sum[0] == 13 && sum[1] == 16, "vectors add");

    vfILOverImage over;
    over.SetExtraTransparency(0.5);
    Expect(over.Verify() == VFIL_FAILURE, "an operator without pictures is refused");
    Expect(over.GetLastError() == vfILError(0x10002), "the first thing missed is the output");
    Expect(vfILErrorText(0x10002) != nullptr, "the code has a text");

    Halve halve;
    Expect(halve.Verify() == VFIL_FAILURE, "so is one of the host");
    Expect(ilNormMult[255][200] == 200, "the tables are there");

    if (failures == 0) std::printf("the installed library works\n");
    return failures;
}
