// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_fixture.h"

#include <fstream>

BrowserTest::BrowserTest() : folder (homeFile ("Lib"))
{
    folder.createDirectory();
}

juce::File BrowserTest::lib (const juce::String& path) const
{
    return path.isEmpty() ? folder : folder.getChildFile (path);
}

void BrowserTest::putPreset (const juce::String& path, const juce::String& name,
                             float delayMs) const
{
    putFile (lib (path), documentWith ("<Parameters><PARAM id=\"Delay 1 Time\" value=\"" +
                                           juce::String (delayMs) + "\"/></Parameters>",
                                       name)
                             .toStdString());
}

void BrowserTest::putStrangeNames (const juce::String& path) const
{
    std::string overlong;

    for (int i = 0; i < 100; ++i)
        overlong += "\xc1\x81";

    for (const auto& name : { std::string ("Pi\xe8"
                                           "ce \xe0 quatre voix et davantage"),
                              overlong, std::string ("\xed\xa0\x80") })
    {
        std::ofstream out (lib (path).getFullPathName().toStdString() + "/" + name + ".zbpreset");
        ASSERT_TRUE (out.good());
    }
}

void BrowserTest::open()
{
    manager.reset();
    manager = std::make_unique<zb_PresetManager> (processor, folder, nullptr, nullptr);
    manager->setBounds (0, 0, 900, 675);
}

static juce::String rowsOf (const zb_PresetManagerColumn& column, bool markSelected)
{
    juce::StringArray names;

    for (int row = 0; row < column.tree.getNumChildren(); ++row)
        names.add ((markSelected && column.listBox->isRowSelected (row) ? "*" : "") +
                   column.tree.getChild (row)["name"].toString());

    return names.joinIntoString ("|");
}

juce::String BrowserTest::rows (int column) const
{
    const auto* const found = manager->getColumn (column);
    return found != nullptr ? rowsOf (*found, false) : "(none)";
}

juce::String BrowserTest::view() const
{
    juce::StringArray texts;

    for (int i = 0; i < manager->columns.size(); ++i)
        texts.add (rowsOf (*manager->getColumn (i), true));

    return texts.joinIntoString (" / ");
}

void BrowserTest::select (int column, const juce::String& name) const
{
    auto* const found = manager->getColumn (column);
    ASSERT_NE (found, nullptr) << "no column " << column << " for " << name;
    const auto node = found->tree.getChildWithProperty ("name", name);
    ASSERT_TRUE (node.isValid()) << name;
    found->listBox->selectRow (found->tree.indexOf (node));
}

juce::String BrowserTest::contents (const juce::File& top)
{
    juce::StringArray texts;

    for (const auto& file : top.findChildFiles (juce::File::findFilesAndDirectories, true, "*",
                                                juce::File::FollowSymlinks::no))
        texts.add (file.getRelativePathFrom (top) +
                   (file.isDirectory() ? "/" : "=" + file.loadFileAsString()));

    texts.sort (false);
    return texts.joinIntoString (" ");
}

void BrowserTest::pump (int milliseconds)
{
    juce::MessageManager::getInstance()->runDispatchLoopUntil (milliseconds);
}
