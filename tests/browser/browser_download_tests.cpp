// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/archive_bench.h"
#include "browser/browser_fixture.h"
#include "browser/http_server.h"

class BrowserDownload : public BrowserTest
{
protected:
    BrowserDownload()
    {
        putPreset ("Old/old.zbpreset", "Old");
        archive = makeArchive (
            { { "Factory/new.zbpreset", documentWith ("<Parameters/>", "New").toStdString() },
              { "User/mine.zbpreset", "from the archive" },
              { "../outside", "evil" } });
    }

    /** Starts a server and presses the button; returns when the command has ended. */
    void download (HttpServer::Answer answer)
    {
        server = std::make_unique<HttpServer> (std::move (answer));
        download (server->url ("/fact.zip"));
    }

    void download (const juce::URL& url)
    {
        processor.factoryContentUrl = url;
        processor.factoryContentOffered = true;
        open();
        EXPECT_FALSE (browser().buttons[kDownloadCommand]->getBounds().isEmpty());
        browser().buttonClicked (browser().buttons[kDownloadCommand].get());
    }

    /** What every download that began leaves behind, whatever came of it. */
    void expectEnded() const
    {
        EXPECT_FALSE (lib ("fact.zip").exists());
        EXPECT_TRUE (lib ("User").isDirectory());
        EXPECT_FALSE (processor.factoryContentOffered);
        EXPECT_TRUE (browser().buttons[kDownloadCommand]->getBounds().isEmpty());
        EXPECT_EQ (browser().downloadPanel->getParentComponent(), nullptr);
        EXPECT_EQ (browser().downloadTask, nullptr);
    }

    juce::int64 archiveSize() const { return static_cast<juce::int64> (archive.getSize()); }

    juce::MemoryBlock archive;
    std::unique_ptr<HttpServer> server;
};

TEST_F (BrowserDownload, UnpacksAGoodArchiveOverTheFolder)
{
    open();
    EXPECT_FALSE (processor.factoryContentOffered);  // not by this product
    EXPECT_TRUE (browser().buttons[kDownloadCommand]->getBounds().isEmpty());

    putPreset ("User/mine.zbpreset", "Before");
    putFile (lib ("fact.zip"), std::string (100000, 'x'));  // from a crash
    download ([&] (juce::StreamingSocket& to)
              { HttpServer::send (to, "200 OK", archive, archiveSize()); });
    expectEnded();
    EXPECT_EQ (rows (0), "Factory|Old|User");
    EXPECT_EQ (bytesOf (lib ("User/mine.zbpreset")), "from the archive");
    EXPECT_FALSE (homeFile ("outside").exists());
    EXPECT_EQ (browser().downloadPanel->message, "Unarchiving");
}

TEST_F (BrowserDownload, OfAnythingButAnArchiveUnpacksNothing)
{
    const juce::MemoryBlock page ("<html>Not found</html>", 22);
    const juce::MemoryBlock half (archive.getData(), archive.getSize() / 2);

    struct Answer
    {
        const char* status;
        juce::MemoryBlock body;
        juce::int64 length;
    };

    for (const auto& answer :
         { Answer { "200 OK", half, archiveSize() }, Answer { "200 OK", half, -1 },
           Answer { "404 Not Found", page, 22 }, Answer { "200 OK", {}, 0 } })
    {
        SCOPED_TRACE (juce::String (answer.status) + juce::String (answer.length));
        ASSERT_TRUE (lib ("User").deleteRecursively());
        download ([&answer] (juce::StreamingSocket& to)
                  { HttpServer::send (to, answer.status, answer.body, answer.length); });
        expectEnded();
        EXPECT_EQ (rows (0), "Old|User");
    }
}

TEST_F (BrowserDownload, LeavesTheFolderAsItWasWhereNobodyAnswers)
{
    for (const auto& url : { juce::URL ("http://127.0.0.1:1/fact.zip"), juce::URL() })
    {
        download (url);
        EXPECT_FALSE (lib ("fact.zip").exists());
        EXPECT_FALSE (lib ("User").exists());
        EXPECT_EQ (browser().downloadPanel->getParentComponent(), nullptr);
        EXPECT_TRUE (processor.factoryContentOffered);  // it can be tried again
        EXPECT_EQ (rows (0), "Old");
    }
}

TEST_F (BrowserDownload, KeepsTheWindowAliveWhileItIsSlow)
{
    juce::StringArray messages;

    const Onlooker onlooker (
        [&]
        {
            if (manager->downloadTask == nullptr)
                return;

            // The button stays live; a second press must not start a second download.
            messages.addIfNotAlreadyThere (manager->downloadPanel->message);
            manager->buttonClicked (manager->buttons[kDownloadCommand].get());
        });

    download (
        [&] (juce::StreamingSocket& to)
        {
            const auto half = archive.getSize() / 2;
            HttpServer::send (to, "200 OK", { archive.getData(), half }, archiveSize());
            juce::Thread::sleep (300);
            to.write (archive.begin() + half, static_cast<int> (archive.getSize() - half));
        });
    expectEnded();
    EXPECT_EQ (rows (0), "Factory|Old|User");
    EXPECT_EQ (server->requests, 1);
    EXPECT_TRUE (messages.joinIntoString ("|").matchesWildcard ("*Downloading  *%*", false))
        << messages.joinIntoString ("|");
}

TEST_F (BrowserDownload, EndsWithTheBrowser)
{
    std::atomic<bool> stopping { false };
    juce::Timer::callAfterDelay (150, [this] { manager.reset(); });
    download (
        [&] (juce::StreamingSocket& to)
        {
            HttpServer::send (to, "200 OK", archive, 1000000);

            for (int i = 0; i < 500 && ! stopping; ++i)
                juce::Thread::sleep (10);
        });
    EXPECT_EQ (manager, nullptr);
    EXPECT_FALSE (lib ("fact.zip").exists());
    EXPECT_FALSE (lib ("User").exists());
    EXPECT_TRUE (processor.factoryContentOffered);
    stopping = true;
    server.reset();
}
