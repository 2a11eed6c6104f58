/// \file
/// What is said of a job, in parts that each face writes in its own way: a command as options, a chain as
/// entries, a window as fields.
#pragma once

#include <string>
#include <variant>
#include <vector>

namespace vfil::engine {

/// Something that can be set, by its name.
struct SettingName {
    std::string name;
    bool ofRun = false; ///< of the run as a whole; else of a source, a step or a sink
};

/// What is set of a source, a step or a sink.
inline SettingName Named(std::string name)
{
    return {std::move(name), false};
}

/// What is set of the run as a whole.
inline SettingName OfRun(std::string name)
{
    return {std::move(name), true};
}

/// The name of the file that a sink writes.
struct OutputFile {};

/// An operator that would help, with one thing set.
struct OperatorUse {
    std::string name;
    std::string setting;
    std::string value;
};

/// Where to read of an operator.
struct HelpOn {
    std::string name;
};

/// A line of text with such parts.
class Message {
public:
    using Part = std::variant<std::string, SettingName, OutputFile, OperatorUse, HelpOn>;

    Message() = default;
    Message(std::string text) : m_parts{std::move(text)} {}
    Message(const char* text) : m_parts{std::string(text)} {}
    Message(SettingName part) : m_parts{std::move(part)} {}
    Message(OutputFile part) : m_parts{part} {}
    Message(OperatorUse part) : m_parts{std::move(part)} {}
    Message(HelpOn part) : m_parts{std::move(part)} {}

    Message& operator+=(const Message& other);
    const std::vector<Part>& Parts() const { return m_parts; }
    bool IsEmpty() const { return m_parts.empty(); }
    /// The setting that the message begins with, or "".
    std::string Subject() const;
    /// The text with bare names, for those who have no way of their own.
    std::string Plain() const;

private:
    std::vector<Part> m_parts;
};

inline Message operator+(Message a, const Message& b)
{
    a += b;
    return a;
}

} // namespace vfil::engine
