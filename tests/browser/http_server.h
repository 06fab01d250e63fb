// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <atomic>
#include <memory>
#include <string>
#include <utility>

/** A server on the loopback address that gives every request the same answer, in two parts. */
class HttpServer : private juce::Thread
{
public:
    HttpServer (std::string firstPart, std::string secondPart, int pauseMs)
        : juce::Thread ("HttpServer"), first (std::move (firstPart)),
          second (std::move (secondPart)), pause (pauseMs)
    {
        listener.createListener (0, "127.0.0.1");
        startThread();
    }

    ~HttpServer() override { stopThread (5000); }

    juce::URL url() const
    {
        return juce::URL ("http://127.0.0.1:" + juce::String (listener.getBoundPort()) + "/x.zip");
    }

    std::atomic<int> requests { 0 };

private:
    void run() override
    {
        while (! threadShouldExit())
        {
            if (listener.waitUntilReady (true, 20) != 1)
                continue;

            const std::unique_ptr<juce::StreamingSocket> to (listener.waitForNextConnection());
            ++requests;
            readHead (*to);
            to->write (first.data(), static_cast<int> (first.size()));
            wait (pause);
            to->write (second.data(), static_cast<int> (second.size()));
        }
    }

    /** Reads a request, however many pieces it comes in: what is left unread when the socket closes would reset
        the connection, and the answer with it. */
    static void readHead (juce::StreamingSocket& from)
    {
        juce::String head;
        char byte = 0;

        while (! head.endsWith ("\r\n\r\n") && from.read (&byte, 1, true) == 1)
            head << byte;
    }

    juce::StreamingSocket listener;
    const std::string first, second;
    const int pause;
};
