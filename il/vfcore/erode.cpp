/// \file
/// The smallest samples below a structuring element.

#include <vfil/morphology.h>

vfILErodeImg::vfILErodeImg()
{
    AllowBands();
}

vfILStatus vfILErodeImg::DoEffect()
{
    return WriteExtremes(false, *this);
}
