/// \file
/// Our colour correction: of RGBA in 8 and 16 bits, and of 4:2:2.
#include "frames.h"

#include <vfil/treat.h>

#include <array>

namespace bench {

namespace {

using Correct = vfILColorCorrectionImg;

/// Luma drawn to the middle, and chroma with it.
std::array<std::int16_t, 1024> MakeLut()
{
    std::array<std::int16_t, 1024> lut{};
    for (std::size_t i = 0; i < 256; ++i) {
        const int fromMiddle = static_cast<int>(i) - 128;
        lut[4 * i] = static_cast<std::int16_t>(-fromMiddle / 4);
        lut[4 * i + 1] = static_cast<std::int16_t>(fromMiddle / 16);
        lut[4 * i + 2] = static_cast<std::int16_t>(-fromMiddle / 16);
    }
    return lut;
}

/// A curve a channel.
std::array<std::uint8_t, 1024> MakeTables()
{
    std::array<std::uint8_t, 1024> tables{};
    for (std::size_t i = 0; i < tables.size(); ++i) {
        const std::size_t v = i % 256;
        const std::size_t bend = i / 256;
        tables[i] = static_cast<std::uint8_t>((v * v / 255 * bend + v * 3) / (3 + bend));
    }
    return tables;
}

struct Tables {
    bool lut, rgba;
};

/// \param mode  Alpha counts only where it is selected.
void AddCorrection(const std::string& operation, const GUID& format, Tables tables,
                   unsigned long mode = VFIL_MODE_RGBA, bool masked = false)
{
    static auto lut = MakeLut();
    static auto rgbaLut = MakeTables();
    Add(operation, kOurs, [=](const Frame& frame) {
        Correct correct;
        correct.SetInputImg(&frame.In(format));
        correct.SetOutputImg(&frame.Out(format));
        correct.SetProcessingMode(mode);
        correct.SetHue(20);
        correct.SetSaturation(120);
        correct.SetGain(95);
        correct.SetOffset(2);
        if (tables.lut) correct.SetLut(lut.data());
        if (tables.rgba) correct.SetRGBALut(rgbaLut.data());
        if (masked) {
            vfil::host::Picture& mask = format == PXFormat_RGBA32 ? *frame.mask : *frame.front16;
            correct.SetMask(0, 0, kWidth, kHeight, &mask,
                            format == PXFormat_RGBA32 ? PXImageChannel_MONO : PXImageChannel_GREEN);
        }
        Execute(correct);
    });
}

void AddCorrections()
{
    for (const auto& [name, format] :
         {std::pair(kCorrect, PXFormat_RGBA32), std::pair(kCorrect16, PXFormat_RGBA64),
          std::pair(kCorrect422, PXFormat_YUV422_601)}) {
        AddCorrection(name + std::string(kByMatrix), format, {false, false});
        AddCorrection(name + std::string(kByTables), format, {false, true});
        AddCorrection(name + std::string(", matrix and luma table"), format, {true, false});
        AddCorrection(name + std::string(", matrix and both tables"), format, {true, true});
    }
    AddCorrection(std::string(kCorrect) + ", matrix and both tables, of colour", PXFormat_RGBA32,
                  {true, true}, VFIL_MODE_RGB);
    AddCorrection(std::string(kCorrect) + ", matrix, mask", PXFormat_RGBA32, {false, false}, VFIL_MODE_RGBA,
                  true);
    AddCorrection(std::string(kCorrect16) + ", matrix, mask", PXFormat_RGBA64, {false, false}, VFIL_MODE_RGBA,
                  true);
    AddCorrection(std::string(kCorrect422) + ", matrix, alpha", PXFormat_YCCA422_601, {false, false});
}

const Source s_source(AddCorrections);

} // namespace
} // namespace bench
