// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/image_strip.h"

#include <BinaryData.h>
#include <gtest/gtest.h>

namespace
{

struct Strip
{
    const char* file;
    int frames, width, frameHeight;
};

const char* embeddedData (const juce::String& file, int& size)
{
    for (int i = 0; i < BinaryData::namedResourceListSize; ++i)
        if (file == BinaryData::originalFilenames[i])
            return BinaryData::getNamedResource (BinaryData::namedResourceList[i], size);

    return nullptr;
}

bool samePixels (const juce::Image& a, const juce::Image& b)
{
    for (int y = 0; y < a.getHeight(); ++y)
        for (int x = 0; x < a.getWidth(); ++x)
            if (a.getPixelAt (x, y) != b.getPixelAt (x, y))
                return false;

    return true;
}

}  // namespace

TEST (Artwork, HasTheSizesAndFramesThatTheControlsCutItInto)
{
    constexpr Strip strips[] = {
        { "velkor_bg.png", 1, 750, 525 }, { "slider_lg.png", 1, 16, 15 },
        { "slider_sm.png", 1, 11, 11 },   { "btn_sync.png", 2, 47, 18 },
        { "btn_thru.png", 2, 47, 18 },    { "btn_loop.png", 2, 47, 18 },
        { "btn_reverse.png", 2, 47, 18 }, { "btn_reset.png", 2, 47, 18 },
        { "btn_mono.png", 2, 47, 18 },    { "btn_kill.png", 2, 47, 18 },
        { "btn_phasel.png", 2, 47, 18 },  { "btn_phaser.png", 2, 47, 18 },
        { "sw_mult.png", 4, 92, 18 },     { "sw_wave.png", 4, 93, 36 },
        { "matrix_sw.png", 2, 14, 12 },   { "midi_led.png", 2, 20, 19 },
    };

    for (const auto& strip : strips)
    {
        int size = 0;
        const auto* data = embeddedData (strip.file, size);
        ASSERT_NE (data, nullptr) << strip.file;
        const auto image = juce::ImageFileFormat::loadFrom (data, static_cast<std::size_t> (size));
        EXPECT_EQ (image.getWidth(), strip.width) << strip.file;
        EXPECT_EQ (image.getHeight(), strip.frames * strip.frameHeight) << strip.file;
        const auto frames = stripFrames (image, strip.frames);

        for (int a = 0; a < strip.frames; ++a)
            for (int b = 0; b < a; ++b)
                EXPECT_FALSE (samePixels (frames[a], frames[b]))
                    << strip.file << " " << a << " " << b;
    }
}

TEST (Artwork, StaysUnderTwoMegabytes)
{
    int sum = 0;

    for (int i = 0; i < BinaryData::namedResourceListSize; ++i)
    {
        int size = 0;
        BinaryData::getNamedResource (BinaryData::namedResourceList[i], size);

        if (juce::String (BinaryData::originalFilenames[i]) != "Presets.zip")
            sum += size;
    }

    EXPECT_GT (sum, 100000);
    EXPECT_LT (sum, 2 * 1024 * 1024);
}
