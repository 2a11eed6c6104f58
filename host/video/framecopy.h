/// \file
/// Frames of a stream to pictures, and back. The colour model never changes on the way: samples are brought
/// to another depth and range, chroma to another sampling. Private to the host.
#pragma once

#include "host/video/resample.h"
#include "host/video/samples.h"

#include <array>
#include <optional>

namespace vfil::host {

/// What both directions need to know besides the two formats.
struct CopyTerms {
    long width = 0;
    long height = 0;
    Range range = Range::Studio; ///< of the stream
    FieldOrder fields = FieldOrder::Progressive;
    AVChromaLocation siting = AVCHROMA_LOC_LEFT; ///< of the stream
};

/// Makes pictures of frames of one kind.
class FrameToPicture {
public:
    /// \throws std::invalid_argument  swscale does not know the pixel format.
    FrameToPicture(const PixelKind& from, const vfILFormatInfo& to, const CopyTerms& terms);

    PicturePtr operator()(const AVFrame& frame);

private:
    /// From a frame whose sampling is the picture's.
    void CopyFrame(const AVFrame& frame, Picture& picture);
    void CopyRow(const AVFrame& frame, int row, Picture& picture);
    void CopyPaletteRow(const AVFrame& frame, int row, Picture& picture) const;

    PixelKind m_kind; ///< of what is copied: the frame, or the resampled frame
    const vfILFormatInfo* m_format;
    CopyTerms m_terms;
    std::optional<Resampler> m_resampler;
    FramePtr m_resampled;
    std::vector<SampleMap> m_maps;     ///< one a component of the picture
    bool m_sameRows = false;           ///< rows are copied byte for byte
    std::vector<std::uint16_t> m_bits; ///< a row of a frame whose samples share bytes
};

/// Makes frames of one kind of pictures of one format.
class PictureToFrame {
public:
    /// \throws std::invalid_argument  as FrameToPicture does.
    PictureToFrame(const vfILFormatInfo& from, const PixelKind& to, const CopyTerms& terms);

    /// The frame lasts until the next call, longer for those who hold a reference.
    AVFrame& operator()(const Picture& picture);

private:
    void CopyPicture(const Picture& picture, AVFrame& frame) const;
    void CopyRow(const Picture& picture, AVFrame& frame, int row) const;

    PixelKind m_kind; ///< of what is written first: the frame, or the one to be resampled
    const vfILFormatInfo* m_format;
    CopyTerms m_terms;
    AVPixelFormat m_target;
    std::optional<Resampler> m_resampler;
    FramePtr m_unsampled;
    FramePtr m_frame;
    std::vector<SampleMap> m_maps;
    bool m_sameRows = false;
};

/// Whether PictureToFrame can write frames of a kind: each sample has bytes of its own, and all bytes belong
/// to samples.
bool IsWritable(const PixelKind& kind);

} // namespace vfil::host
