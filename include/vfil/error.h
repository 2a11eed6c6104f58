/// \file
/// Status and error values: what every processor reports.
#pragma once

#include <vfil/export.h>

#include <cstdint>

/// What a stage of a processor returns. A test for success compares with VFIL_SUCCESS.
enum vfILStatus : int {
    VFIL_SUCCESS = 1,
    VFIL_FAILURE = -1,
};

/// An error code: 0 none, 0x1xxxx fatal, 0x2xxxx a warning by number. It carries no text; vfILErrorText has
/// it.
class VFIL_API vfILError {
public:
    vfILError();
    explicit vfILError(unsigned long code);
    vfILError(const vfILError& other);
    vfILError& operator=(const vfILError& other);
    virtual ~vfILError();

    /// 1 when the codes are equal, else 0.
    int operator==(const vfILError& other) const;
    operator unsigned long() const;
    unsigned long GetErrorCode() const;
    /// \param code Kept in 32 bits.
    void SetErrorCode(unsigned long code);

    /// 1 when the code is 0.
    int IsNoError() const;
    /// 1 when 0x10000 <= code <= 0x1FFFF.
    int IsFatalError() const;
    /// 1 when 0x20000 <= code <= 0x2FFFF.
    int IsWarning() const;

private:
    std::uint32_t m_code;
};

/// The text of a code, a format string with one %s for the class name, ending in a line feed:
/// "%s ERROR Verify: Input image is NULL\n". Null for a code that is not in the table. Where several sites
/// share a code it is the text of the most general one.
VFIL_API const char* vfILErrorText(unsigned long code);
