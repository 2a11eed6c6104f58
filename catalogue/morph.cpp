/// \file
/// The morph family: the smallest and the largest samples below a structuring element.
#include <catalogue/families.h>
#include <catalogue/frame.h>

#include <vfil/morphology.h>

namespace vfil::catalogue {

namespace {

constexpr int kRadius = 1;

// An operator that keeps what its structuring element is made of.
template <class P>
class Shaped : public FilterAsExpected<P, kRadius> {
public:
    Shaped()
    {
        // One of the two values that there are: they are treated alike.
        this->SetMode(vfILMorphologyMode{1});
        Renew();
    }

    void SetShape(vfILStructuralType shape)
    {
        m_shape = shape;
        Renew();
    }
    vfILStructuralType GetShape() const { return m_shape; }

    void SetReach(const Value& radius)
    {
        m_reach = radius;
        Renew();
    }
    const Value& GetReach() const { return m_reach; }

    void SetElement(const Table& table)
    {
        m_table = table;
        m_entries = FromBottom<long>(table, [](double number) { return number != 0 ? 1L : 0L; });
        Renew();
    }
    const Table& GetElement() const { return m_table; }

private:
    void Renew()
    {
        if (m_entries.empty())
            this->SetStructuringElement(m_shape, 1, static_cast<float>(m_reach.x),
                                        static_cast<float>(m_reach.y), 0, 0);
        else
            this->SetStructuringElement(m_entries.data(), m_table.columns / 2, m_table.Rows() / 2);
    }

    vfILStructuralType m_shape = VFIL_STRUCT_RECTANGLE;
    Value m_reach{kRadius, kRadius};
    Table m_table; ///< takes the place of shape and reach, unless it is empty
    std::vector<long> m_entries;
};

template <class P>
Parameter Shape()
{
    return ChoiceParameter<&Shaped<P>::SetShape, &Shaped<P>::GetShape>(
        VFIL_STRUCT_RECTANGLE, "the shape of the structuring element",
        {{"rectangle", VFIL_STRUCT_RECTANGLE, "the whole window"},
         {"ellipse", VFIL_STRUCT_ELLIPSE, "what of it is in the ellipse of the radius"}},
        0x1005B);
}

template <class P>
Parameter Reach()
{
    Parameter parameter = Radius(kRadius, "of the structuring element, without fractions");
    parameter.apply = [](vfILProcessor& p, const Value& v) { As<Shaped<P>>(p).SetReach(v); };
    parameter.read = [](const vfILProcessor& p) { return As<Shaped<P>>(p).GetReach(); };
    return parameter;
}

template <class P>
Parameter Element()
{
    return TableParameter<&Shaped<P>::SetElement, &Shaped<P>::GetElement>(
        0, 1, "the structuring element, instead of shape and radius: 1 for a pixel that counts, or 0");
}

template <class P>
Entry Morphology(const char* className, const char* summary)
{
    return SpatialEntry<Shaped<P>>(className, "morphology", summary, {Shape<P>(), Reach<P>(), Element<P>()});
}

// Two operators, one after the other.
template <class P>
Entry Chain(const char* className, const char* summary)
{
    Entry entry = Morphology<P>(className, summary);
    entry.radiusReach = 2;
    entry.bands = false;
    return entry;
}

} // namespace

std::vector<Entry> MorphEntries()
{
    std::vector<Entry> entries;
    entries.push_back(Morphology<vfILErodeImg>("vfILErodeImg", "take the smallest samples: dark parts grow"));
    entries.push_back(
        Morphology<vfILDilateImg>("vfILDilateImg", "take the largest samples: bright parts grow"));
    entries.push_back(
        Chain<vfILOpenImg>("vfILOpenImg", "erode, then dilate: small bright parts are removed"));
    entries.push_back(
        Chain<vfILCloseImg>("vfILCloseImg", "dilate, then erode: small dark parts are removed"));
    Entry edge = Morphology<vfILMorphologicalEdge>("vfILMorphologicalEdge", "show what dilation brightens");
    edge.channels = VFIL_MODE_RGB;
    entries.push_back(std::move(edge));
    return entries;
}

} // namespace vfil::catalogue
