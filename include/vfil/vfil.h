/// \file
/// The whole public face.
#pragma once

#include <vfil/blur.h>
#include <vfil/color.h>
#include <vfil/composite.h>
#include <vfil/convolve.h>
#include <vfil/edges.h>
#include <vfil/error.h>
#include <vfil/fields.h>
#include <vfil/fillkey.h>
#include <vfil/frame.h>
#include <vfil/geometry.h>
#include <vfil/image.h>
#include <vfil/keyer.h>
#include <vfil/matrix.h>
#include <vfil/models.h>
#include <vfil/morphology.h>
#include <vfil/numeric.h>
#include <vfil/pixel.h>
#include <vfil/pixelcoverage.h>
#include <vfil/pxformat.h>
#include <vfil/rank.h>
#include <vfil/spatial.h>
#include <vfil/tablekeyer.h>
#include <vfil/tables.h>
#include <vfil/videokeyer.h>
