// SPDX-License-Identifier: AGPL-3.0-or-later
#include "audio_guard.h"

#include <cstddef>
#include <cstdio>
#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/stat.h>
#include <unistd.h>

static thread_local bool guarded = false;
static thread_local int found = 0;
static thread_local const char* first = nullptr;

static void note (const char* name) noexcept
{
    if (guarded && found++ == 0)
        first = name;
}

AudioGuard::AudioGuard() noexcept
{
    found = 0;
    first = nullptr;
    guarded = true;
}

AudioGuard::~AudioGuard()
{
    guarded = false;
}

int AudioGuard::calls() noexcept
{
    return found;
}

const char* AudioGuard::firstCall() noexcept
{
    return first != nullptr ? first : "";
}

/** The function of that name that stands behind ours. */
template <typename Function>
static Function* behind (const char* name) noexcept
{
    return reinterpret_cast<Function*> (dlsym (RTLD_NEXT, name));
}

// A function of the C library that is noted, and then does what it always does.
#define VELKOR_WATCH(Result, name, parameters, arguments)                                          \
    Result name parameters                                                                         \
    {                                                                                              \
        static auto* const next = behind<Result parameters> (#name);                               \
        note (#name);                                                                              \
        return next arguments;                                                                     \
    }

extern "C"
{
    // glibc's own names for these four, since dlsym may itself allocate.
    void* __libc_malloc (std::size_t);
    void* __libc_calloc (std::size_t, std::size_t);
    void* __libc_realloc (void*, std::size_t);
    void __libc_free (void*);

    void* malloc (std::size_t size)
    {
        note ("malloc");
        return __libc_malloc (size);
    }

    void* calloc (std::size_t count, std::size_t size)
    {
        note ("calloc");
        return __libc_calloc (count, size);
    }

    void* realloc (void* block, std::size_t size)
    {
        note ("realloc");
        return __libc_realloc (block, size);
    }

    void free (void* block)
    {
        if (block != nullptr)
            note ("free");

        __libc_free (block);
    }

    // clang-format off
    VELKOR_WATCH (void*, aligned_alloc, (std::size_t alignment, std::size_t size), (alignment, size))

    VELKOR_WATCH (int, pthread_mutex_lock, (pthread_mutex_t* mutex), (mutex))
    VELKOR_WATCH (int, pthread_cond_wait, (pthread_cond_t* condition, pthread_mutex_t* mutex), (condition, mutex))
    VELKOR_WATCH (int, sem_wait, (sem_t* semaphore), (semaphore))

    // The mode is passed on whether it was given or not, as an argument that nobody reads.
    VELKOR_WATCH (int, open, (const char* path, int flags, mode_t mode), (path, flags, mode))
    VELKOR_WATCH (int, openat, (int folder, const char* path, int flags, mode_t mode), (folder, path, flags, mode))
    VELKOR_WATCH (FILE*, fopen, (const char* path, const char* mode), (path, mode))
    VELKOR_WATCH (ssize_t, write, (int file, const void* data, std::size_t size), (file, data, size))
    VELKOR_WATCH (ssize_t, read, (int file, void* data, std::size_t size), (file, data, size))
    VELKOR_WATCH (int, stat64, (const char* path, struct stat64* status), (path, status))
    VELKOR_WATCH (int, access, (const char* path, int mode), (path, mode))
    // clang-format on
}
