/// \file
/// A listener for tests that keeps what a run tells.
#pragma once

#include "engine/runjob.h"

#include <optional>
#include <string>
#include <vector>

namespace vfil::engine {

/// Says nothing.
class Silence final : public RunEvents {
public:
    void OnRemark(const Message& text) override { remarks.push_back(text.Plain()); }
    void OnConversion(const InsertedConversion& conversion) override
    {
        converted.push_back(conversion.label);
    }
    void OnFrames(std::optional<long> count) override { frames = count; }
    void OnFrame() override { ++done; }
    void OnFramesEnd() override { ended = true; }

    std::vector<std::string> remarks;
    std::vector<std::string> converted;
    std::optional<long> frames;
    long done = 0;
    bool ended = false;
};

} // namespace vfil::engine
