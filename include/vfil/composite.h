/// \file
/// The layer operators, which combine a front with a back under one set of rules for premultiplication,
/// strength and output alpha, and the masked mix. Input A is the back, input B the front: B goes over A.
#pragma once

#include <vfil/frame.h>

/// What becomes of the output's alpha.
enum vfILAlphaMode : int {
    VFIL_ALPHA_ZERO = 1,     ///< 0
    VFIL_ALPHA_FULL = 2,     ///< 255 or 65535
    VFIL_ALPHA_COMPUTED = 3, ///< by the operator's rule
};

/// The frame of the layer operators.
///
/// In the rules below, t is the extra transparency, a and b a colour channel of A and B, Aa and Ba their
/// alphas, all normalised to 1. f = t b when B is premultiplied, else t Ba b; q = a when A is premultiplied,
/// else Aa a; s = t b whatever the premultiplication; u = t Ba. 8-bit products round to nearest and sums
/// clip; 16-bit results have the rounding of their own that vfILImgProc's channel arithmetic states, unless
/// SetFullScale16 asks for those of 8 bits.
///
/// A channel that the processing mode does not select takes the dominant input's value. The samples of a mask
/// have no effect; its box still bounds the operated region. RGBA, 8 and 16 bits.
///
/// SetInputImgA, SetInputImgB and SetOutputImg also read the picture's state 2 into the matching
/// premultiplied flag. They hide the frame's setters and are not virtual: a call through a pointer to the
/// frame leaves the flags alone.
class VFIL_API vfILCompImg : public vfILDyadicPixelProc {
public:
    vfILCompImg();
    vfILCompImg(const vfILCompImg& other);
    vfILCompImg& operator=(const vfILCompImg& other) = default;
    ~vfILCompImg() override;
    /// Adds 0x1000D (a format that is not RGBA), 0x10012 (extra transparency outside 0 .. 1), 0x1005A (alpha
    /// mode).
    vfILStatus Verify() override;

protected:
    vfILStatus DoEffect() override;
    virtual vfILStatus Process8() = 0;
    virtual vfILStatus Process16() = 0;

private:
    virtual const wchar_t* GetClassNameW() const = 0;
    /// Sets the parameters to their defaults.
    virtual void Init();
    /// Forgets what was learned of the connected pictures.
    virtual void Trash();

public:
    void SetInputImgA(IPXImage* image);
    void SetInputImgB(IPXImage* image);
    void SetOutputImg(IPXImage* image);

    vfILAlphaMode GetAlphaMode() const;
    /// \param mode Default VFIL_ALPHA_COMPUTED. Takes effect when the processing mode selects alpha.
    void SetAlphaMode(vfILAlphaMode mode);
    /// States whether A's colour is already multiplied by its alpha. Does nothing while A is not connected.
    void SetImgAPremultiplied(int premultiplied);
    int GetImgAPremultiplied() const;
    /// The same for B.
    void SetImgBPremultiplied(int premultiplied);
    int GetImgBPremultiplied() const;
    /// Sets the output picture's state 2, and keeps the value when the picture takes it. Every run reports
    /// the state of its result so. Does nothing without an output.
    void SetOutputPremultiplied(int premultiplied);
    int GetOutputImgPremultiplied() const;
    /// Non-zero takes A's colour as it stands (vfILOverImage only). Default 0.
    void NeverPremultiplyBackImage(int never);
    int IsNeverPremultiplyBackImage() const;
    double GetExtraTransparency() const;
    /// \param strength The front's strength, 0 .. 1; 1, the default, is full strength.
    void SetExtraTransparency(double strength);
    int GetFullScale16() const;
    /// \param fullScale Non-zero gives 16-bit pictures the rules of 8 bits with 65535 for 255: each product
    /// rounds to nearest, and sums clip. By default, 0, they have those of vfILImgProc's channel arithmetic,
    /// by which over shows next to nothing of an opaque front, the back next to nothing of itself in
    /// add-no-clip, and diff only low bytes. 8-bit and 4:2:2 pictures are the same either way.
    void SetFullScale16(int fullScale);

private:
    double m_extraTransparency;
    vfILAlphaMode m_alphaMode;
    int m_imgAPremultiplied;
    int m_imgBPremultiplied;
    int m_outputPremultiplied;
    int m_neverPremultiplyBack;
    int m_fullScale16;
};

