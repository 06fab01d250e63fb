// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <csignal>
#include <filesystem>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <system_error>

/** While it lives, no file of this process can grow beyond some bytes: a write comes up short, as on a disk that
    runs full. */
class FileSizeLimit
{
public:
    explicit FileSizeLimit (rlim_t bytes)
    {
        getrlimit (RLIMIT_FSIZE, &before);
        const rlimit limit { bytes, before.rlim_max };
        signal (SIGXFSZ, SIG_IGN);
        setrlimit (RLIMIT_FSIZE, &limit);
    }

    ~FileSizeLimit() { setrlimit (RLIMIT_FSIZE, &before); }

    FileSizeLimit (const FileSizeLimit&) = delete;
    FileSizeLimit& operator= (const FileSizeLimit&) = delete;

private:
    rlimit before {};
};

/** A folder on another device than the temporary folder's, gone at the end. */
class OtherDevice
{
public:
    OtherDevice()
    {
        std::string pattern = "/dev/shm/velkor-test-XXXXXX";

        if (mkdtemp (pattern.data()) != nullptr)
            folder = juce::File (juce::String (pattern));
    }

    ~OtherDevice()
    {
        std::error_code ignored;
        std::filesystem::remove_all (folder.getFullPathName().toStdString(), ignored);
    }

    OtherDevice (const OtherDevice&) = delete;
    OtherDevice& operator= (const OtherDevice&) = delete;

    /** Whether a file can't be renamed from one to the other. */
    bool isOtherThan (const juce::File& file) const
    {
        struct stat a
        {
        }, b {};
        return stat (folder.getFullPathName().toRawUTF8(), &a) == 0 &&
               stat (file.getFullPathName().toRawUTF8(), &b) == 0 && a.st_dev != b.st_dev;
    }

    juce::File folder;
};

/** A disk of its own size in a folder, for this thread alone. Takes the rights of the superuser. */
class SmallDisk
{
public:
    SmallDisk (const juce::File& place, int kilobytes) : folder (place)
    {
        folder.createDirectory();
        const auto size = "size=" + std::to_string (kilobytes) + "k";
        mounted =
            unshare (CLONE_NEWNS) == 0 &&
            mount ("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
            mount ("tmpfs", folder.getFullPathName().toRawUTF8(), "tmpfs", 0, size.c_str()) == 0;
    }

    ~SmallDisk()
    {
        if (mounted)
            umount2 (folder.getFullPathName().toRawUTF8(), MNT_DETACH);
    }

    SmallDisk (const SmallDisk&) = delete;
    SmallDisk& operator= (const SmallDisk&) = delete;

    bool isThere() const { return mounted; }

private:
    const juce::File folder;
    bool mounted = false;
};
