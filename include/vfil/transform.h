/// \file
/// The frame of the geometric transforms of one picture: a mapping, and its resampling.
///
/// Coordinates are pixels of the region of interest's plane, rows counted from the lowest. The centre of a
/// pixel lies on whole numbers: pixel (0, 0) covers -0.5 .. 0.5 in both axes.
#pragma once

#include <vfil/frame.h>
#include <vfil/interpolation.h>

namespace vfil {
struct FootprintPlanes;
} // namespace vfil

/// What all transforms share apart from the mapping: the crop of the source, a border inside of what is left,
/// an opacity with a falloff towards the edges, and what the pictures say of premultiplication.
///
/// Groups of four are left, right, top, bottom, in pixels, each 0 by default. Top is the side of row y = 0,
/// the lowest of the picture: what a crop leaves of the source begins at x = left, y = top.
///
/// Border, softness, falloff and opacity act with VFIL_INTERP_PANZOOM alone; the crop acts with every type.
class VFIL_API vfILTransformBase {
public:
    vfILTransformBase() = default;
    vfILTransformBase(const vfILTransformBase& other) = default;
    vfILTransformBase& operator=(const vfILTransformBase& other) = default;
    virtual ~vfILTransformBase();

protected:
    /// Checks the members against a source of \p width x \p height pixels, in this order: opacity outside 0
    /// .. 1 or NaN (0x1006E), a softness larger than its border (0x10070), crops that exceed the source
    /// (0x10069), borders that exceed what the crop leaves (0x10070), falloffs that do (0x1006F).
    ///
    /// \param code Set when the result is a failure; the caller sets the error.
    virtual vfILStatus OnVerify(long width, long height, long& code);

public:
    /// Pixels that are removed from the source.
    void SetCropping(unsigned long left, unsigned long right, unsigned long top, unsigned long bottom);
    void GetCropping(unsigned long& left, unsigned long& right, unsigned long& top,
                     unsigned long& bottom) const;
    /// The width of the border, which is painted inside of the cropped source.
    void SetBorderSize(unsigned long left, unsigned long right, unsigned long top, unsigned long bottom);
    void GetBorderSize(unsigned long& left, unsigned long& right, unsigned long& top,
                       unsigned long& bottom) const;
    /// The width of the ramp at the border's inner edge; at most the border's.
    void SetBorderSoftness(unsigned long left, unsigned long right, unsigned long top, unsigned long bottom);
    void GetBorderSoftness(unsigned long& left, unsigned long& right, unsigned long& top,
                           unsigned long& bottom) const;
    /// The width of the ramp from clear to opaque at each edge.
    void SetOpacityFalloff(unsigned long left, unsigned long right, unsigned long top, unsigned long bottom);
    void GetOpacityFalloff(unsigned long& left, unsigned long& right, unsigned long& top,
                           unsigned long& bottom) const;
    /// \param color Default (0, 0, 0, 0).
    void SetBorderColor(const vfILColor& color);
    const vfILColor& GetBorderColor() const;
    /// \param opacity 0 .. 1, default 1.
    void SetOpacity(double opacity);
    double GetOpacity() const;
    /// Whether the colour of input A (the one input, where there is one) is premultiplied. Default 0.
    void SetImgAPremultiplied(int premultiplied);
    int GetImgAPremultiplied() const;
    void SetInputImgPremultiplied(int premultiplied);
    int GetInputImgPremultiplied() const;
    void SetImgBPremultiplied(int premultiplied);
    int GetImgBPremultiplied() const;
    /// Whether the output is to be premultiplied. Default 0.
    void SetCreatePremultipliedOutput(int premultiplied);
    int GetCreatePremultipliedOutput() const;
    /// Whether the last output is premultiplied.
    int GetOutputImgPremultiplied() const;

protected:
    // Pure functions of the two-pass resampler, whose unit of weight is 16384 for a whole output pixel.

