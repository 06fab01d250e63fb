// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <atomic>
#include <functional>
#include <utility>

/** A server on the loopback address that answers each request by what the test says. */
class HttpServer : private juce::Thread
{
public:
    using Answer = std::function<void (juce::StreamingSocket& to)>;

    explicit HttpServer (Answer how) : juce::Thread ("HttpServer"), answer (std::move (how))
    {
        listener.createListener (0, "127.0.0.1");
        port = listener.getBoundPort();
        startThread();
    }

    ~HttpServer() override { stopThread (5000); }

    juce::URL url (const juce::String& path) const
    {
        return juce::URL ("http://127.0.0.1:" + juce::String (port) + path);
    }

    /** Sends a head and a body; a length of -1 isn't told. */
    static void send (juce::StreamingSocket& to, const juce::String& status,
                      const juce::MemoryBlock& body, juce::int64 length)
    {
        auto head = "HTTP/1.1 " + status + "\r\nConnection: close\r\n";

        if (length >= 0)
            head << "Content-Length: " << length << "\r\n";

        head << "\r\n";
        to.write (head.toRawUTF8(), static_cast<int> (head.getNumBytesAsUTF8()));
        to.write (body.getData(), static_cast<int> (body.getSize()));
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

            if (to == nullptr)
                continue;

            readHead (*to);
            ++requests;
            answer (*to);
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
    int port = 0;
    Answer answer;
};
