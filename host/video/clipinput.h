/// \file
/// A clip that is read: what the reader holds, and the writer looks at for what it is to resemble. Private to
/// the host.
#pragma once

#include "host/video/framecopy.h"
#include "host/video/statements.h"

namespace vfil::host {

class ClipInput {
public:
    ClipInput(const std::filesystem::path& path, const VideoOverrides& overrides);

    PicturePtr Read();
    PicturePtr ReadBefore();
    bool Skip();

    const VideoInfo& Info() const { return m_info; }
    const std::filesystem::path& Path() const { return m_path; }
    const AVCodecParameters& Parameters() const { return *m_stream->codecpar; }
    const PixelKind& Kind() const { return m_kind; }
    int StreamIndex() const { return m_stream->index; }
    /// When the first frame that Read gave is shown, in seconds of the file's own clock.
    double FirstReadTime() const { return m_firstReadTime; }

private:
    void OpenStream();
    void OpenDecoder(const AVCodec& codec);
    void Describe();
    void Settle(const Statement& header, const VideoOverrides& overrides);
    FramePtr Decode();
    FramePtr NextFrame();
    PicturePtr PictureOf(const AVFrame& frame);
    void FeedDecoder();
    double StatedSeconds() const;
    void CheckComplete();
    void CheckUnchanged(const AVFrame& frame) const;
    double SecondsOf(const AVFrame& frame) const;
    [[noreturn]] void ThrowDamaged(const std::string& text) const;

    std::filesystem::path m_path;
    InputPtr m_input;
    AVStream* m_stream = nullptr;
    CodecPtr m_decoder;
    PacketPtr m_packet = NewPacket();
    VideoInfo m_info;
    PixelKind m_kind;
    std::optional<FrameToPicture> m_copy;
    FramePtr m_peeked;
    long m_decoded = 0;
    double m_firstTime = 0; ///< of the first frame, in seconds
    double m_lastTime = 0;  ///< of the newest frame
    double m_firstReadTime = 0;
    std::int64_t m_packetEnd = 0; ///< where the newest packet ends in the file
    bool m_anyRead = false;
    bool m_sawKey = false;
};

} // namespace vfil::host
