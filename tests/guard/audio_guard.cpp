// SPDX-License-Identifier: AGPL-3.0-or-later
#include "audio_guard.h"

#include <cstddef>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>

namespace
{

thread_local bool guarded = false;
thread_local int found = 0;
thread_local const char* first = nullptr;

void note (const char* name) noexcept
{
    if (guarded && found++ == 0)
        first = name;
}

template <typename Function>
Function* original (const char* name) noexcept
{
    return reinterpret_cast<Function*> (dlsym (RTLD_NEXT, name));
}

}  // namespace

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

// glibc's own names for what is replaced, since dlsym may itself allocate.
extern "C"
{
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

    int pthread_mutex_lock (pthread_mutex_t* mutex)
    {
        note ("pthread_mutex_lock");
        static auto* const next = original<int (pthread_mutex_t*)> ("pthread_mutex_lock");
        return next (mutex);
    }

    int pthread_cond_wait (pthread_cond_t* condition, pthread_mutex_t* mutex)
    {
        note ("pthread_cond_wait");
        static auto* const next =
            original<int (pthread_cond_t*, pthread_mutex_t*)> ("pthread_cond_wait");
        return next (condition, mutex);
    }

    int open (const char* path, int flags, ...)
    {
        note ("open");
        static auto* const next = original<int (const char*, int, ...)> ("open");
        return next (path, flags, 0600);
    }

    int open64 (const char* path, int flags, ...)
    {
        note ("open64");
        static auto* const next = original<int (const char*, int, ...)> ("open64");
        return next (path, flags, 0600);
    }

    ssize_t write (int file, const void* data, std::size_t size)
    {
        note ("write");
        static auto* const next = original<ssize_t (int, const void*, std::size_t)> ("write");
        return next (file, data, size);
    }

    ssize_t read (int file, void* data, std::size_t size)
    {
        note ("read");
        static auto* const next = original<ssize_t (int, void*, std::size_t)> ("read");
        return next (file, data, size);
    }
}
