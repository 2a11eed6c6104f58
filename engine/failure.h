/// \file
/// How a job fails.
#pragma once

#include "engine/message.h"

#include <stdexcept>

namespace vfil::engine {

/// What is wrong with a job.
struct Fault {
    std::string where = {}; ///< its place in the file that describes the job: "chain.toml:4: ", or nothing
    std::string step = {};  ///< the name of the source, step or sink, or nothing
    std::string parameter = {}; ///< the setting that is wrong, or nothing
    Message text;
};

/// A failure with its fault; what() is the fault in bare names.
class JobError : public std::runtime_error {
public:
    explicit JobError(Fault fault)
        : std::runtime_error(fault.where + fault.text.Plain()), m_fault(std::move(fault))
    {}
    explicit JobError(const Message& text) : JobError(Fault{.parameter = text.Subject(), .text = text}) {}

    const Fault& What() const { return m_fault; }

private:
    Fault m_fault;
};

/// The request was wrong; the text says what would be right.
class RequestError : public JobError {
public:
    using JobError::JobError;
};

/// The request was right, and the run failed.
class RunError : public JobError {
public:
    using JobError::JobError;
};

/// Runs \p work; what it complains of is said of the source, step or sink of that name and place.
template <class Work>
void Concerning(const std::string& where, const std::string& step, Work work)
{
    const auto placed = [&](Fault fault) {
        fault.where = where;
        fault.step = step;
        return fault;
    };
    try {
        work();
    } catch (const RequestError& error) {
        throw RequestError(placed(error.What()));
    } catch (const RunError& error) {
        throw RunError(placed(error.What()));
    }
}

/// The user stopped the run.
class Interrupted : public std::runtime_error {
public:
    Interrupted() : std::runtime_error("interrupted") {}
};

} // namespace vfil::engine
