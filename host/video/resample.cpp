/// \file
/// Chroma resampling between the samplings of YCC frames.

#include "host/video/resample.h"

extern "C" {
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

#include <array>
#include <stdexcept>

namespace vfil::host {

namespace {

/// swscale's words for chroma samples in the middle of the luma samples that share them.
constexpr int kMiddle = -513;

/// Where chroma lies across: beside the left luma sample, or in the middle.
int SitingAcross(const PixelKind& kind, AVChromaLocation siting)
{
    const bool middle =
        siting == AVCHROMA_LOC_CENTER || siting == AVCHROMA_LOC_TOP || siting == AVCHROMA_LOC_BOTTOM;
    return kind.chromaShiftX == 0 || middle ? kMiddle : 0;
}

/// Where chroma lies down, in 1/256 luma rows of a frame or of \p field (0 top, 1 bottom). A chroma sample
/// midway between two rows of a frame is at a quarter between the rows of the top field, at three quarters
/// between those of the bottom field.
int SitingDown(const PixelKind& kind, AVChromaLocation siting, int field, bool perField)
{
    if (kind.chromaShiftY == 0) return kMiddle;
    if (perField && kind.chromaShiftY == 1) return field == 0 ? 64 : 192;
    if (siting == AVCHROMA_LOC_TOPLEFT || siting == AVCHROMA_LOC_TOP) return 0;
    if (siting == AVCHROMA_LOC_BOTTOMLEFT || siting == AVCHROMA_LOC_BOTTOM) return 256;
    return kMiddle;
}

} // namespace

struct Resampler::Side {
    AVPixelFormat format;
    long width;
    long height;
    int across;
    int down;
};

void Resampler::FreeSws::operator()(SwsContext* context) const
{
    sws_freeContext(context);
}

Resampler::SwsPtr Resampler::Make(const Side& from, const Side& to)
{
    SwsPtr context(NotNull(sws_alloc_context()));
    const auto set = [&context](const char* name, long value) {
        av_opt_set_int(context.get(), name, value, 0);
    };
    set("srcw", from.width);
    set("srch", from.height);
    set("src_format", from.format);
    set("src_h_chr_pos", from.across);
    set("src_v_chr_pos", from.down);
    set("dstw", to.width);
    set("dsth", to.height);
    set("dst_format", to.format);
    set("dst_h_chr_pos", to.across);
    set("dst_v_chr_pos", to.down);
    set("sws_flags", SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_BITEXACT);
    if (sws_init_context(context.get(), nullptr, nullptr) < 0)
        throw std::invalid_argument("its sampling cannot be changed");
    const int* matrix = sws_getCoefficients(SWS_CS_DEFAULT);
    sws_setColorspaceDetails(context.get(), matrix, 0, matrix, 0, 0, 1 << 16, 1 << 16);
    return context;
}

Resampler::Resampler(const PixelKind& from, const PixelKind& to, long width, long height, FieldOrder fields,
                     AVChromaLocation siting)
    : m_height(static_cast<int>(height))
{
    const bool rowsChange = from.chromaShiftY != to.chromaShiftY;
    // Fields of other heights do not have whole rows of chroma each.
    const bool perField = fields != FieldOrder::Progressive && rowsChange && height % 4 == 0;
    // Samples that are left on one side stay left: only a difference moves them.
    const bool raising = from.chromaShiftX + from.chromaShiftY >= to.chromaShiftX + to.chromaShiftY;
    const AVChromaLocation fromSiting = raising ? siting : AVCHROMA_LOC_LEFT;
    const AVChromaLocation toSiting = raising ? AVCHROMA_LOC_LEFT : siting;
    for (int field = 0; field < (perField ? 2 : 1); ++field) {
        const auto side = [&](const PixelKind& kind, AVChromaLocation place) {
            return Side{WithoutRange(kind.format), width, perField ? height / 2 : height,
                        SitingAcross(kind, place), SitingDown(kind, place, field, perField)};
        };
        m_contexts.push_back(Make(side(from, fromSiting), side(to, toSiting)));
    }
}

void Resampler::Run(const AVFrame& from, AVFrame& to) const
{
    const auto fields = static_cast<int>(m_contexts.size());
    for (int field = 0; field < fields; ++field) {
        std::array<const std::uint8_t*, 4> source{};
        std::array<std::uint8_t*, 4> target{};
        std::array<int, 4> sourceStep{};
        std::array<int, 4> targetStep{};
        for (std::size_t i = 0; i < 4; ++i) {
            sourceStep[i] = from.linesize[i] * fields;
            targetStep[i] = to.linesize[i] * fields;
            if (from.data[i] != nullptr) source[i] = from.data[i] + from.linesize[i] * field;
            if (to.data[i] != nullptr) target[i] = to.data[i] + to.linesize[i] * field;
        }
        sws_scale(m_contexts[static_cast<std::size_t>(field)].get(), source.data(), sourceStep.data(), 0,
                  m_height / fields, target.data(), targetStep.data());
    }
}

} // namespace vfil::host
