/// \file
/// The largest samples below a structuring element.

#include <vfil/morphology.h>

vfILDilateImg::vfILDilateImg()
{
    AllowBands();
}

vfILStatus vfILDilateImg::DoEffect()
{
    return WriteExtremes(true, *this);
}
