/// \file
/// A processor behind a uniform face, for programs that pick it by name.
#pragma once

#include <catalogue/placement.h>
#include <vfil/frame.h>

#include <concepts>
#include <cstddef>

namespace vfil::catalogue {

/// One processor. Connect the inputs, then the outputs, then apply parameters: some of them speak of what is
/// connected.
class Operator {
public:
    Operator() = default;
    Operator(const Operator&) = delete;
    Operator& operator=(const Operator&) = delete;
    virtual ~Operator() = default;

    /// What all processors share: mode, interruption, Verify, Execute, last error.
    virtual vfILProcessor& Processor() = 0;
    /// What those with one output and a region share beside that: region, mask, default colour. Null for the
    /// others. Connect pictures by the calls below instead, which know what the class adds to these setters.
    virtual vfILImgProc* Frame() = 0;
    /// How it moves its input over the output, for those that do so; else null. It goes by the parameters
    /// alone, with or without pictures.
    virtual Placement* Placing() = 0;
    /// \param index 0 is the first input, A of two. Connecting A also makes it dominant, or B of a class that
    ///              is DominatedByB.
    /// \param image Not owned; must outlive the run. Null for an optional input that is missing. Nothing
    ///              happens to a class without inputs.
    virtual void SetInput(std::size_t index, IPXImage* image) = 0;
    /// \param index 0 is the first output, A of two.
    /// \param image Not owned; must outlive the run. Null for an optional output that is not wanted.
    virtual void SetOutput(std::size_t index, IPXImage* image) = 0;
};

/// A class whose pixels are those of B, which therefore shows where the two inputs do not overlap.
template <class P>
struct DominatedByB : P {
    static constexpr std::size_t kDominant = 1;
};

/// The operator of a processor class.
template <class P>
class OperatorOf final : public Operator {
public:
    /// \param simd False runs the plain arithmetic whatever the machine has.
    explicit OperatorOf(bool simd) : m_processor(simd) {}

    vfILProcessor& Processor() override { return m_processor; }

    vfILImgProc* Frame() override
    {
        if constexpr (std::derived_from<P, vfILImgProc>)
            return &m_processor;
        else
            return nullptr;
    }

    Placement* Placing() override
    {
        if constexpr (std::derived_from<P, Placement>)
            return &m_processor;
        else
            return nullptr;
    }

    void SetInput(std::size_t index, IPXImage* image) override
    {
        if constexpr (requires(P p) { p.SetCompImgA(image); }) {
            if (index == 0)
                m_processor.SetInputImg(image);
            else
                index == 1 ? m_processor.SetCompImgA(image) : m_processor.SetCompImgB(image);
        } else if constexpr (requires(P p) { p.SetInputImg(image); })
            m_processor.SetInputImg(image);
        else if constexpr (requires(P p) { p.SetInputImgA(image); })
            index == 0 ? m_processor.SetInputImgA(image) : m_processor.SetInputImgB(image);
        if constexpr (std::derived_from<P, vfILDyadicImgProc>)
            if (index == DominantIndex()) m_processor.SetDominantInput(image);
    }

    void SetOutput(std::size_t index, IPXImage* image) override
    {
        if constexpr (requires(P p) { p.SetOutputImg(image); })
            m_processor.SetOutputImg(image);
        else if (index == 0)
            m_processor.SetOutputImgA(image);
        else
            m_processor.SetOutputImgB(image);
    }

private:
    static constexpr std::size_t DominantIndex()
    {
        if constexpr (requires { P::kDominant; })
            return P::kDominant;
        else
            return 0;
    }

    // The flag is the processor's own: only a class that derives from it can clear it.
    struct Concrete final : P {
        explicit Concrete(bool simd)
        {
            if (!simd) this->m_simdAvailable = 0;
        }
    };

    Concrete m_processor;
};

} // namespace vfil::catalogue
