/// \file
/// Chroma resampling between the samplings of YCC frames. Private to the host.
#pragma once

#include "host/video/pixelkind.h"

#include <memory>
#include <vector>

struct SwsContext;

namespace vfil::host {

/// Takes YCC frames to another sampling and depth of the same colour model and range.
///
/// Luma is kept; chroma is interpolated with a bicubic filter, per field where the fields are of different
/// moments.
class Resampler {
public:
    /// \param siting Of the chroma samples on the side that has the fewer rows of them, or columns; the other
    ///               side's are beside the left luma sample.
    /// \throws std::invalid_argument  The pixel formats are beyond swscale.
    Resampler(const PixelKind& from, const PixelKind& to, long width, long height, FieldOrder fields,
              AVChromaLocation siting);

    /// Both frames have their buffers.
    void Run(const AVFrame& from, AVFrame& to) const;

private:
    struct FreeSws {
        void operator()(SwsContext* context) const;
    };
    using SwsPtr = std::unique_ptr<SwsContext, FreeSws>;
    struct Side;

    static SwsPtr Make(const Side& from, const Side& to);

    /// One for whole frames, or two, for the top field and the bottom field.
    std::vector<SwsPtr> m_contexts;
    int m_height;
};

} // namespace vfil::host
