/// \file
/// Audio and what else lies beside the video of an input, copied to an output as it is. Private to the host.
#pragma once

#include "host/video/clipinput.h"
#include "host/video/outputfile.h"

#include <map>

namespace vfil::host {

/// Whether a container takes a codec; where the library doesn't know, only what is customary there.
bool Holds(const AVOutputFormat& container, AVCodecID codec);

/// Copies the other streams of a clip beside frames that are written.
class OtherStreams {
public:
    /// Adds to \p output the streams that it can hold, and a line to \p remarks for each of the others.
    OtherStreams(const ClipInput& input, const OutputFile& output, std::vector<std::string>& remarks);

    /// Writes what is to be heard before \p seconds of the output, whose start is at the first frame read.
    void CopyUntil(double seconds);

private:
    void AddStreams(std::vector<std::string>& remarks);
    bool ReadPacket();
    void WritePacket();
    double SecondsOfPacket() const;

    const ClipInput& m_source;
    const OutputFile& m_output;
    InputPtr m_input; ///< a second look at the file; none when nothing is copied
    std::map<int, AVStream*> m_targets;
    PacketPtr m_packet = NewPacket();
    bool m_pending = false;
};

} // namespace vfil::host
