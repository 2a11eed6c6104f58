/// \file
/// One run of one processor, and what it says when it refuses.
#pragma once

#include "catalogue/catalogue.h"
#include "engine/conversion.h"
#include "engine/job.h"
#include <vfil/host/picture.h>

#include <memory>
#include <vector>

namespace vfil::engine {

/// Verify and Execute.
///
/// \param interrupt  Stops the run when it is not 0; may be null.
/// \throws RequestError, RunError, Interrupted
void Execute(const catalogue::Entry& entry, vfILProcessor& processor, volatile long* interrupt);

/// A picture that is made anew only when its format or size changes: the buffer of one stage of a worker.
class Buffer {
public:
    /// Bytes are those of the last use.
    const host::PicturePtr& Get(const GUID& format, long width, long height);

private:
    host::PicturePtr m_picture;
};

/// A conversion with its processors and pictures, for one thread at a time.
class Converter {
public:
    Converter(const Conversion& conversion, const RunSettings& settings);

    /// The converted picture, which holds until the next call; \p picture itself when there is nothing to do.
    host::PicturePtr Convert(const host::PicturePtr& picture);

private:
    struct Hop {
        ConversionHop hop;
        std::unique_ptr<catalogue::Operator> op; ///< null where the host converts
        Buffer buffer;
    };

    std::vector<Hop> m_hops;
    ConversionOptions m_options;
    volatile long* m_interrupt;
};

} // namespace vfil::engine
