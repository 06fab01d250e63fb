// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_plots/curves.h"

#include <cstdio>
#include <string_view>

// velkor-plots: prints the curves that the manual's plots are drawn from. scripts/make-plots calls it.

namespace
{
struct Plot
{
    std::string_view name;
    void (*print)();
};

constexpr Plot kPlots[] = {
    { "filter-morph", printFilterMorph },
    { "filter-resonance", printFilterResonance },
    { "filter-reach", printFilterReach },
    { "saturation", printSaturation },
    { "limits", printLimits },
    { "pan", printPan },
    { "lfo", printLfo },
    { "envelope", printEnvelope },
    { "glide", printGlide },
};
}  // namespace

void beginCurve (const char* name)
{
    std::printf ("# %s\n", name);
}

void point (double x, double y)
{
    std::printf ("%.6g %.6g\n", x, y);
}

void point (double x, double y, double z)
{
    std::printf ("%.6g %.6g %.6g\n", x, y, z);
}

void endCurve()
{
    std::printf ("\n\n");
}

int main (int argc, char** argv)
{
    for (const auto& plot : kPlots)
        if (argc == 2 && plot.name == argv[1])
        {
            plot.print();
            return std::fflush (stdout) == 0 ? 0 : 1;
        }

    std::fprintf (stderr, "usage: velkor-plots NAME, which is one of:");

    for (const auto& plot : kPlots)
        std::fprintf (stderr, " %s", plot.name.data());

    std::fprintf (stderr, "\n");
    return 2;
}
