// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/archive_bench.h"
#include "browser/browser_fixture.h"

#include <atomic>
#include <memory>
#include <string>
#include <thread>

class BrowserDownload : public BrowserTest
{
protected:
    BrowserDownload()
    {
        putPreset ("Old/old.zbpreset", "Old");
        const auto archive = makeArchive ({ { "Factory/new.zbpreset", "<S PresetName=\"New\"/>" },
                                            { "User/mine.zbpreset", "from the archive" },
                                            { "../outside", "evil" } });
        const std::string bytes (archive.begin(), archive.end());
        firstHalf = bytes.substr (0, bytes.size() / 2);
        secondHalf = bytes.substr (bytes.size() / 2);
        good = "200 OK\r\nContent-Length: " + std::to_string (bytes.size());
    }

    /** Presses the button, and a server answers in two parts; returns when the command has ended. */
    void download (const std::string& status, const std::string& first, const std::string& second,
                   int pauseMs = 0)
    {
        server = {};
        listener.createListener (0, "127.0.0.1");
        server = std::jthread (
            [this, pauseMs, second,
             all = "HTTP/1.1 " + status + "\r\nConnection: close\r\n\r\n" + first]
            {
                if (listener.waitUntilReady (true, 5000) != 1)
                    return;

                const std::unique_ptr<juce::StreamingSocket> to (listener.waitForNextConnection());
                listener.close();  // answers once
                readHead (*to);
                to->write (all.data(), static_cast<int> (all.size()));
                juce::Thread::sleep (pauseMs);
                to->write (second.data(), static_cast<int> (second.size()));
            });
        download (juce::URL ("http://127.0.0.1:" + juce::String (listener.getBoundPort())));
    }

    /** Reads all of a request: what is left unread when the socket closes would reset the connection. */
    static void readHead (juce::StreamingSocket& from)
    {
        juce::String head;
        char byte = 0;

        while (! head.endsWith ("\r\n\r\n") && from.read (&byte, 1, true) == 1)
            head << byte;
    }

    void download (const juce::URL& url)
    {
        processor.factoryContentUrl = url;
        processor.factoryContentOffered = true;
        open();
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
    }

    std::string firstHalf, secondHalf, good;
    juce::StreamingSocket listener;
    std::jthread server;  // last: uses the rest to its end
};

TEST_F (BrowserDownload, UnpacksAGoodArchiveOverTheFolderHoweverSlowItComes)
{
    open();
    EXPECT_FALSE (processor.factoryContentOffered);  // not by this product
    EXPECT_TRUE (browser().buttons[kDownloadCommand]->getBounds().isEmpty());

    putPreset ("User/mine.zbpreset", "Before");
    putFile (lib ("fact.zip"), std::string (100000, 'x'));  // from a crash
    download (good, firstHalf, secondHalf, 300);
    expectEnded();
    EXPECT_EQ (rows (0), "Factory|Old|User");
    EXPECT_EQ (bytesOf (lib ("User/mine.zbpreset")), "from the archive");
    EXPECT_FALSE (homeFile ("outside").exists());
}

TEST_F (BrowserDownload, OfAnythingButAnArchiveUnpacksNothing)
{
    for (const auto& status : { good, std::string ("200 OK"), std::string ("404 Not Found") })
    {
        download (status, firstHalf, {});
        expectEnded();
        EXPECT_EQ (rows (0), "Old|User") << status;
    }
}

TEST_F (BrowserDownload, LeavesTheFolderAsItWasWhereNobodyAnswers)
{
    for (const auto& url : { juce::URL ("http://127.0.0.1:1/fact.zip"), juce::URL() })
    {
        download (url);
        EXPECT_FALSE (lib ("fact.zip").exists() || lib ("User").exists());
        EXPECT_EQ (browser().downloadPanel->getParentComponent(), nullptr);
        EXPECT_TRUE (processor.factoryContentOffered);  // it can be tried again
        EXPECT_EQ (rows (0), "Old");
    }
}

TEST_F (BrowserDownload, EndsWithTheBrowser)
{
    juce::Timer::callAfterDelay (150, [this] { manager.reset(); });
    download (good, firstHalf, {}, 1000);
    EXPECT_EQ (manager, nullptr);
    EXPECT_FALSE (lib ("fact.zip").exists() || lib ("User").exists());
    EXPECT_TRUE (processor.factoryContentOffered);
}

TEST_F (BrowserDownload, OfASilentServerShowsThatAndEndsWithTheBrowser)
{
    std::atomic<bool> wasAsked { false }, wasShown { false }, hasHungUp { false };
    listener.createListener (0, "127.0.0.1");
    server = std::jthread (
        [&]
        {
            if (listener.waitUntilReady (true, 5000) != 1)
                return;

            const std::unique_ptr<juce::StreamingSocket> to (listener.waitForNextConnection());
            readHead (*to);
            wasAsked = true;

            for (int i = 0; i < 100 && ! wasShown; ++i)  // gives up, should nobody look
                juce::Thread::sleep (20);

            char byte = 0;
            hasHungUp =
                wasShown && to->waitUntilReady (true, 5000) == 1 && to->read (&byte, 1, false) <= 0;
        });
    const Onlooker onlooker (
        [&]
        {
            if (! wasAsked || manager == nullptr)
                return;

            wasShown = browser().downloadPanel->message == "CONTACTING SERVER";
            manager.reset();
        });
    download (juce::URL ("http://127.0.0.1:" + juce::String (listener.getBoundPort())));
    EXPECT_TRUE (wasShown);
    server.join();
    EXPECT_TRUE (hasHungUp);
    EXPECT_FALSE (lib ("fact.zip").exists() || lib ("User").exists());
    EXPECT_TRUE (processor.factoryContentOffered);
}
