/// \file
/// The same operators by pixman, which composes in place: its output is the back. Its operators are named
/// from the source's view, as ours are from the front's.
#include "bench/frames.h"

#include <pixman.h>

#include <utility>

namespace bench {

namespace {

pixman_image_t* Wrap(std::uint8_t* plane, pixman_format_code_t format, std::size_t rowBytes)
{
    return pixman_image_create_bits(format, kWidth, kHeight, reinterpret_cast<std::uint32_t*>(plane),
                                    static_cast<int>(rowBytes));
}

void Compose(pixman_op_t op, const Frame& frame, pixman_format_code_t frontFormat, bool masked)
{
    pixman_image_t* front = Wrap(frame.front->Pixels(), frontFormat, kWidth * 4);
    pixman_image_t* mask = masked ? Wrap(frame.mask->Pixels(), PIXMAN_a8, kWidth) : nullptr;
    pixman_image_t* back = Wrap(frame.back->Pixels(), PIXMAN_a8b8g8r8, kWidth * 4);
    pixman_image_composite32(op, front, mask, back, 0, 0, 0, 0, 0, 0, kWidth, kHeight);
    pixman_image_unref(front);
    if (mask != nullptr) pixman_image_unref(mask);
    pixman_image_unref(back);
}

void AddPixman()
{
    const std::pair<const char*, pixman_op_t> operators[] = {
        {"over", PIXMAN_OP_OVER},          {"in", PIXMAN_OP_IN},   {"out", PIXMAN_OP_OUT},
        {"atop", PIXMAN_OP_ATOP},          {"xor", PIXMAN_OP_XOR}, {"add", PIXMAN_OP_ADD},
        {"add-no-clip", PIXMAN_OP_SCREEN}, // a + b - a * b too
    };
    for (const auto& [name, op] : operators)
        Add(name + std::string(kInPlace), "pixman",
            [op = op](const Frame& frame) { Compose(op, frame, PIXMAN_a8b8g8r8, false); });
    // An opaque source through a mask over the destination is the mix of both.
    Add(std::string("masked mix") + kInPlace, "pixman",
        [](const Frame& frame) { Compose(PIXMAN_OP_OVER, frame, PIXMAN_x8b8g8r8, true); });
    Add("copy", "pixman", [](const Frame& frame) {
        pixman_blt(reinterpret_cast<std::uint32_t*>(frame.back->Pixels()),
                   reinterpret_cast<std::uint32_t*>(frame.out->Pixels()), kWidth, kWidth, 32, 32, 0, 0, 0, 0,
                   kWidth, kHeight);
    });
}

const Source s_source(AddPixman);

} // namespace
} // namespace bench
