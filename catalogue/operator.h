/// \file
/// A processor behind a uniform face, for programs that pick it by name.
#pragma once

#include <vfil/frame.h>

#include <concepts>
#include <cstddef>

namespace vfil::catalogue {

/// One processor. Connect the inputs, then the output, then apply parameters: some of them speak of what is
/// connected.
class Operator {
public:
    Operator() = default;
    Operator(const Operator&) = delete;
    Operator& operator=(const Operator&) = delete;
    virtual ~Operator() = default;

    /// What all processors share: mode, interruption, region, mask, default colour, Verify, Execute, last
    /// error. Connect pictures by the calls below instead, which know what the class adds to these setters.
    virtual vfILImgProc& Frame() = 0;
    /// \param index 0 is the first input, A of two. Connecting A also makes it dominant.
    /// \param image Not owned; must outlive the run.
    virtual void SetInput(std::size_t index, IPXImage* image) = 0;
    /// \param image Not owned; must outlive the run.
    virtual void SetOutput(IPXImage* image) = 0;
};

/// The operator of a processor class.
template <class P>
class OperatorOf final : public Operator {
public:
    /// \param simd False runs the plain arithmetic whatever the machine has.
    explicit OperatorOf(bool simd) : m_processor(simd) {}

    vfILImgProc& Frame() override { return m_processor; }

    void SetInput(std::size_t index, IPXImage* image) override
    {
        if constexpr (!std::derived_from<P, vfILDyadicImgProc>) {
            m_processor.SetInputImg(image);
        } else if (index == 0) {
            m_processor.SetInputImgA(image);
            m_processor.SetDominantInput(image);
        } else {
            m_processor.SetInputImgB(image);
        }
    }

    void SetOutput(IPXImage* image) override { m_processor.SetOutputImg(image); }

private:
    // The flag is the processor's own: only a class that derives from it can clear it.
    struct Processor final : P {
        explicit Processor(bool simd)
        {
            if (!simd) this->m_simdAvailable = 0;
        }
    };

    Processor m_processor;
};

} // namespace vfil::catalogue
