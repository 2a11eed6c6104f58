/// \file
/// The pictures of a pyramid.

#include "il/loops/frame/imageview.h"

#include <vfil/transform.h>

using namespace vfil;

vfILTransformLevels::vfILTransformLevels(const vfILTransformLevels&)
{}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): nothing is assigned
vfILTransformLevels& vfILTransformLevels::operator=(const vfILTransformLevels&)
{
    return *this;
}

vfILTransformLevels::~vfILTransformLevels()
{
    Release();
}

bool vfILTransformLevels::Add(IPXImage* picture)
{
    if (m_count == kMost) return false;
    m_views[m_count] = ImageView(picture);
    ++m_count;
    return true;
}

void vfILTransformLevels::Release()
{
    while (m_count > 0) {
        --m_count;
        m_views[m_count].image->Release();
        m_views[m_count] = {};
    }
}
