/// \file
/// What all geometric transforms share apart from the mapping.

#include <vfil/transform.h>

#include <cstdint>

namespace {

/// Two lengths fit in a size.
bool Fit(unsigned long a, unsigned long b, std::int64_t size)
{
    const auto room = static_cast<std::uint64_t>(size);
    return size >= 0 && a <= room && b <= room - a;
}

} // namespace

vfILTransformBase::~vfILTransformBase() = default;

vfILStatus vfILTransformBase::OnVerify(long width, long height, long& code)
{
    const auto refuse = [&code](long reason) {
        code = reason;
        return VFIL_FAILURE;
    };
    if (!(m_opacity >= 0 && m_opacity <= 1)) return refuse(0x1006E);
    if (m_borderSize.left < m_borderSoftness.left || m_borderSize.right < m_borderSoftness.right ||
        m_borderSize.top < m_borderSoftness.top || m_borderSize.bottom < m_borderSoftness.bottom) {
        return refuse(0x10070);
    }
    if (!Fit(m_cropping.left, m_cropping.right, width) || !Fit(m_cropping.top, m_cropping.bottom, height))
        return refuse(0x10069);
    const auto left = static_cast<std::uint64_t>(m_cropping.left) + m_cropping.right;
    const auto gone = static_cast<std::uint64_t>(m_cropping.top) + m_cropping.bottom;
    const std::int64_t w = width - static_cast<std::int64_t>(left);
    const std::int64_t h = height - static_cast<std::int64_t>(gone);
    if (!Fit(m_borderSize.left, m_borderSize.right, w) || !Fit(m_borderSize.top, m_borderSize.bottom, h))
        return refuse(0x10070);
    if (!Fit(m_opacityFalloff.left, m_opacityFalloff.right, w) ||
        !Fit(m_opacityFalloff.top, m_opacityFalloff.bottom, h)) {
        return refuse(0x1006F);
    }
    return VFIL_SUCCESS;
}

void vfILTransformBase::SetCropping(unsigned long left, unsigned long right, unsigned long top,
                                    unsigned long bottom)
{
    m_cropping = {left, right, top, bottom};
}

void vfILTransformBase::GetCropping(unsigned long& left, unsigned long& right, unsigned long& top,
                                    unsigned long& bottom) const
{
    left = m_cropping.left;
    right = m_cropping.right;
    top = m_cropping.top;
    bottom = m_cropping.bottom;
}

void vfILTransformBase::SetBorderSize(unsigned long left, unsigned long right, unsigned long top,
                                      unsigned long bottom)
{
    m_borderSize = {left, right, top, bottom};
}

void vfILTransformBase::GetBorderSize(unsigned long& left, unsigned long& right, unsigned long& top,
                                      unsigned long& bottom) const
{
    left = m_borderSize.left;
    right = m_borderSize.right;
    top = m_borderSize.top;
    bottom = m_borderSize.bottom;
}

void vfILTransformBase::SetBorderSoftness(unsigned long left, unsigned long right, unsigned long top,
                                          unsigned long bottom)
{
    m_borderSoftness = {left, right, top, bottom};
}

void vfILTransformBase::GetBorderSoftness(unsigned long& left, unsigned long& right, unsigned long& top,
                                          unsigned long& bottom) const
{
    left = m_borderSoftness.left;
    right = m_borderSoftness.right;
    top = m_borderSoftness.top;
    bottom = m_borderSoftness.bottom;
}

void vfILTransformBase::SetOpacityFalloff(unsigned long left, unsigned long right, unsigned long top,
                                          unsigned long bottom)
{
    m_opacityFalloff = {left, right, top, bottom};
}

void vfILTransformBase::GetOpacityFalloff(unsigned long& left, unsigned long& right, unsigned long& top,
                                          unsigned long& bottom) const
{
    left = m_opacityFalloff.left;
    right = m_opacityFalloff.right;
    top = m_opacityFalloff.top;
    bottom = m_opacityFalloff.bottom;
}

void vfILTransformBase::SetBorderColor(const vfILColor& color)
{
    m_borderColor = color;
}

const vfILColor& vfILTransformBase::GetBorderColor() const
{
    return m_borderColor;
}

void vfILTransformBase::SetOpacity(double opacity)
{
    m_opacity = opacity;
}

double vfILTransformBase::GetOpacity() const
{
    return m_opacity;
}

void vfILTransformBase::SetImgAPremultiplied(int premultiplied)
{
    m_imgAPremultiplied = premultiplied;
}

int vfILTransformBase::GetImgAPremultiplied() const
{
    return m_imgAPremultiplied;
}

void vfILTransformBase::SetInputImgPremultiplied(int premultiplied)
{
    m_imgAPremultiplied = premultiplied;
}

int vfILTransformBase::GetInputImgPremultiplied() const
{
    return m_imgAPremultiplied;
}

void vfILTransformBase::SetImgBPremultiplied(int premultiplied)
{
    m_imgBPremultiplied = premultiplied;
}

int vfILTransformBase::GetImgBPremultiplied() const
{
    return m_imgBPremultiplied;
}

void vfILTransformBase::SetCreatePremultipliedOutput(int premultiplied)
{
    m_createPremultiplied = premultiplied;
}

int vfILTransformBase::GetCreatePremultipliedOutput() const
{
    return m_createPremultiplied;
}

int vfILTransformBase::GetOutputImgPremultiplied() const
{
    return m_outputPremultiplied;
}
