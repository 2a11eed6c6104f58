/// \file
/// The tool as a process in a folder of its own, and the small pictures that it works on.
#pragma once

#include "host/picturefile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace vfil::test {

struct ProcessResult {
    int status = 0;
    std::string out;
    std::string err;
};

/// Each test has an empty folder, which goes with it. Paths without a folder in what a test passes lie there.
class ToolTest : public testing::Test {
protected:
    ToolTest();
    ~ToolTest() override;

    /// Runs the tool with \p arguments, which a shell takes apart.
    ProcessResult Run(const std::string& arguments) const;
    /// Runs a line of a shell in the folder.
    ProcessResult Shell(const std::string& line) const;
    /// Expects status 0, and nothing on standard error.
    ProcessResult RunWell(const std::string& arguments) const;

    std::filesystem::path Path(const std::string& name) const { return m_folder / name; }
    std::string Bytes(const std::string& name) const;
    void WriteBytes(const std::string& name, const std::string& bytes) const;
    /// The names of all files in the folder, sorted.
    std::vector<std::string> Files() const;

    /// Writes a picture whose sample \p channel at (x, y) is value(x, y, channel); y up.
    void Make(const std::string& name, const GUID& format, long width, long height,
              const std::function<int(long x, long y, int channel)>& value) const;
    /// One channel of a picture file, in rows from the top.
    std::vector<std::vector<int>> Channel(const std::string& name, int channel = 0) const;

private:
    std::filesystem::path m_folder;
};

} // namespace vfil::test
