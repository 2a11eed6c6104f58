/// \file
/// The frame of the conversions between single pairs of formats.

#include "il/loops/convert/pairloop.h"

#include <utility>

using namespace vfil;

vfILPairConvertProc::vfILPairConvertProc(const vfILConvertPairs& pairs) : m_pairs(pairs)
{}

vfILPairConvertProc::vfILPairConvertProc(const vfILPairConvertProc& other)
    : vfILMonadicConvertProc(other), m_pairs(other.m_pairs)
{}

vfILPairConvertProc& vfILPairConvertProc::operator=(const vfILPairConvertProc& other)
{
    // Not the pairs: a class stays what it is.
    vfILMonadicConvertProc::operator=(other);
    return *this;
}

vfILPairConvertProc::~vfILPairConvertProc() = default;

const wchar_t* vfILPairConvertProc::GetClassNameW() const
{
    return m_pairs.className;
}

vfILStatus vfILPairConvertProc::Verify()
{
    if (vfILMonadicConvertProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    return VerifyFormats();
}

vfILStatus vfILPairConvertProc::VerifyFormats()
{
    if (!m_pairs.Contains(InputFormat())) return Fail(0x10034, GetClassNameW());
    if (!m_pairs.Contains(InputFormat(), OutputFormat())) return Fail(0x1000D, GetClassNameW());
    return VFIL_SUCCESS;
}

void* vfILPairConvertProc::GetConvertedColor(const vfILColor& color)
{
    return PackedColor{m_color8, m_color16}.Pack(color, OutputFormat());
}

void* PackedColor::Pack(const vfILColor& color, const GUID& format)
{
    bytes = {};
    words = {};
    const vfILFormatInfo* info = vfILFindFormat(format);
    if (info == nullptr) return words.data();
    if (info->sampleBytes == 2) {
        if (info->channels == 1) {
            color.GetColorAs16(words.data(), info->model);
        } else {
            color.GetColorAs64(words.data(), info->model);
        }
        return words.data();
    }
    if (info->channels == 1) {
        color.GetColorAs8(bytes.data(), info->model);
    } else {
        color.GetColorAs32(bytes.data(), info->model);
    }
    if (info->blueFirst) std::swap(bytes[0], bytes[2]);
    return bytes.data();
}
