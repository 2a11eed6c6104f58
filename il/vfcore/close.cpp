/// \file
/// Dilation, then erosion.

#include <vfil/morphology.h>

vfILCloseImg::vfILCloseImg() : vfILMorphologicalChain(true)
{}