/// The front over the back: f + (1 - u) q, alpha u + (1 - u) Aa. Also takes the 4:2:2 formats with an alpha
/// plane; for them the checks of extra transparency and alpha mode are not made. Its plain 8-bit loop does
/// not poll the interrupt.
class VFIL_API vfILOverImage : public vfILCompImg {
public:
    vfILStatus Verify() override;

protected:
    vfILStatus DoEffect() override;
    vfILStatus Process8() override;
    vfILStatus Process16() override;

private:
    // FP or FNP: the front is premultiplied or not; BP or BNP: the back is. PAC computes the alpha, PNAC
    // takes the constant; both are for whole pixels at full strength.
    vfILStatus Process8FPBP_MMX();
    vfILStatus Process8FNPBP_MMX();
    vfILStatus Process8FPBNP_MMX();
    vfILStatus Process8FNPBNP_MMX();
    vfILStatus Process8FPBPAC();
    vfILStatus Process8FPBPNAC();
    vfILStatus ProcessYUVA422();
    vfILStatus ProcessYUVA422_FPBP();
    vfILStatus ProcessYUVA422_Intrinsics();
    vfILStatus DoEffect8();
    vfILStatus DoEffectYUVA422();
    bool IsBackPremultiplied() const;

    const wchar_t* GetClassNameW() const override;
    static const wchar_t* const m_ClassName;
};

/// The front where the back is: Aa f, alpha Aa u.
class VFIL_API vfILInImage : public vfILCompImg {
protected:
    vfILStatus Process8() override;
    vfILStatus Process16() override;

private:
    const wchar_t* GetClassNameW() const override;
    static const wchar_t* const m_ClassName;
};

/// The front where the back is not: (1 - Aa) f, alpha (1 - Aa) u.
class VFIL_API vfILOutImage : public vfILCompImg {
protected:
    vfILStatus Process8() override;
    vfILStatus Process16() override;

private:
    const wchar_t* GetClassNameW() const override;
    static const wchar_t* const m_ClassName;
};

/// The front where the back is, over the back: (1 - u) q + Aa f, alpha (1 - u) Aa + Aa u.
class VFIL_API vfILAtopImage : public vfILCompImg {
protected:
    vfILStatus Process8() override;
    vfILStatus Process16() override;

private:
    const wchar_t* GetClassNameW() const override;
    static const wchar_t* const m_ClassName;
};

/// Either where the other is not: (1 - u) q + (1 - Aa) f, alpha (1 - u) Aa + (1 - Aa) u.
class VFIL_API vfILXorImage : public vfILCompImg {
protected:
    vfILStatus Process8() override;
    vfILStatus Process16() override;

private:
    const wchar_t* GetClassNameW() const override;
    static const wchar_t* const m_ClassName;
};

/// The sum, clipped: s + a; alpha likewise.
class VFIL_API vfILAddImage : public vfILCompImg {
protected:
    vfILStatus Process8() override;
    vfILStatus Process16() override;

private:
    const wchar_t* GetClassNameW() const override;
    static const wchar_t* const m_ClassName;
};

/// The sum without clipping: s (1 - a) + a; alpha likewise.
class VFIL_API vfILAddNoClipImage : public vfILCompImg {
protected:
    vfILStatus Process8() override;
    vfILStatus Process16() override;

private:
    const wchar_t* GetClassNameW() const override;
    static const wchar_t* const m_ClassName;
};

/// The distance: |s - a|; alpha likewise. At 16 bits only its low byte, unless at full scale.
class VFIL_API vfILDiffImage : public vfILCompImg {
protected:
    vfILStatus Process8() override;
    vfILStatus Process16() override;

private:
    const wchar_t* GetClassNameW() const override;
    static const wchar_t* const m_ClassName;
};

