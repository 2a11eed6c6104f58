#include <vfil/pixelcoverage.h>
#include <gtest/gtest.h>
TEST(Coverage, UnitSquare)
{
    const double x[] = {0.75, 1.75, 1.75, 0.75}, y[] = {0.75, 0.75, 1.75, 1.75};
    IncrementalPixelCoverage2D c;
    c.Initialize(4, x, y, 1, 0);
    for (int r = 0; r < 4; ++r) { c.StartHorizontalPass(0); for (int k = 0; k < 4; ++k) printf("%g ", c.GetAreaAndAdvance()); puts(""); }
}
