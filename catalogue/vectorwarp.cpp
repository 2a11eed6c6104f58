/// \file
/// The transform family: the warp along vectors.
#include <catalogue/entryof.h>
#include <catalogue/families.h>
#include <catalogue/parameters.h>

#include <vfil/vectorwarp.h>

#include <memory>

namespace vfil::catalogue {

namespace {

using Vectors = std::shared_ptr<const VectorField>;

// A warp that holds its vectors.
class Warp : public vfILVectorWarp {
public:
    void SetVectors(const Vectors& vectors) { m_vectors = vectors; }
    const Vectors& GetVectors() const { return m_vectors; }

    void SetWarpFactor(const Table& factors)
    {
        m_factors = factors;
        const auto& n = factors.numbers;
        if (n.size() > 1)
            vfILVectorWarp::SetWarpFactor(n[0], n[1]);
        else if (!n.empty())
            vfILVectorWarp::SetWarpFactor(n[0]);
    }
    const Table& GetWarpFactor() const { return m_factors; }

    void SetFastApproximation(int approximate)
    {
        m_fast = approximate;
        vfILVectorWarp::SetFastApproximation(approximate);
    }
    int GetFastApproximation() const { return m_fast; }

    // The class warps the whole picture, and takes no notice of the region.
    vfILStatus Verify() override
    {
        if (vfILVectorWarp::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
        if (GetROI() == BoxOf(GetInputImg()) && GetROI() == BoxOf(GetOutputImg())) return VFIL_SUCCESS;
        SetLastError(vfILError(0x10060));
        return VFIL_FAILURE;
    }

protected:
    vfILStatus SetUpCoefficients() override
    {
        const vfILBbox2l box = BoxOf(GetInputImg());
        const bool fits =
            m_vectors && m_vectors->width == box.GetSizeX() && m_vectors->height == box.GetSizeY();
        vfILVectorWarp::SetVectors(fits ? m_vectors->x.data() : nullptr,
                                   fits ? m_vectors->y.data() : nullptr);
        return vfILVectorWarp::SetUpCoefficients();
    }

private:
    static vfILBbox2l BoxOf(IPXImage* image)
    {
        long width = 0;
        long height = 0;
        if (image) image->GetDimensions(&width, &height);
        return {0, 0, width, height};
    }

    Vectors m_vectors;
    Table m_factors{{1}, 1};
    int m_fast = 0;
};

Entry WarpEntry()
{
    Entry entry = WholePictureEntry<Warp>("vfILVectorWarp", "transform", "move each pixel along a vector");
    Parameter vectors = UnitParameter<&Warp::SetVectors, &Warp::GetVectors>(
        ParameterType::Vectors, std::nullopt,
        "a file of vectors as optical flow writes them, in pixels, x to the right and y down", 0);
    vectors.required = true;
    entry.inputs = {{"picture", "the picture to warp"}};
    entry.formats = {PXFormat_RGBA32, PXFormat_Mono8};
    entry.parameters = {
        vectors,
        ListParameter<&Warp::SetWarpFactor, &Warp::GetWarpFactor>(
            {.count = 2, .missing = List::Missing::Kept}, -1000, 1000, {1},
            "how far along the vectors: 1 all the way, 0.5 half of it, below 0 back from their end; or two, "
            "where along them the picture stands and where it goes"),
        FlagParameter<&Warp::SetFastApproximation, &Warp::GetFastApproximation>(
            Value{0}, "take each pixel from where its own vector points back to, which is right for vectors "
                      "that hardly change")};
    entry.multiplied = true;
    entry.movesRows = true;
    entry.spatialReach = kWholePicture;
    entry.note = "what no pixel gets to is black; with --fast-approximation the default colour";
    return entry;
}

} // namespace

std::vector<Entry> WarpEntries()
{
    std::vector<Entry> entries;
    entries.push_back(WarpEntry());
    return entries;
}

} // namespace vfil::catalogue