/// The product: s a; alpha likewise.
class VFIL_API vfILMultImage : public vfILCompImg {
protected:
    vfILStatus Process8() override;
    vfILStatus Process16() override;

private:
    const wchar_t* GetClassNameW() const override;
    static const wchar_t* const m_ClassName;
};

/// The larger of s and a; alpha likewise.
class VFIL_API vfILLighterImage : public vfILCompImg {
protected:
    vfILStatus Process8() override;
    vfILStatus Process16() override;

private:
    const wchar_t* GetClassNameW() const override;
    static const wchar_t* const m_ClassName;
};

/// The smaller of s and a; alpha likewise.
class VFIL_API vfILDarkerImage : public vfILCompImg {
protected:
    vfILStatus Process8() override;
    vfILStatus Process16() override;

private:
    const wchar_t* GetClassNameW() const override;
    static const wchar_t* const m_ClassName;
};

/// The lightness of the front with the hue, saturation and alpha of the back. Colour channels are not
/// selectable.
class VFIL_API vfILLumImage : public vfILCompImg {
protected:
    vfILStatus Process8() override;
    vfILStatus Process16() override;

private:
    const wchar_t* GetClassNameW() const override;
    static const wchar_t* const m_ClassName;
};

/// The hue, saturation and alpha of the front on the lightness of the back. Colour channels are not
/// selectable.
class VFIL_API vfILColImage : public vfILCompImg {
protected:
    vfILStatus Process8() override;
    vfILStatus Process16() override;

private:
    const wchar_t* GetClassNameW() const override;
    static const wchar_t* const m_ClassName;
};

/// The brighter pixel as a whole, by (29 R + 57 G + 11 B) / 97; a tie keeps A. Colour channels are not
/// selectable.
class VFIL_API vfILNonAddImage : public vfILCompImg {
protected:
    vfILStatus Process8() override;
    vfILStatus Process16() override;

private:
    const wchar_t* GetClassNameW() const override;
    static const wchar_t* const m_ClassName;
};

/// The darker pixel as a whole, by (29 R + 57 G + 11 B) / 97; a tie keeps A. Colour channels are not
/// selectable.
class VFIL_API vfILInvNonAddImage : public vfILCompImg {
protected:
    vfILStatus Process8() override;
    vfILStatus Process16() override;

private:
    const wchar_t* GetClassNameW() const override;
    static const wchar_t* const m_ClassName;
};

/// The masked mix: B over A by the mask's value times the amount, without premultiplication. All four
/// channels are written; in VFIL_ALPHA_COMPUTED the alpha is the bitwise or of both alphas, also where the
/// mask is 0, so the matte grows. RGBA, 8 and 16 bits.
class VFIL_API vfILCompositeImg : public vfILDyadicPixelProc {
public:
    vfILCompositeImg();
    vfILCompositeImg(const vfILCompositeImg& other);
    vfILCompositeImg& operator=(const vfILCompositeImg& other) = default;
    ~vfILCompositeImg() override;
    /// Selects all channels and makes A dominant, then checks. Adds 0x1000D (a format that is not RGBA),
    /// 0x10059 (no mask), 0x10012 (amount outside 0 .. 1), 0x1005A (alpha mode).
    vfILStatus Verify() override;

    double GetAlpha() const;
    /// \param amount The strength of the mix, 0 .. 1; default 1.
    void SetAlpha(double amount);
    vfILAlphaMode GetAlphaMode() const;
    /// \param mode Default VFIL_ALPHA_COMPUTED.
    void SetAlphaMode(vfILAlphaMode mode);

protected:
    vfILStatus DoEffect() override;

private:
    void Init();
    // Or joins the alphas, Fill takes the constant.
    vfILStatus Over32OrWithMask();
    vfILStatus Over32FillWithMask();
    vfILStatus Over64OrWithMask();
    vfILStatus Over64FillWithMask();

    double m_alpha;
    vfILAlphaMode m_alphaMode;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