    /// The strength of a band along both ends of a line, at position \p p of it: 1 in the bands, 0 between
    /// them, and a cubic ramp over softness + 1 pixels at their inner ends.
    ///
    /// \param a        The first pixel of the line.
    /// \param b        The last one.
    /// \param inLow    The width of the band at the first pixel.
    /// \param softLow  How much of it is ramp.
    /// \param inHigh   The width of the band at the last pixel.
    /// \param softHigh How much of it is ramp.
    static double ComputeFalloff(long p, unsigned long a, unsigned long b, long inLow, unsigned long softLow,
                                 long inHigh, unsigned long softHigh);
    /// Where a shrinking run stands before output \p position.
    ///
    /// \param step      What is left of the pixel \p base, in weights.
    /// \param fraction  The share of a whole pixel. With 0 the result is (base, 0).
    /// \param stride    From a pixel to the next.
    /// \param remainder What is left of the pixel \p index.
    static void GetInputPixelAndFraction(long base, unsigned long step, unsigned long fraction, long stride,
                                         long position, long& index, unsigned long& remainder);
    /// Resamples one run of samples.
    ///
    /// \param magnify   0 takes means of all pixels that an output covers, else two neighbours are mixed.
    /// \param low       What lies before this index of \p in counts as 0, and is not read.
    /// \param high      The same for what lies behind this one.
    /// \param step      The share of a whole input pixel (shrinking), or the distance of two outputs.
    /// \param start     The first index.
    /// \param fraction  What is left of that pixel (shrinking), or its weight. Shrinking with a step of 0
    ///                  would never end, and writes zeros.
    /// \param stride    From an index to the next.
    static void ResampleOneRowUSHORT(int magnify, long low, long high, unsigned short* in, long count,
                                     unsigned short* out, unsigned long step, long start,
                                     unsigned long fraction, long stride);
    /// Paints a row of RGBA pixels under what \p back has already. Sums are limited to 255.
    ///
    /// \param premultiplied Whether the front's colour is.
    static void PerformOverOnRowRGBA8(int premultiplied, unsigned char* front, unsigned char* back,
                                      long count);
    /// Finds the first run of pairs that lie within low .. high with both entries.
    ///
    /// \param begin The first pair to look at.
    /// \param end   The last one.
    /// \param rows2 Pairs that have to lie there too, or null.
    /// \param first The first pair of the run; end + 1 where there is none.
    /// \param last  Its last pair; end where there is none.
    /// \return 1 when there is a run, else 0.
    static int FindFullyInsideSpan(long begin, long end, unsigned short* rows, unsigned short* rows2,
                                   unsigned short low, unsigned short high, long& first, unsigned long& last);
    /// For a run: what GetOutputImgPremultiplied tells.
    void SetOutputImgPremultiplied(int premultiplied);
    /// \return 1 for a null pointer, with the error 0x10001 and \p status a failure; else 0.
    int AllocFailed(void* memory, vfILStatus& status);
    /// The two-pass resampler. Output pixel (x, y) of the region of interest's plane shows (sx x + tx, sy y +
    /// ty) of picture A. Along an axis whose scale is above 1 each output is the mean of what it covers,
    /// below 1 a mix of two neighbours, at 1 the nearest pixel. What lies outside of A counts as nothing; it
    /// and what of A is transparent lets picture B through, or the default colour. The order is: crop, border
    /// over the source, opacity and falloff, resampling in x, in y, and the result over the background.
    ///
    /// Channels are treated alike, which is right for premultiplied colour. When the colour of A is not
    /// premultiplied, it is multiplied by alpha first wherever that matters: for a background that is not
    /// wholly transparent, a border, an opacity or a falloff, and when a premultiplied output is asked for;
    /// GetOutputImgPremultiplied tells. Fails with 0x10001 when memory is short.
    ///
    /// \param simd           Whether vectors are allowed; the result is the same.
    /// \param pixelsA        A's pixels, or a copy of them that has the same rows.
    /// \param premultipliedA Whether A's colour is.
    /// \param b              Null for none. Its format is A's.
    /// \param boxB           The part of B that shows, in B's coordinates.
    /// \param offsetB        What is added to a position in the plane to come to them.
    /// \param effectBox      The output pixels to write, in the plane; they lie in the output.
    /// \param outputOffset   What is added to a position in the plane to come to the output's.
    /// \param mode           The processing mode, of which the field bits count.
    /// \param premultipliedOutput Whether the output is to be premultiplied.
    vfILStatus TransformImageWithAntialiasedOrBilinearPanzoom(
        int simd, double sx, double tx, double sy, double ty, IPXImage* a, void* pixelsA, int premultipliedA,
        IPXImage* b, void* pixelsB, const vfILBbox2l& boxB, const vfILVector2l& offsetB,
        const vfILColor& defaultColor, IPXImage* output, const vfILBbox2l& effectBox,
        const vfILVector2l& outputOffset, int mode, int premultipliedOutput);

private:
    /// Left, right, top, bottom.
    struct Edges {
        unsigned long left = 0, right = 0, top = 0, bottom = 0;

