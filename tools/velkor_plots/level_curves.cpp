// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/delay_fad.h"
#include "engine/filter_multimode.h"
#include "engine/router_panner.h"
#include "engine/saturation.h"
#include "velkor_plots/curves.h"

#include <string>

void printSaturation()
{
    constexpr int kPoints = 400;

    for (const int tenths : { 0, 10, 37, 60, 90, 110 })
    {
        // The control shows its value times 11.
        const float k = saturationConstant (static_cast<float> (tenths) / 110.0f);
        beginCurve ((std::to_string (tenths / 10) + "." + std::to_string (tenths % 10)).c_str());

        for (int i = 0; i <= kPoints; ++i)
        {
            const double x = 2.0 * i / kPoints - 1.0;
            point (x,
                   static_cast<double> (saturation (splat (k), splat (static_cast<float> (x)))[0]));
        }

        endCurve();
    }
}

void printLimits()
{
    constexpr int kPoints = 600;
    constexpr double kReach = 3.0;
    beginCurve ("filter");

    for (int i = 0; i <= kPoints; ++i)
    {
        const double x = kReach * (2.0 * i / kPoints - 1.0);
        FilterMultimode filter;

        // At rest, without coefficient and damping, both passes of the notch hand half of the input on, the first
        // one as it came: what is left is the limiter.
        filter_multimode_dsp_morph (filter, static_cast<float> (2.0 * x));
        point (x, static_cast<double> (filter.out));
    }

    endCurve();
    beginCurve ("feedback");

    for (int i = 0; i <= kPoints; ++i)
    {
        const double x = kReach * (2.0 * i / kPoints - 1.0);
        point (x, static_cast<double> (
                      feedbackShape (splat (1.0f), splat (static_cast<float> (x)))[0]));
    }

    endCurve();
}

void printPan()
{
    constexpr int kPoints = 200;
    RouterPanner1to2 panner;
    router_panner_1to2_init (panner);

    for (const bool isRight : { false, true })
    {
        beginCurve (isRight ? "right" : "left");

        for (int i = 0; i <= kPoints; ++i)
        {
            const double pan = static_cast<double> (i) / kPoints;
            router_panner_1to2_set (panner, static_cast<float> (pan));
            point (20.0 * pan - 10.0, static_cast<double> (isRight ? panner.gainR : panner.gainL));
        }

        endCurve();
    }

    router_panner_1to2_free (panner);
}
