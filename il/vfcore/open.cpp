/// \file
/// Erosion, then dilation.

#include <vfil/morphology.h>

vfILOpenImg::vfILOpenImg() : vfILMorphologicalChain(false)
{}