        void CopyTo(unsigned long& l, unsigned long& r, unsigned long& t, unsigned long& b) const
        {
            l = left;
            r = right;
            t = top;
            b = bottom;
        }
    };

    Edges m_cropping;
    Edges m_borderSize;
    Edges m_borderSoftness;
    Edges m_opacityFalloff;
    vfILColor m_borderColor{0.0, 0.0, 0.0, 0.0};
    double m_opacity = 1;
    int m_imgAPremultiplied = 0;
    int m_imgBPremultiplied = 0;
    int m_outputImgPremultiplied = 0;
    int m_createPremultipliedOutput = 0;
};

/// What a leaf of the transforms' frame knows of a run, from PrepareData to CleanData.
struct vfILTransformRun {
    vfILPictureView input; ///< its pixels are of a copy where the output is the same picture
    vfILPictureView output;
    vfILBbox2l sourceBox; ///< what the crop leaves of the input
    vfILBbox2l effectBox; ///< what runs through a line function, in coordinates of the region of interest
    vfILBbox2l effectAtOutput;                     ///< the same in the output's coordinates
    vfILBbox2l outputBox;                          ///< the region's size at the output offset
    vfILRowWalk rows;                              ///< the output's rows of the effect box
    alignas(8) unsigned char defaultPixel[8] = {}; ///< the default colour in the pictures' format
};

/// The pictures of the pyramid of VFIL_INTERP_BILINEAR_PREFILTERED, each half as large as the one before.
/// They belong to a run: a copy is empty.
class VFIL_API vfILTransformLevels {
public:
    static constexpr long kMost = 32;

    vfILTransformLevels() = default;
    vfILTransformLevels(const vfILTransformLevels& other);
    vfILTransformLevels& operator=(const vfILTransformLevels& other);
    ~vfILTransformLevels();
    long GetCount() const { return m_count; }
    const vfILPictureView& operator[](long level) const { return m_views[level]; }
    /// Takes over one reference. False when there are kMost already.
    bool Add(IPXImage* picture);
    void Release();

private:
    long m_count = 0;
    vfILPictureView m_views[kMost];
};

/// The frame of the transforms of one input. A leaf gives the mapping; the frame finds which output pixels it
/// can reach, fills the rest with the default colour, and resamples row by row, from output to input. What
/// lies outside of the input, or was cropped, reads as the default colour.
///
/// The formats are RGBA and mono of 8 and 16 bits. All channels are written, and there is no mask; the mode's
/// field bits select rows by their parity in the output. Input and output may be the same picture.
class VFIL_API vfILMonadicTransformProc : public vfILMonadicImgProc, public vfILTransformBase {
public:
    vfILMonadicTransformProc();
    vfILMonadicTransformProc(const vfILMonadicTransformProc& other);
    vfILMonadicTransformProc& operator=(const vfILMonadicTransformProc& other);
    ~vfILMonadicTransformProc() override;
    vfILStatus Execute() override;
    /// Adds the codes of OnVerify, 0x1000E (input and output formats differ), 0x20002 (a channel is not
    /// processed), 0x20001 (a mask, or a mask box that does not cover the input), 0x1000F (filtering level
    /// below 0 or NaN), 0x10010 (the mapping is singular, or does not lead back to the input's corners).
    vfILStatus Verify() override;

protected:
    vfILStatus PrepareData() override;
    vfILStatus ProcessData() override;
    vfILStatus CleanData() override;
    /// Runs the line function of the interpolation type over the rows of the effect box.
    virtual vfILStatus DoEffect();
    /// Makes the two point mappings of the coefficients. Fails where they have no inverse.
    virtual vfILStatus SetUpCoefficients() = 0;
    /// From input to output coordinates, in place.
    virtual void TransformPointXY(float& x, float& y) = 0;
    /// From output to input coordinates, in place.
    virtual void InvertTransformPointXY(float& x, float& y) = 0;
    /// The same in homogeneous coordinates: the point is (x / w, y / w).
    ///
    /// \return 1, or 0 where the point has no source. Here w is 1 and the result 1.
    virtual int InvertTransformPointXYZ(float& x, float& y, float& w);
    // The line functions: \p width output pixels from \p start to the right, to \p output.
    virtual void TransformLineWithNearestNeighborInterpolation(const vfILVector2f& start, long width,
                                                               unsigned char* output);
    virtual void TransformLineWithBilinearInterpolation(const vfILVector2f& start, long width,
                                                        unsigned char* output);
    virtual void TransformLineWithBicubicInterpolation(const vfILVector2f& start, long width,
                                                       unsigned char* output);
    virtual void TransformLineWithBilinearPrefilteredInterpolation(const vfILVector2f& start, long width,
                                                                   unsigned char* output);
    virtual void TransformLineWithPixelSumming(const vfILVector2f& start, long width, unsigned char* output);
    /// The planes that bound the input: \p first of one side, and \p second of the other side of a
    /// projection. Here 4 and 0.
    virtual void GetNumClipPlanes(unsigned long& first, unsigned long& second);
    /// Plane \p i as a x + b y + c z + d >= 0, for an input of \p width x \p height pixels.
    virtual void GetClipPlaneCoefficients(unsigned long i, long width, long height, double& a, double& b,
                                          double& c, double& d);

