/// \file
/// Reports on how legal the frames are that a job makes legal: before and after, frame by frame.
#pragma once

#include "engine/probe.h"
#include "host/temporaryfile.h"
#include "legality/judge.h"

#include <nlohmann/json_fwd.hpp>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vfil::tool {

/// Judges what steps take and make, and writes it: a line a frame to a file where one is asked for.
class LegalReports final : public engine::Probe {
public:
    /// Begins the files, which get their names by Finish.
    ///
    /// \param keepAll Record is wanted: also of steps without a file.
    /// \throws host::FileError  A file cannot be made.
    LegalReports(const engine::JobPlan& plan, bool keepAll);
    ~LegalReports() override;

    /// Whether there is anything to judge.
    bool AreWanted() const { return !m_reports.empty(); }

    std::unique_ptr<Sight> Look(const engine::StepPlan& step, const std::vector<host::PicturePtr>& inputs,
                                const std::vector<host::PicturePtr>& results) const override;
    void Take(const engine::StepPlan& step, std::unique_ptr<Sight> sight) override;

    /// Completes the files.
    ///
    /// \throws engine::RunError
    void Finish();
    /// What was seen of a step; null of one that is not reported on.
    nlohmann::ordered_json Record(const engine::StepPlan& step) const;
    /// A line on each file: "legal.csv: 25 frames, 3.1 % of the pixels ..."
    std::vector<std::string> Lines() const;

private:
    struct Report;

    std::map<const engine::StepPlan*, std::unique_ptr<Report>> m_reports;
};

} // namespace vfil::tool
