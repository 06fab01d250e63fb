// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/factory_download.h"

#include "browser/zb_PresetManagerDownloadListener.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#if JUCE_LINUX
#include <dlfcn.h>
#endif

/** What the thread works on, and holds on to. */
struct FactoryDownload::Transfer
{
    Transfer (const juce::URL& url, const juce::File& target,
              std::shared_ptr<zb_PresetManagerDownloadListener> listenerToCall)
        : stream (url, false), listener (std::move (listenerToCall))
    {
        target.deleteFile();
        file = target.createOutputStream (kBufferBytes);
    }

    void run();
    bool receive();

    static constexpr std::size_t kBufferBytes = 32768;

    enum class Phase
    {
        connecting,
        connected,
        noServer
    };

    juce::WebInputStream stream;  ///< the thread's, but for cancel
    std::unique_ptr<juce::FileOutputStream> file;
    const std::shared_ptr<zb_PresetManagerDownloadListener> listener;
    std::atomic<Phase> phase { Phase::connecting };
    std::atomic<bool> isAbandoned { false };
};

void FactoryDownload::Transfer::run()
{
    // Where no server was reached, the stream may have connected all the same: then there is no
    // answer's number.
    if (file == nullptr || ! stream.connect (nullptr) || isAbandoned || stream.getStatusCode() <= 0)
    {
        phase = Phase::noServer;
        return;
    }

    phase = Phase::connected;
    const bool whole = receive();
    file.reset();

    if (! isAbandoned)
        listener->finished (nullptr, whole);
}

/** False if the file is not whole, as far as a length is known. */
bool FactoryDownload::Transfer::receive()
{
    const auto length = stream.getTotalLength();
    const auto end = length < 0 ? std::numeric_limits<juce::int64>::max() : length;
    std::vector<char> buffer (kBufferBytes);
    juce::int64 received = 0;

    while (received < end && ! isAbandoned)
    {
        listener->progress (nullptr, received, length);
        const auto wanted =
            static_cast<int> (std::min (static_cast<juce::int64> (buffer.size()), end - received));
        const int numRead = stream.read (buffer.data(), wanted);

        if (numRead <= 0)
            break;

        if (! file->write (buffer.data(), static_cast<std::size_t> (numRead)))
            return false;

        received += numRead;
    }

    return length < 0 || received == length;
}

/** Keeps this library in memory to the end of the process. A host may unload it while a thread
    still sleeps in a call into the network, and it must find its code when it wakes. */
static void keepLibraryLoaded()
{
#if JUCE_LINUX
    const auto self = juce::File::getSpecialLocation (juce::File::currentExecutableFile);
    dlopen (self.getFullPathName().toRawUTF8(), RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
#endif
}

FactoryDownload::FactoryDownload (const juce::URL& url, const juce::File& targetToWrite,
                                  std::shared_ptr<zb_PresetManagerDownloadListener> listenerToCall)
    : target (targetToWrite),
      transfer (std::make_shared<Transfer> (url, target, std::move (listenerToCall)))
{
    keepLibraryLoaded();
    const bool isRunning = juce::Thread::launch (
        [running = transfer]
        {
            juce::Thread::setCurrentThreadName (juce::SystemStats::getJUCEVersion() +
                                                ": DownloadTask thread");
            running->run();
        });

    if (! isRunning)
        transfer->phase = Transfer::Phase::noServer;
}

FactoryDownload::~FactoryDownload()
{
    transfer->isAbandoned = true;
    target.deleteFile();

    // The thread sees at its next look that the stream is cancelled: in a second where a server is
    // silent, in minutes where the network swallows what is sent. Cancelling may itself have to
    // wait, for the look-up of a name.
    if (transfer.use_count() > 1)
        juce::Thread::launch ([abandoned = transfer] { abandoned->stream.cancel(); });
}

bool FactoryDownload::isConnected() const
{
    return transfer->phase == Transfer::Phase::connected;
}

bool FactoryDownload::hasNoServer() const
{
    return transfer->phase == Transfer::Phase::noServer;
}
