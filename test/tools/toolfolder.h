/// \file
/// A folder in which tests run the tool as a process.
#pragma once

#include "test/support/testfolder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>
#include <vector>

#include <sys/wait.h>

namespace vfil::tool {

struct ProcessResult {
    int status = 0;
    std::string out;
    std::string err;
};

/// A run that is refused, and what its message says.
struct Refusal {
    std::string arguments;
    std::vector<std::string> texts;
    int status = 2;
};

/// A test with a folder of its own.
class ToolFolder : public TestFolder {
protected:
    ~ToolFolder() override { fs::remove_all(Folder().string() + ".io"); }

    /// Runs a line of a shell in the folder. What it says goes to a folder beside the test's, which holds
    /// nothing but what the tool left.
    ProcessResult Shell(const std::string& line) const
    {
        const fs::path io = Folder().string() + ".io";
        fs::create_directory(io);
        const std::string command = "cd '" + Folder().string() + "' && { " + line + "\n} </dev/null >'" +
                                    (io / "out").string() + "' 2>'" + (io / "err").string() + "'";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Bytes(io / "out"), Bytes(io / "err")};
    }

    /// Runs the tool with \p arguments, which a shell takes apart.
    ProcessResult Run(const std::string& arguments) const { return Shell("'" VFIL_TOOL "' " + arguments); }

    /// What a run says that goes well.
    std::string RunWell(const std::string& arguments) const
    {
        const ProcessResult result = Run(arguments);
        EXPECT_EQ(result.status, 0) << arguments;
        EXPECT_EQ(result.err, "") << arguments;
        return result.out;
    }

    /// Each run ends with its status and texts, prints nothing else, and leaves the folder as it was.
    void ExpectRefusals(const std::vector<Refusal>& refusals, const std::string& messages) const
    {
        const auto before = Files();
        for (const Refusal& refusal : refusals) {
            SCOPED_TRACE(refusal.arguments);
            const ProcessResult result = Run(refusal.arguments);
            EXPECT_EQ(result.status, refusal.status);
            EXPECT_EQ(result.out, "");
            EXPECT_THAT(result.err, testing::MatchesRegex(messages));
            for (const std::string& text : refusal.texts)
                EXPECT_THAT(result.err, testing::HasSubstr(text));
            EXPECT_TRUE(Files() == before);
        }
    }
};

} // namespace vfil::tool
