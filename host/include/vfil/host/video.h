/// \file
/// Moving pictures: clips read and written frame by frame, and what is known of them.
///
/// Frames keep the colour model that the stream has. 4:2:2 of 8 bits arrives as PXFormat_YUV422_601 or _709
/// (PXFormat_YCC422_* where the stream packs luma first), 4:2:0 and 4:1:1 are raised to it, an alpha plane
/// makes it PXFormat_YCCA422_601 or _709; RGB arrives as RGBA32 or RGBA64, grey as Mono8 or Mono16, 4:4:4 of
/// BT.601 as YCCA32 or YCCA64. What has no such format arrives in the nearest, and VideoInfo::remarks says
/// so. All YCC frames are of studio range: those of a full-range stream are brought to it, and back when
/// written.
#pragma once

#include <vfil/host/export.h>
#include <vfil/host/picture.h>
#include <vfil/host/picturefile.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vfil::host {

enum class Matrix { Bt601, Bt709 };
enum class Range { Studio, Full };
enum class FieldOrder { Progressive, TopFirst, BottomFirst };

/// Who says what is known of a clip.
enum class Origin {
    Stream,   ///< the header of the stream
    Frame,    ///< the first frame
    Override, ///< the user
    Default,  ///< nobody: this is what is customary for such a clip
};

/// Something known of a clip, and who says it.
template <class T>
struct Stated {
    T value{};
    Origin origin = Origin::Default;
};

struct Ratio {
    long numerator = 0; ///< 0 for unknown
    long denominator = 1;
};

/// What the user knows better than the stream, and how frames are wanted.
struct VideoOverrides {
    std::optional<Matrix> matrix{};
    std::optional<Range> range{};
    std::optional<FieldOrder> fieldOrder{};
    std::optional<bool> premultiplied{};
    /// YCC frames arrive as 4:2:2 of 8 bits, with an alpha plane where there is alpha, whatever the stream
    /// has; a remark says what that loses.
    bool subsampled = false;
};

/// What is known of a clip.
struct VideoInfo {
    std::string container;   ///< "mov,mp4,m4a,3gp,3g2,mj2"
    std::string codec;       ///< "h264"
    std::string pixelFormat; ///< of the stream, in the words of the codec library: "yuv420p"
    long width = 0;          ///< in pixels
    long height = 0;
    int depth = 0;              ///< bits of a sample in the stream
    Ratio rate;                 ///< frames a second
    Ratio aspect;               ///< width to height of a pixel
    std::optional<long> frames; ///< absent when the file does not say, as for a stream
    Stated<Matrix> matrix;      ///< of RGB and grey clips: what a conversion to YCC would take
    Stated<Range> range;
    Stated<FieldOrder> fieldOrder;
    std::optional<FieldOrder> streamFieldOrder; ///< what the header of the stream says of it by itself
    std::optional<FieldOrder> frameFieldOrder;  ///< what the first frame says
    Stated<AlphaState> alpha;
    vfILGuid format{};                     ///< of the frames that VideoReader::Read gives
    std::vector<std::string> otherStreams; ///< "audio aac 48000 Hz stereo"
    std::vector<std::string> remarks;      ///< what was contradictory or lost, a line each, with the remedy
};

/// What a reader holds open: the file, its decoder and what is known of both. Private to the host.
class VFIL_LOCAL ClipInput;

/// Reads a clip in order.
///
/// An object is for one thread at a time; different objects are independent.
class VFIL_HOST_API VideoReader {
public:
    /// \param path "-" is standard input.
    /// \throws FileError  There is no such file, it holds no video, its codec is unknown, it is damaged.
    explicit VideoReader(const std::filesystem::path& path, const VideoOverrides& overrides = {});
    VideoReader(VideoReader&&) noexcept;
    VideoReader& operator=(VideoReader&&) noexcept;
    ~VideoReader();

    const VideoInfo& Info() const;
    /// The next frame; null behind the last. Its state 2 says whether it is premultiplied.
    /// \throws FileError  The clip is damaged or cut short, or its frames change their size.
    PicturePtr Read();
    /// The next frame, as one before those that a clip made of them begins with: other streams are copied
    /// from the first one on that Read gives. Otherwise as Read.
    PicturePtr ReadBefore();
    /// Passes over one frame without converting it. False behind the last. Throws as Read does.
    bool Skip();

    /// What a writer takes after that is to make a clip like this one.
    const ClipInput& Input() const { return *m_input; }

private:
    std::unique_ptr<ClipInput> m_input;
};

/// What a clip is to be.
struct VideoSettings {
    vfILGuid format{}; ///< of the frames that Write takes
    long width = 0;
    long height = 0;
    Ratio rate{25, 1};
    Ratio aspect{1, 1};
    Matrix matrix = Matrix::Bt601; ///< of RGB and grey frames too: a codec that takes YCC alone refuses those
    Range range = Range::Studio;
    FieldOrder fieldOrder = FieldOrder::Progressive;
    AlphaState alpha = AlphaState::None;
    /// Empty: \p likeInput's where the container can hold it and alpha is kept, else the container's.
    std::string codec;
    /// A name or an ending. Empty: by the name's ending; NUT for "-". "nut" and "y4m" stream.
    std::string container;
    /// Options of the codec by name, as its library has them: {"crf", "18"}.
    std::vector<std::pair<std::string, std::string>> codecOptions;
    /// Codec and sampling to prefer, and whose other streams are copied where the container takes them. May
    /// be null. Must outlive the writer.
    const VideoReader* likeInput = nullptr;
    /// False takes only the codec from likeInput: the sampling is that of the frames, as far as the codec has
    /// it.
    bool likeSampling = true;
};

/// Writes a clip in order. The file appears under its name when Finish has returned: until then, and after a
/// failure, a file that had that name is untouched, and nothing else is left behind.
///
/// An object is for one thread at a time.
class VFIL_HOST_API VideoWriter {
public:
    /// \param path "-" is standard output.
    /// \throws FileError  No such container or codec, a codec that cannot hold alpha where there is alpha, an
    ///                    odd width for 4:2:2, a folder that does not exist.
    VideoWriter(const std::filesystem::path& path, const VideoSettings& settings);
    VideoWriter(VideoWriter&&) noexcept;
    VideoWriter& operator=(VideoWriter&&) noexcept;
    /// Drops the file unless Finish was called.
    ~VideoWriter();

    /// The codec and the pixel format chosen, for reports: "mpeg2video yuv422p".
    const std::string& Description() const;
    /// What the file cannot carry, a line each: an audio stream dropped, fewer bits.
    const std::vector<std::string>& Remarks() const;
    /// \throws FileError  The disk is full, the pipe is closed (see PipeClosed), the codec fails.
    void Write(const Picture& frame);
    /// Ends the file and gives it its name. Also right after fewer frames than were meant.
    void Finish();

private:
    class VFIL_LOCAL Impl;
    std::unique_ptr<Impl> m_impl;
};

/// The reader of standard output went away: no fault of ours.
class VFIL_HOST_API PipeClosed : public std::runtime_error {
public:
    PipeClosed() : std::runtime_error("standard output was closed") {}
};

/// The formats that frames may have so that \p path (with codec and container of \p settings) holds them
/// without a change of colour model, best first for frames of \p settings.format. Empty for an unknown kind.
VFIL_HOST_API std::vector<vfILGuid> FormatsOfVideo(const std::filesystem::path& path,
                                                   const VideoSettings& settings);

/// Whether a path names a clip rather than a picture: "-", or a file that is none of the picture files.
VFIL_HOST_API bool IsVideo(const std::filesystem::path& path);

} // namespace vfil::host