    /// For the constructor of a leaf: how many coefficients it has, at most 16. They are all 0.
    void SetCoefficientCount(long count);
    /// For the constructor of a leaf whose mapping, in homogeneous coordinates, is linear: sums of footprints
    /// are faster then.
    void KeepsLines() { m_keepsLines = true; }
    /// For the Verify of a leaf: the frame's, then 0x1000F (a type above \p lastType, or unknown) and 0x1000D
    /// (a format that is neither RGBA nor mono).
    vfILStatus VerifyTransform(vfILInterpolationType lastType, const wchar_t* className);
    const vfILTransformRun& Run() const { return m_run; }
    /// The pyramid; empty with other types than VFIL_INTERP_BILINEAR_PREFILTERED.
    const vfILTransformLevels& Levels() const { return m_levels; }

public:
    /// \param coefficients As many as the transform has; they are copied. Null does nothing.
    void SetCoefficients(const float* coefficients);
    const float* GetCoefficients() const;
    /// \param type Default VFIL_INTERP_NEAREST. The leaf's Verify refuses what it does not have (0x1000F).
    void SetInterpolationType(vfILInterpolationType type);
    vfILInterpolationType GetInterpolationType() const;
    /// \param level How much wider than a pixel the footprints of types 5 to 7 are, in half pixels, and the
    ///              radius of the blur under the pyramid of type 4, which 16-bit pictures go without. At
    ///              least 0, the default; without effect on types 1 to 3. The part of the output that is
    ///              treated does not grow with it: what wide footprints would show beyond has the default
    ///              colour.
    void SetFilteringLevel(double level);
    double GetFilteringLevel() const;
    /// Maps a point from input to output. Fails with 0x10010 where SetUpCoefficients fails.
    vfILStatus Transform(vfILVector2f& point);
    /// Maps a point from output to input.
    vfILStatus InvertTransform(vfILVector2f& point);

private:
    static constexpr long kMostCoefficients = 16;

    void Init();
    vfILStatus TransformPoint(vfILVector2f& point);
    vfILStatus InvertTransformPoint(vfILVector2f& point);
    bool LeadsBack(long width, long height);
    vfILStatus PreparePictures();
    void PrepareBoxes();
    vfILStatus PrepareInput();
    vfILStatus BuildPyramid();
    vfILStatus FillFirstLevel(IPXImage* level);
    vfILStatus CopyInput(IPXImage* to);
    vfILStatus BlurInto(IPXImage* level, IPXImage* input);
    vfILStatus CreatePicture(long width, long height, IPXImage*& picture);
    bool MapBack(float x, float y, double& u, double& v);
    void MapRow(float x, float y, long count, double* u, double* v);
    void SampleLine(const vfILVector2f& start, long width, unsigned char* output);
    double FootprintSizeAt(float x, float y);
    long ClipPlanes(unsigned long first, unsigned long count, double (*planes)[4]);
    void MapCorner(double x, double y, double& u, double& v, double& w);
    struct Corners;
    void MapCorners(double left, double right, double low, double high, Corners& corners);
    template <class Format>
    void SumLine(const vfILVector2f& start, long width, double half, const vfil::FootprintPlanes* planes,
                 unsigned char* output);

    bool m_keepsLines = false;
    long m_coefficientCount = 0;
    float m_coefficients[kMostCoefficients] = {};
    vfILInterpolationType m_interpolationType = VFIL_INTERP_NEAREST;
    double m_filteringLevel = 0;
    IPXImageFactory* m_factory = nullptr;
    vfILTransformRun m_run;
    vfILRunBuffer m_inputCopy;
    vfILTransformLevels m_levels;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
