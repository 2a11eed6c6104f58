/// \file
/// The base of the edge filters.

#include <vfil/edges.h>

vfILEdgeProc::vfILEdgeProc()
{
    Init();
}

void vfILEdgeProc::Init()
{
    SetRadius(1.0F);
    AllowBands();
}

/// The kernels read 3 x 3 samples: a host's own radius must not give them fewer, nor move them.
vfILStatus vfILEdgeProc::PrepareData()
{
    return PrepareWindows({1, 1});
}
