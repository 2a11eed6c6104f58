/// \file
/// What a stream and its first frame say of a clip, and what is taken.

#include "host/video/statements.h"

extern "C" {
#include <libavutil/dict.h>
}

#include <algorithm>
#include <array>
#include <string_view>

namespace vfil::host {

namespace {

/// One thing known of a clip, as stream and frame say it; nothing where they are silent.
template <class T>
struct Said {
    std::optional<T> stream;
    std::optional<T> frame;
    std::optional<T> user;
    T customary;
};

/// The user is right before the frame, and the frame before the stream, as the frame's is what its codec had
/// to know.
template <class T>
Stated<T> Choose(const Said<T>& said, const std::string& what, const std::string& option,
                 std::vector<std::string>& remarks)
{
    if (said.user) return {*said.user, Origin::Override};
    if (said.stream && said.frame && *said.stream != *said.frame) {
        remarks.push_back("the stream says " + what + " " + Word(*said.stream) + ", its frames say " +
                          Word(*said.frame) + ": taken as " + Word(*said.frame) + "; --" + option +
                          " overrides it");
        return {*said.frame, Origin::Frame};
    }
    if (said.stream) return {*said.stream, Origin::Stream};
    if (said.frame) return {*said.frame, Origin::Frame};
    return {said.customary, Origin::Default};
}

std::optional<Range> RangeOf(AVColorRange range)
{
    if (range == AVCOL_RANGE_MPEG) return Range::Studio;
    if (range == AVCOL_RANGE_JPEG) return Range::Full;
    return std::nullopt;
}

/// The field that comes first. The mixed codes are meant to say which is stored first and which is shown
/// first, but what writes them means the field of the first letter.
std::optional<FieldOrder> FieldsOf(AVFieldOrder order)
{
    switch (order) {
    case AV_FIELD_PROGRESSIVE:
        return FieldOrder::Progressive;
    case AV_FIELD_TT:
    case AV_FIELD_TB:
        return FieldOrder::TopFirst;
    case AV_FIELD_BB:
    case AV_FIELD_BT:
        return FieldOrder::BottomFirst;
    default:
        return std::nullopt;
    }
}

bool IsForeign(AVColorSpace space)
{
    return space != AVCOL_SPC_UNSPECIFIED && space != AVCOL_SPC_RGB && !MatrixOf(space);
}

void SettleMatrix(const Statement& stream, const Statement& frame, const PixelKind& kind,
                  const std::optional<Matrix>& user, VideoInfo& info)
{
    const AVColorSpace foreign = IsForeign(frame.matrix) ? frame.matrix : stream.matrix;
    const bool isForeign = IsForeign(foreign) && !MatrixOf(frame.matrix);
    Said<Matrix> said{MatrixOf(stream.matrix), MatrixOf(frame.matrix), user,
                      CustomaryMatrix(info.width, info.height)};
    if (isForeign) said = {std::nullopt, std::nullopt, user, Matrix::Bt709};
    info.matrix = Choose(said, "colour matrix", "matrix 601|709", info.remarks);
    if (kind.model != Model::Ycc || info.matrix.origin != Origin::Default) return;
    const std::string taken = std::string(": taken as ") + Word(info.matrix.value);
    if (isForeign) {
        info.remarks.push_back(std::string("colour matrix ") + av_color_space_name(foreign) +
                               " is not known here" + taken + "; --matrix 601|709 overrides it");
    } else {
        info.remarks.push_back("colour matrix not stated" + taken +
                               ", as is customary for this size; --matrix 601|709 overrides it");
    }
}

void SettleRange(const Statement& stream, const Statement& frame, const PixelKind& kind,
                 const std::optional<Range>& user, VideoInfo& info)
{
    Said<Range> said{RangeOf(stream.range), RangeOf(frame.range), user, Range::Studio};
    if (kind.model == Model::Rgb) said = {Range::Full, std::nullopt, std::nullopt, Range::Full};
    if (kind.model == Model::Gray) said.customary = Range::Full;
    if (kind.fullRange && !said.stream) said.stream = Range::Full;
    info.range = Choose(said, "range", "range studio|full", info.remarks);
    if (kind.model == Model::Ycc && info.range.value == Range::Full) {
        info.remarks.emplace_back("full range is brought to studio range (luma 0 .. 255 to 16 .. 235), some "
                                  "neighbouring levels become one");
    }
}

void SettleFields(const Statement& stream, const Statement& frame, const std::optional<FieldOrder>& user,
                  VideoInfo& info)
{
    const std::string option = "field-order top|bottom|progressive";
    const Said<FieldOrder> said{FieldsOf(stream.fields), FieldsOf(frame.fields), user,
                                FieldOrder::Progressive};
    info.fieldOrder = Choose(said, "field order", option, info.remarks);
    info.streamFieldOrder = said.stream;
    info.frameFieldOrder = said.frame;
    const bool mixed = stream.fields == AV_FIELD_TB || stream.fields == AV_FIELD_BT;
    if (mixed && info.fieldOrder.origin == Origin::Stream && !said.frame) {
        info.remarks.push_back(std::string("which field is shown first is written ambiguously: taken as ") +
                               Word(info.fieldOrder.value) + "; --" + option + " overrides it");
    }
}

/// No codec says whether its colour is multiplied by alpha.
Stated<AlphaState> SettleAlpha(const Statement& stream, const PixelKind& kind,
                               const std::optional<bool>& user)
{
    if (!kind.alpha) return {AlphaState::None, Origin::Stream};
    const auto state = [](bool multiplied) {
        return multiplied ? AlphaState::Premultiplied : AlphaState::Straight;
    };
    if (user) return {state(*user), Origin::Override};
    if (stream.premultiplied) return {state(*stream.premultiplied), Origin::Stream};
    return {AlphaState::Straight, Origin::Default};
}

} // namespace

Statement StatementOf(const AVCodecParameters& stream)
{
    return {stream.color_space, stream.color_range, stream.field_order, std::nullopt};
}

Statement StatementOf(const AVFrame& frame, const AVCodecContext& decoder)
{
    const FieldOrder order = FieldOrderOf(frame);
    // FFV1 has a header of its own from the version on that says it.
    const bool early = decoder.codec_id == AV_CODEC_ID_FFV1 && decoder.extradata_size == 0;
    // Where the codec doesn't know, the flags repeat the container's words, or say progressive for silence.
    const bool says = CodecKnowsFields(decoder.codec_id) && !early;
    return {frame.colorspace, frame.color_range, says ? ToLibav(order) : AV_FIELD_UNKNOWN, std::nullopt};
}

bool CodecKnowsFields(AVCodecID codec)
{
    constexpr std::array kCodecs{AV_CODEC_ID_MPEG2VIDEO, AV_CODEC_ID_MPEG4,  AV_CODEC_ID_H264,
                                 AV_CODEC_ID_HEVC,       AV_CODEC_ID_VC1,    AV_CODEC_ID_DVVIDEO,
                                 AV_CODEC_ID_DNXHD,      AV_CODEC_ID_PRORES, AV_CODEC_ID_FFV1};
    return std::ranges::find(kCodecs, codec) != kCodecs.end();
}

Matrix CustomaryMatrix(long width, long height)
{
    return width >= 1280 || height >= 720 ? Matrix::Bt709 : Matrix::Bt601;
}

AVColorSpace ToLibav(Matrix matrix)
{
    return matrix == Matrix::Bt601 ? AVCOL_SPC_SMPTE170M : AVCOL_SPC_BT709;
}

AVFieldOrder ToLibav(FieldOrder order)
{
    if (order == FieldOrder::Progressive) return AV_FIELD_PROGRESSIVE;
    return order == FieldOrder::TopFirst ? AV_FIELD_TT : AV_FIELD_BB;
}

AVColorRange ToLibav(Range range)
{
    return range == Range::Studio ? AVCOL_RANGE_MPEG : AVCOL_RANGE_JPEG;
}

std::optional<Matrix> MatrixOf(AVColorSpace space)
{
    switch (space) {
    case AVCOL_SPC_BT709:
        return Matrix::Bt709;
    case AVCOL_SPC_FCC:
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M:
        return Matrix::Bt601;
    default:
        return std::nullopt;
    }
}

const char* Word(Matrix matrix)
{
    return matrix == Matrix::Bt601 ? "601" : "709";
}

const char* Word(Range range)
{
    return range == Range::Studio ? "studio" : "full";
}

const char* Word(FieldOrder order)
{
    if (order == FieldOrder::Progressive) return "progressive";
    return order == FieldOrder::TopFirst ? "top" : "bottom";
}

void AddTags(const AVDictionary* tags, Statement& stream)
{
    // Another program that passed them on may have changed the frames since; it signs what it writes.
    if (av_dict_get(tags, "encoder", nullptr, 0) != nullptr) return;
    const auto says = [tags](const char* tag, auto value) {
        const AVDictionaryEntry* entry = av_dict_get(tags, tag, nullptr, 0);
        return entry != nullptr && std::string_view(entry->value) == Word(value);
    };
    for (const Matrix matrix : {Matrix::Bt601, Matrix::Bt709}) {
        if (stream.matrix == AVCOL_SPC_UNSPECIFIED && says(kMatrixTag, matrix))
            stream.matrix = ToLibav(matrix);
    }
    for (const Range range : {Range::Studio, Range::Full}) {
        if (stream.range == AVCOL_RANGE_UNSPECIFIED && says(kRangeTag, range)) stream.range = ToLibav(range);
    }
    for (const FieldOrder order : {FieldOrder::Progressive, FieldOrder::TopFirst, FieldOrder::BottomFirst}) {
        if (stream.fields == AV_FIELD_UNKNOWN && says(kFieldsTag, order)) stream.fields = ToLibav(order);
    }
    if (const AVDictionaryEntry* entry = av_dict_get(tags, kPremultipliedTag, nullptr, 0))
        stream.premultiplied = std::string_view(entry->value) == "yes";
}

void Settle(const Statement& stream, const Statement& frame, const PixelKind& kind,
            const VideoOverrides& overrides, VideoInfo& info)
{
    SettleMatrix(stream, frame, kind, overrides.matrix, info);
    SettleRange(stream, frame, kind, overrides.range, info);
    SettleFields(stream, frame, overrides.fieldOrder, info);
    info.alpha = SettleAlpha(stream, kind, overrides.premultiplied);
}

} // namespace vfil::host
