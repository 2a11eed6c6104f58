/// \file
/// The check of a job as a whole.
#pragma once

#include "engine/jobplan.h"

#include <memory>
#include <utility>

namespace vfil::engine {

/// A job that has been held against its pictures and clips.
class CheckedJob {
public:
    explicit CheckedJob(std::unique_ptr<const JobPlan> plan) : m_plan(std::move(plan)) {}

    const JobPlan& Plan() const { return *m_plan; }

private:
    std::unique_ptr<const JobPlan> m_plan;
};

/// Checks a job as a whole: names, loops, counts, formats, sizes, regions, names of outputs. Inserts the
/// conversions that steps and outputs need. Reads the headers of pictures and clips, and no frame.
///
/// \throws RequestError, host::FileError  One line, behind the `where` of what is wrong.
CheckedJob CheckJob(Job job);

} // namespace vfil::engine
