// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/VelkorPanel.h"
#include "ui/ui_fixture.h"

#include <gtest/gtest.h>
#include <map>

namespace
{

struct Panel : testing::Test
{
    Panel()
    {
        panel.setVisible (true);
        panel.setSize (900, 630);
    }

    VelkorAudioProcessor processor;
    VelkorPanel panel { processor, processor.parameterTree };
};

}  // namespace

TEST_F (Panel, HasOneControlForEveryParameterThatReachesIt)
{
    std::map<juce::String, int> controls;

    for (auto* child : panel.getChildren())
    {
        EXPECT_TRUE (child->isVisible());
        EXPECT_FALSE (child->getTitle().isEmpty());
        EXPECT_FALSE (child->getDescription().isEmpty()) << child->getTitle();

        if (dynamic_cast<VelkorControl*> (child) == nullptr ||
            dynamic_cast<ValueLabel*> (child) != nullptr)
            continue;

        // Texts lie over the lower right corners of faders, and let the pointer through.
        const auto corner = child->getBounds().getBottomRight() - juce::Point<int> (3, 3);
        EXPECT_EQ (panel.getComponentAt (corner), child) << child->getTitle();

        ++controls[child->getTitle()];
        const auto& parameter = *processor.parameterTree.getParameter (child->getTitle());
        const auto far = parameter.getValue() > 0.5f ? 0.0f : 1.0f;
        const HostLog host (processor);
        Pointer pointer (*child);
        pointer.press (far * static_cast<float> (child->getWidth()),
                       far * static_cast<float> (child->getHeight()));
        pointer.release();
        EXPECT_EQ (parameter.getValue(), far) << child->getTitle();
        EXPECT_EQ (host.heard, "begin value end ") << child->getTitle();
    }

    for (const auto& info : parameterInfo)
        EXPECT_EQ (controls[info.name], 1) << info.name;

    EXPECT_EQ (controls.size(), static_cast<std::size_t> (kNumParameters));
    EXPECT_EQ (panel.getNumChildComponents(), 84);
}

TEST_F (Panel, GridsWriteIntoTheEngineAndTellTheHostButNotTheHistory)
{
    ASSERT_FALSE (processor.getModConnection (1, 6));
    const auto wired = processor.getSignalConnection (0, 0);
    HostLog host (processor);

    Pointer modulation (*panel.modMatrix);
    modulation.press (100.0f / 6.0f * 1.5f, 14.4f * 6.5f);
    EXPECT_TRUE (processor.getModConnection (1, 6));
    EXPECT_EQ (host.heard, "display ");
    EXPECT_TRUE (host.lastDetails.latencyChanged && host.lastDetails.parameterInfoChanged &&
                 host.lastDetails.programChanged);
    EXPECT_FALSE (host.lastDetails.nonParameterStateChanged);

    Pointer signal (*panel.signalMatrix);
    signal.press (1.0f, 1.0f);
    EXPECT_EQ (processor.getSignalConnection (0, 0), ! wired);
    EXPECT_EQ (host.heard, "display display ");
    EXPECT_FALSE (processor.undoManager.canUndo());
}

// A preset changes the cells behind the grid's back; the picture that it keeps must not outlive that.
TEST_F (Panel, GridsShowCellsThatChangeUnderneath)
{
    auto& grid = *panel.signalMatrix;
    const auto picture = [&grid] { return grid.createComponentSnapshot (grid.getLocalBounds()); };
    const bool wired = processor.getSignalConnection (7, 9);
    const auto before = picture();
    processor.setSignalConnection (7, 9, ! wired);
    EXPECT_FALSE (samePixels (picture(), before));
    processor.setSignalConnection (7, 9, wired);
    EXPECT_TRUE (samePixels (picture(), before));
}
