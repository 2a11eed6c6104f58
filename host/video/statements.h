/// \file
/// What a stream and its first frame say of a clip, and what is taken where they are silent or disagree.
/// Private to the host.
#pragma once

#include "host/video/pixelkind.h"

namespace vfil::host {

/// What one of the two says; the libraries' codes, which have a value for silence.
struct Statement {
    AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
    AVColorRange range = AVCOL_RANGE_UNSPECIFIED;
    AVFieldOrder fields = AV_FIELD_UNKNOWN;
    std::optional<bool> premultiplied;
};

Statement StatementOf(const AVCodecParameters& stream);
/// A frame of a codec that knows no fields says nothing of them.
Statement StatementOf(const AVFrame& frame, const AVCodecContext& decoder);

/// Whether frames of a codec say which of their rows belong to which field.
bool CodecKnowsFields(AVCodecID codec);

/// The matrix that clips of a size customarily have.
Matrix CustomaryMatrix(long width, long height);

/// The libraries' codes for what is known, and back; the customary primaries and transfer go with a matrix.
AVColorSpace ToLibav(Matrix matrix);
AVFieldOrder ToLibav(FieldOrder order);
AVColorRange ToLibav(Range range);
std::optional<Matrix> MatrixOf(AVColorSpace space);

/// Where a stream that passes between two runs of this host keeps what its container has no place for.
inline constexpr const char* kMatrixTag = "vfil_matrix";
inline constexpr const char* kRangeTag = "vfil_range";
inline constexpr const char* kFieldsTag = "vfil_fields";
inline constexpr const char* kPremultipliedTag = "vfil_premultiplied";

/// "601" and the like: the words of the command's options.
const char* Word(Matrix matrix);
const char* Word(Range range);
const char* Word(FieldOrder order);

/// Adds to \p stream what the tags in \p tags say, where it is silent. Only tags that come straight from a
/// writer of this host count.
void AddTags(const AVDictionary* tags, Statement& stream);

/// Fills the stated members of \p info, and its remarks.
///
/// \param info  Has its size.
void Settle(const Statement& stream, const Statement& frame, const PixelKind& kind,
            const VideoOverrides& overrides, VideoInfo& info);

} // namespace vfil::host
