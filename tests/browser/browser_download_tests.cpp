// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/archive_bench.h"
#include "browser/browser_fixture.h"
#include "browser/http_server.h"

#include <memory>

class BrowserDownload : public BrowserTest
{
protected:
    BrowserDownload()
    {
        putPreset ("Old/old.zbpreset", "Old");
        archive = makeArchive (
            { { "Factory/new.zbpreset", documentWith ("<Parameters/>", "New").toStdString() },
              { "User/mine.zbpreset",
                documentWith ("<Parameters/>", "From the archive").toStdString() },
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

    juce::MemoryBlock archive;
    std::unique_ptr<HttpServer> server;
};

TEST_F (BrowserDownload, IsNotOfferedByThisProduct)
{
    open();
    EXPECT_FALSE (processor.factoryContentOffered);
    EXPECT_TRUE (processor.factoryContentUrl.isEmpty());
    EXPECT_TRUE (browser().buttons[kDownloadCommand]->getBounds().isEmpty());
}

TEST_F (BrowserDownload, UnpacksAGoodArchiveOverTheFolder)
{
    putPreset ("User/mine.zbpreset", "Before");
    putFile (lib ("fact.zip"), std::string (100000, 'x'));  // from a crash
    juce::String path;
    download (
        [&] (juce::StreamingSocket& to, const juce::String& asked)
        {
            path = asked;
            HttpServer::send (to, "200 OK", archive, static_cast<juce::int64> (archive.getSize()));
        });
    expectEnded();
    EXPECT_EQ (path, "/fact.zip");
    EXPECT_EQ (rows (0), "Factory|Old|User");
    EXPECT_TRUE (lib ("User/mine.zbpreset").loadFileAsString().contains ("From the archive"));
    EXPECT_FALSE (homeFile ("outside").exists());
    EXPECT_EQ (browser().downloadPanel->message, "Unarchiving");
    EXPECT_TRUE (browser().downloadListener->isFinished);
}

TEST_F (BrowserDownload, FollowsARedirect)
{
    download (
        [&] (juce::StreamingSocket& to, const juce::String& asked)
        {
            if (asked == "/fact.zip")
                HttpServer::send (to, "302 Found", {}, 0, "Location: /elsewhere\r\n");
            else
                HttpServer::send (to, "200 OK", archive,
                                  static_cast<juce::int64> (archive.getSize()));
        });
    expectEnded();
    EXPECT_EQ (rows (0), "Factory|Old|User");
    EXPECT_EQ (server->requests, 2);
}

TEST_F (BrowserDownload, OfAnythingButAnArchiveUnpacksNothing)
{
    using Send = std::function<void (juce::StreamingSocket&)>;
    const auto size = static_cast<juce::int64> (archive.getSize());
    const std::string page = "<html>Not found</html>";
    const juce::MemoryBlock html (page.data(), page.size());
    const juce::MemoryBlock half (archive.getData(), archive.getSize() / 2);

    const std::pair<const char*, Send> cases[] = {
        { "truncated", [&] (auto& to) { HttpServer::send (to, "200 OK", half, size); } },
        { "truncated, length unknown",
          [&] (auto& to) { HttpServer::send (to, "200 OK", half, -1); } },
        { "no archive", [&] (auto& to)
          { HttpServer::send (to, "200 OK", html, static_cast<juce::int64> (html.getSize())); } },
        { "not found",
          [&] (auto& to) {
              HttpServer::send (to, "404 Not Found", html,
                                static_cast<juce::int64> (html.getSize()));
          } },
        { "empty", [&] (auto& to) { HttpServer::send (to, "200 OK", {}, 0); } },
    };

    for (const auto& [what, send] : cases)
    {
        SCOPED_TRACE (what);
        ASSERT_TRUE (lib ("User").deleteRecursively());
        download ([&, answer = send] (juce::StreamingSocket& to, const juce::String&)
                  { answer (to); });
        expectEnded();
        EXPECT_EQ (rows (0), "Old|User");
    }
}

TEST_F (BrowserDownload, LeavesTheFolderAsItWasWhereNobodyAnswers)
{
    int port = 0;

    {
        juce::StreamingSocket closed;
        ASSERT_TRUE (closed.createListener (0, "127.0.0.1"));
        port = closed.getBoundPort();
    }

    for (const auto& url :
         { juce::URL ("http://127.0.0.1:" + juce::String (port) + "/fact.zip"), juce::URL() })
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
    int ticks = 0;

    struct Watcher : juce::Timer
    {
        explicit Watcher (std::function<void()> f) : look (std::move (f)) { startTimer (10); }
        void timerCallback() override { look(); }
        std::function<void()> look;
    };

    const Watcher watcher (
        [&]
        {
            ++ticks;

            if (manager != nullptr && manager->downloadPanel != nullptr)
                messages.addIfNotAlreadyThere (manager->downloadPanel->message);

            // The button stays live; a second press must not start a second download.
            if (manager != nullptr && manager->downloadTask != nullptr)
                manager->buttonClicked (manager->buttons[kDownloadCommand].get());
        });

    download (
        [&] (juce::StreamingSocket& to, const juce::String&)
        {
            const auto half = archive.getSize() / 2;
            HttpServer::send (to, "200 OK", { archive.getData(), half },
                              static_cast<juce::int64> (archive.getSize()));
            juce::Thread::sleep (300);
            to.write (archive.begin() + half, static_cast<int> (archive.getSize() - half));
        });
    expectEnded();
    EXPECT_EQ (rows (0), "Factory|Old|User");
    EXPECT_EQ (server->requests, 1);
    EXPECT_GT (ticks, 5);
    EXPECT_TRUE (messages.joinIntoString ("|").matchesWildcard ("*Downloading  *%*", false))
        << messages.joinIntoString ("|");
}

TEST_F (BrowserDownload, EndsWithTheBrowser)
{
    server = std::make_unique<HttpServer> (
        [this] (juce::StreamingSocket& to, const juce::String&)
        {
            HttpServer::send (to, "200 OK", archive, 1000000);

            for (int i = 0; i < 500 && ! server->stopping; ++i)
                juce::Thread::sleep (10);
        });
    processor.factoryContentUrl = server->url ("/fact.zip");
    processor.factoryContentOffered = true;
    open();
    juce::Timer::callAfterDelay (150, [this] { manager.reset(); });
    browser().buttonClicked (browser().buttons[kDownloadCommand].get());
    EXPECT_EQ (manager, nullptr);
    EXPECT_FALSE (lib ("fact.zip").exists());
    EXPECT_FALSE (lib ("User").exists());
    EXPECT_TRUE (processor.factoryContentOffered);
    server->stopping = true;
}

TEST_F (BrowserDownload, PanelTellsHowFarItIs)
{
    open();
    zb_PresetManagerDownloadPanel panel (browser());
    zb_PresetManagerDownloadListener listener;
    EXPECT_EQ (panel.message, "CONTACTING SERVER");
    listener.progress (nullptr, 42, 100);
    panel.updatePanel ("Downloading", listener.fraction, false);
    EXPECT_EQ (panel.message, "Downloading  42%");
    listener.progress (nullptr, 42, 0);  // no length told: no useful value, but a number
    panel.updatePanel ("Downloading", listener.fraction, false);
    EXPECT_EQ (panel.message, "Downloading  0%");
    panel.updatePanel ("Downloading", 1.0f, true);
    EXPECT_EQ (panel.message, "Unarchiving");
    panel.updatePanel ("Other", 0.5f, true);
    EXPECT_EQ (panel.message, "Other");

    browser().unit = 8.6f;
    panel.layOut (8.6f);
    EXPECT_EQ (panel.getBounds(), juce::Rectangle<int> (270, 135, 360, 135));
}
