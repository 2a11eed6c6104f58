/// \file
/// Status and error values: what every processor reports.
#pragma once

#include <vfil/export.h>

#include <cstddef>
#include <cstdint>

/// What a stage of a processor returns. A test for success compares with VFIL_SUCCESS.
enum vfILStatus : int {
    VFIL_SUCCESS = 1,
    VFIL_FAILURE = -1,
};

/// An error code: 0 none, 0x1xxxx fatal, 0x2xxxx a warning by number. It carries no text; vfILErrorText and
/// vfILFormatError have it.
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
/// "%s ERROR Verify: Input image is NULL\n". Null for a code that is not in the table. Where operators share
/// a code it is a text that fits all of them; vfILProcessor::GetLastErrorText has that of the place.
VFIL_API const char* vfILErrorText(unsigned long code);

class vfILProcessor;

/// Writes a processor's last error as a message of one line, without a line feed:
/// "vfILOverImage ERROR Verify: Input image A is NULL".
///
/// \param processor Its code, and the text of the place where it was stored.
/// \param buffer    Receives the message and a zero. May be null when \p size is 0.
/// \param size      Bytes of the buffer; a longer message is cut.
/// \param name      Stands in the message for the class; null for the class in which the error was stored,
/// which
///                  may be a base of the processor's.
/// \return          The length of the whole message without the zero: it was cut when that is not below \p
/// size.
VFIL_API std::size_t vfILFormatError(const vfILProcessor& processor, char* buffer, std::size_t size,
                                     const char* name = nullptr) noexcept;
/// The same for a code alone, with the text of vfILErrorText.
VFIL_API std::size_t vfILFormatError(const vfILError& error, char* buffer, std::size_t size,
                                     const char* name = nullptr) noexcept;
