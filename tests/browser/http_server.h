// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <atomic>
#include <functional>

/** A server on the loopback address that answers each request by what the test says. */
class HttpServer : private juce::Thread
{
public:
    using Answer = std::function<void (juce::StreamingSocket& to, const juce::String& path)>;

    explicit HttpServer (Answer how) : juce::Thread ("HttpServer"), answer (std::move (how))
    {
        listener.createListener (0, "127.0.0.1");
        port = listener.getBoundPort();
        startThread();
    }

    ~HttpServer() override
    {
        signalThreadShouldExit();
        stopThread (5000);
        listener.close();
    }

    juce::URL url (const juce::String& path) const
    {
        return juce::URL ("http://127.0.0.1:" + juce::String (port) + path);
    }

    /** Sends a head and a body; a length of -1 isn't told. */
    static void send (juce::StreamingSocket& to, const juce::String& status,
                      const juce::MemoryBlock& body, juce::int64 length,
                      const juce::String& header = {})
    {
        auto head = "HTTP/1.1 " + status + "\r\nConnection: close\r\n" + header;

        if (length >= 0)
            head << "Content-Length: " << length << "\r\n";

        head << "\r\n";
        to.write (head.toRawUTF8(), static_cast<int> (head.getNumBytesAsUTF8()));
        to.write (body.getData(), static_cast<int> (body.getSize()));
    }

    std::atomic<int> requests { 0 };
    std::atomic<bool> stopping { false };  ///< slow answers look at this

private:
    void run() override
    {
        while (! threadShouldExit())
        {
            if (listener.waitUntilReady (true, 20) != 1)
                continue;

            if (const std::unique_ptr<juce::StreamingSocket> to {
                    listener.waitForNextConnection() })
            {
                const auto request = readHead (*to);
                ++requests;
                answer (*to, request.fromFirstOccurrenceOf (" ", false, false)
                                 .upToFirstOccurrenceOf (" ", false, false));
            }
        }
    }

    /** A request, however many pieces it comes in: what is left unread when the socket closes would reset the
        connection, and the answer with it. */
    static juce::String readHead (juce::StreamingSocket& from)
    {
        juce::String head;

        while (! head.contains ("\r\n\r\n") && from.waitUntilReady (true, 10000) == 1)
        {
            char bytes[2048] = {};
            const auto count = from.read (bytes, sizeof (bytes), false);

            if (count <= 0)
                break;

            head << juce::String (bytes, static_cast<std::size_t> (count));
        }

        return head;
    }

    juce::StreamingSocket listener;
    int port = 0;
    Answer answer;
};
